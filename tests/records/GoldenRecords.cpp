#include "tests/records/GoldenRecords.h"

#include <stdexcept>

#include "NyServer/records/NySeConnectionArray.h"
#include "NyServer/records/NySeLockArray.h"
#include "NyServer/records/NySeMessage.h"
#include "NyServer/records/NySeUserPtrArray.h"
#include "tests/support/ArchiveBytes.h"
#include "tests/support/Utf8.h"

using nlohmann::json;

namespace {

CString text(const json& value, const char* name) {
    return fromUtf8(value.value(name, std::string()));
}

std::vector<int> units(const CString& text) {
    std::vector<int> all;
    for (int i = 0; i < text.GetLength(); ++i) all.push_back(text.GetAt(i));
    return all;
}

void fillIn(NySeUser& user, const json& value) {
    user.setPort(value.value("port", -1));
    user.setStrHostName(text(value, "host"));
    user.setStrUserName(text(value, "user"));
    user.setStrComputerName(text(value, "computer"));
    user.setSessionNumber(value.value("session", -1));
    user.setSchema(value.value("schema", 0));
    user.setSoftType(value.value("soft_type", 0));
}

json show(const NySeUser& user) {
    return {{"port", user.getPort()},
            {"host", units(user.getStrHostName())},
            {"user", units(user.getStrUserName())},
            {"computer", units(user.getStrComputerName())},
            {"session", user.getSessionNumber()},
            {"schema", user.getSchema()},
            {"soft_type", user.getSoftType()}};
}

void fillIn(NySeConnection& connection, const json& value) {
    connection.setStrConnection(text(value, "connection"));
    connection.setId(value.value("id", 0));
    connection.setRefCount(value.value("ref_count", 0));
}
json show(const NySeConnection& connection) {
    return {{"connection", units(connection.getStrConnection())},
            {"id", connection.getId()},
            {"ref_count", connection.getRefCount()}};
}

void fillIn(NySeSessionLock& lock, const json& value) {
    lock.setSessionNumber(value.value("session", 0));
    lock.setLockState(value.value("state", 0u));
}
json show(const NySeSessionLock& lock) {
    return {{"session", lock.getSessionNumber()}, {"state", lock.getLockState()}};
}
void fillIn(NySeMessage& message, const json& value) {
    message.setStrMessage(text(value, "message"));
}
json show(const NySeMessage& message) {
    return {{"message", units(message.getStrMessage())}};
}

void fillIn(NySeLock& lock, const json& value);
json show(const NySeLock& lock);

template <class Table, class Record>
void fillTable(Table& table, const json& values) {
    for (const json& value : values) {
        auto record = std::make_unique<Record>();
        fillIn(*record, value);
        table.append(record.release());
    }
}

template <class Table>
json showTable(const Table& table) {
    json values = json::array();
    for (INT_PTR i = 0; i < table.GetSize(); ++i) values.push_back(show(*table.GetAt(i)));
    return values;
}

void fillIn(NySeUserPtrArray& users, const json& values) {
    fillTable<NySeUserPtrArray, NySeUser>(users, values);
}
json show(const NySeUserPtrArray& users) {
    return showTable(users);
}

// The last id and the free ids have no accessors: they are what opening and closing leaves.
void fillIn(NySeConnectionArray& table, const json& value) {
    for (LONG id = 0; id <= value.at("last_id").get<LONG>(); ++id) {
        table.openConnection(CString(static_cast<WCHAR>('a' + id)));
    }
    for (const json& id : value.at("free_ids")) table.closeConnection(id.get<LONG>());
    for (const json& entry : value.at("connections")) {
        fillIn(*table.findById(entry.at("id").get<LONG>()), entry);
    }
}
json show(const NySeConnectionArray& table) {
    return showTable(table);
}

void fillIn(NySeSessionLockPtrArray& table, const json& values) {
    fillTable<NySeSessionLockPtrArray, NySeSessionLock>(table, values);
}
json show(const NySeSessionLockPtrArray& table) {
    return showTable(table);
}

void fillIn(NySeLock& lock, const json& value) {
    lock.setStrLockName(text(value, "name"));
    fillIn(lock.getHolders(), value.value("holders", json::array()));
}
json show(const NySeLock& lock) {
    return {{"name", units(lock.getStrLockName())}, {"holders", show(lock.getHolders())}};
}
void fillIn(NySeLockArray& table, const json& values) {
    fillTable<NySeLockArray, NySeLock>(table, values);
}
json show(const NySeLockArray& table) {
    return showTable(table);
}

// Calls `action` with the object as what it is.
template <class... Classes>
struct Among {
    template <class Object, class Action>
    static void visit(Object& object, Action action) {
        const bool known = (visitIf<Classes>(object, action) || ...);
        if (!known) throw std::out_of_range(object.GetRuntimeClass()->m_lpszClassName);
    }

  private:
    template <class Class, class Object, class Action>
    static bool visitIf(Object& object, Action& action) {
        if (object.GetRuntimeClass() != RUNTIME_CLASS(Class)) return false;
        using Wanted = std::conditional_t<std::is_const_v<Object>, const Class, Class>;
        action(static_cast<Wanted&>(object));
        return true;
    }
};

using Known = Among<NySeUser, NySeUserPtrArray, NySeConnection, NySeConnectionArray,
                    NySeSessionLock, NySeSessionLockPtrArray, NySeLock, NySeLockArray, NySeMessage>;

std::unique_ptr<CObject> makeEmpty(const Golden& vector) {
    return std::unique_ptr<CObject>(
        CRuntimeClass::FromName(vector.className.c_str())->CreateObject());
}

// A user stored under an older schema than the archive's usual one.
void setSchema(const Golden& vector, CArchive& ar) {
    if (vector.form == "serialize under object schema 2014") ar.SetObjectSchema(2014);
}

}  // namespace

std::unique_ptr<CObject> makeGolden(const Golden& vector) {
    std::unique_ptr<CObject> record = makeEmpty(vector);
    Known::visit(*record, [&](auto& known) { fillIn(known, vector.value); });
    return record;
}

json fieldsOf(const CObject& record) {
    json fields;
    Known::visit(record, [&](const auto& known) { fields = show(known); });
    return fields;
}

Bytes storeAs(const Golden& vector, CObject& record) {
    return stored([&](CArchive& ar) {
        setSchema(vector, ar);
        if (vector.form == "object") {
            ar.WriteObject(&record);
        } else {
            record.Serialize(ar);
        }
    });
}

std::unique_ptr<CObject> loadAs(const Golden& vector, const Bytes& bytes) {
    Loading loading(bytes);
    setSchema(vector, loading.ar);
    std::unique_ptr<CObject> record;
    if (vector.form == "object") {
        record.reset(loading.ar.ReadObject(nullptr));
    } else {
        record = makeEmpty(vector);
        record->Serialize(loading.ar);
    }
    return record;
}

std::vector<Golden> goldenRecords() {
    std::vector<Golden> records;
    for (const Golden& vector : allGolden()) {
        if (!vector.className.empty()) records.push_back(vector);
    }
    return records;
}
