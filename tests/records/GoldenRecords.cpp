#include "tests/records/GoldenRecords.h"

#include <stdexcept>

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

void fill(NySeUser& user, const json& value) {
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

template <class Table, class Record>
void fillTable(Table& table, const json& values) {
    for (const json& value : values) {
        auto record = std::make_unique<Record>();
        fill(*record, value);
        table.append(record.release());
    }
}

template <class Table>
json showTable(const Table& table) {
    json values = json::array();
    for (INT_PTR i = 0; i < table.GetSize(); ++i) values.push_back(show(*table.GetAt(i)));
    return values;
}

void fill(NySeUserPtrArray& users, const json& values) {
    fillTable<NySeUserPtrArray, NySeUser>(users, values);
}
json show(const NySeUserPtrArray& users) {
    return showTable(users);
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

using Known = Among<NySeUser, NySeUserPtrArray>;

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
    Known::visit(*record, [&](auto& known) { fill(known, vector.value); });
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
        if (vector.className == "NySeUser" || vector.className == "NySeUserPtrArray") {
            records.push_back(vector);
        }
    }
    return records;
}
