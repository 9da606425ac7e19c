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

void fillIn(NySeUser& user, const json& value) {
    user.setPort(value.value("port", -1));
    user.setStrHostName(text(value, "host"));
    user.setStrUserName(text(value, "user"));
    user.setStrComputerName(text(value, "computer"));
    user.setSessionNumber(value.value("session", -1));
    user.setSchema(value.value("schema", 0));
    user.setSoftType(value.value("soft_type", 0));
}

void fillIn(NySeConnection& connection, const json& value) {
    connection.setStrConnection(text(value, "connection"));
    connection.setId(value.value("id", 0));
    connection.setRefCount(value.value("ref_count", 0));
}

void fillIn(NySeSessionLock& lock, const json& value) {
    lock.setSessionNumber(value.value("session", 0));
    lock.setLockState(value.value("state", 0u));
}
void fillIn(NySeMessage& message, const json& value) {
    message.setStrMessage(text(value, "message"));
}

void fillIn(NySeLock& lock, const json& value);  // with its holders

template <class Record>
void fillTable(QoArraySerial2& table, const json& values) {
    for (const json& value : values) {
        auto record = std::make_unique<Record>();
        fillIn(*record, value);
        table.append(record.release());
    }
}
void fillIn(NySeUserPtrArray& table, const json& values) {
    fillTable<NySeUser>(table, values);
}
void fillIn(NySeSessionLockPtrArray& table, const json& values) {
    fillTable<NySeSessionLock>(table, values);
}
void fillIn(NySeLockArray& table, const json& values) {
    fillTable<NySeLock>(table, values);
}
void fillIn(NySeLock& lock, const json& value) {
    lock.setStrLockName(text(value, "name"));
    fillIn(lock.getHolders(), value.value("holders", json::array()));
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

template <class Class>
bool fillIf(CObject& object, const json& value) {
    const bool isOne = object.GetRuntimeClass() == RUNTIME_CLASS(Class);
    if (isOne) fillIn(static_cast<Class&>(object), value);
    return isOne;
}

template <class... Classes>
void fillAny(CObject& object, const json& value) {
    const bool isKnown = (fillIf<Classes>(object, value) || ...);
    if (!isKnown) throw std::out_of_range(object.GetRuntimeClass()->m_lpszClassName);
}

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
    fillAny<NySeUser, NySeUserPtrArray, NySeConnection, NySeConnectionArray, NySeSessionLock,
            NySeSessionLockPtrArray, NySeLock, NySeLockArray, NySeMessage>(*record, vector.value);
    return record;
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
