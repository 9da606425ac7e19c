#include "AfxReadNumbers.h"

#include <utility>

#include "CObject.h"

using namespace AfxTags;

namespace {

bool acceptsSchema(const CRuntimeClass* pClass, UINT stored) {
    return (pClass->m_wSchema & VERSIONABLE_SCHEMA) != 0 || pClass->m_wSchema == stored;
}

}  // namespace

DWORD CArchive::WrittenNumbers::numberOfClass(const CRuntimeClass* pClass) const {
    for (const Class& known : m_classes) {
        if (known.pClass == pClass) return known.number;
    }
    return 0;
}

bool CArchive::WrittenNumbers::addClass(const CRuntimeClass* pClass) {
    if (!m_list.add(nullptr)) return false;
    m_classes.push_back({pClass, static_cast<DWORD>(m_list.size())});
    return true;
}

DWORD CArchive::WrittenNumbers::numberOfObject(const CObject* object) {
    WrittenType* known = typeOf(typeid(*object));
    if (known == nullptr) {
        m_types.push_front({&typeid(*object), 0, {}});
        known = &m_types.front();
    }
    if (isNew(object, *known)) return 0;
    for (; m_inMap < m_list.size(); ++m_inMap) {
        m_numbers.emplace(m_list[m_inMap], static_cast<DWORD>(m_inMap + 1));
    }
    const auto found = m_numbers.find(object);
    return found != m_numbers.end() ? found->second : 0;
}

bool CArchive::WrittenNumbers::addObject(const CObject* object, const CRuntimeClass* pClass) {
    const DWORD number = numberOfClass(pClass);
    if (number < kBigTag) typeOf(typeid(*object))->tag = static_cast<WORD>(number | kClassFlag);
    return addObject(object);
}

inline CArchive::WrittenNumbers& CArchive::written() {
    if (m_written == nullptr) [[unlikely]]
        m_written = std::make_unique<WrittenNumbers>();
    return *m_written;
}

inline CArchive::ReadNumbers& CArchive::read() {
    if (m_read == nullptr) [[unlikely]]
        m_read = std::make_unique<ReadNumbers>();
    return *m_read;
}

void CArchive::throwBad(int cause) const {
    AfxThrowArchiveException(cause, m_strFileName);
}

void CArchive::writeTag(DWORD number, DWORD classFlag) {
    if (number < kBigTag) {
        *this << static_cast<WORD>(number | (classFlag != 0 ? kClassFlag : 0));
    } else {
        *this << kBigTag << static_cast<DWORD>(number | classFlag);
    }
}

void CArchive::WriteClass(const CRuntimeClass* pClass) {
    if (IsLoading()) throwWrongDirection();
    if (!pClass->IsSerializable()) AfxThrowNotSupportedException();
    if (const DWORD number = written().numberOfClass(pClass); number != 0) {
        writeTag(number, kBigClassFlag);
        return;
    }
    const size_t nameLength = std::strlen(pClass->m_lpszClassName);
    if (nameLength > kLongestClassName) AfxThrowNotSupportedException();
    *this << kNewClassTag << static_cast<WORD>(pClass->m_wSchema) << static_cast<WORD>(nameLength);
    Write(pClass->m_lpszClassName, static_cast<int>(nameLength));
    if (!written().addClass(pClass)) throwBad(CArchiveException::badIndex);
}

// Returns false, with nothing written, if the object was or may have been written earlier.
inline bool CArchive::tryWriteNew(const CObject* object, WrittenType& known) {
    if (spaceLeft() < sizeof known.tag || !m_written->addNew(object, known)) return false;
    std::memcpy(m_out, &known.tag, sizeof known.tag);
    m_out += sizeof known.tag;
    // Serialize is one function for both directions; a storing one does not change its object.
    const_cast<CObject*>(object)->Serialize(*this);
    return true;
}

void CArchive::WriteObject(const CObject* object) {
    // A loading archive has written nothing.
    if (object != nullptr && m_written != nullptr) [[likely]] {
        WrittenType* const known = m_written->typeOf(typeid(*object));
        if (known != nullptr && known->tag != 0 && tryWriteNew(object, *known)) return;
    }
    writeAnyObject(object);
}

void CArchive::writeAnyObject(const CObject* object) {
    if (IsLoading()) throwWrongDirection();
    if (object == nullptr) {
        *this << kNullTag;
        return;
    }
    if (const DWORD number = written().numberOfObject(object); number != 0) {
        writeTag(number, 0);
        return;
    }
    const CRuntimeClass* const pClass = object->GetRuntimeClass();
    WriteClass(pClass);
    if (!written().addObject(object, pClass)) throwBad(CArchiveException::badIndex);
    const_cast<CObject*>(object)->Serialize(*this);
}

// Looking up type and tag once for a run of objects of one type takes 17 % off a table of locks;
// prefetching takes 12 % off one of 100,000 locks.
void CArchive::WriteObjects(const CObject* const* objects, size_t count) {
    // The objects of a large table are not in the processor's caches; most take two lines.
    constexpr size_t kAhead = 8;
    constexpr uintptr_t kLine = 64;
    WriteCount(count);
    WrittenType* known = nullptr;
    const std::type_info* type = nullptr;  // known's, when its class has a tag
    for (size_t i = 0; i < count; ++i) {
        if (i + kAhead < count) {
            const uintptr_t ahead = reinterpret_cast<uintptr_t>(objects[i + kAhead]);
            __builtin_prefetch(reinterpret_cast<const void*>(ahead));
            __builtin_prefetch(reinterpret_cast<const void*>(ahead + kLine));
        }
        const CObject* const object = objects[i];
        if (object != nullptr && &typeid(*object) == type && tryWriteNew(object, *known)) continue;
        WriteObject(object);
        if (object == nullptr) continue;
        known = m_written->typeOf(typeid(*object));
        type = known->tag != 0 ? known->type : nullptr;
    }
}

void CArchive::MapObject(const CObject* object) {
    if (IsLoading()) {
        addRead(const_cast<CObject*>(object));
        return;
    }
    // What was written or mapped before keeps its first number.
    const bool isNew = object != nullptr && written().numberOfObject(object) == 0;
    if (!(isNew ? written().addObject(object) : written().skipNumber())) {
        throwBad(CArchiveException::badIndex);
    }
}

DWORD CArchive::LastReadNumber() const {
    return m_read != nullptr ? m_read->last() : 0;
}

CObject* CArchive::FindReadObject(DWORD number) const {
    return m_read != nullptr ? m_read->findObject(number) : nullptr;
}

CRuntimeClass* CArchive::ReadClass(const CRuntimeClass* wanted, UINT* schema, DWORD* objectTag) {
    if (IsStoring()) throwWrongDirection();
    if (wanted != nullptr && !wanted->IsSerializable()) AfxThrowNotSupportedException();

    const DWORD number = readClassNumber(objectTag);
    if (number == 0) return nullptr;
    const ReadNumbers::Class* const known = read().findClass(number);
    if (known == nullptr) throwBad(CArchiveException::badIndex);
    if (wanted != nullptr && !known->pClass->IsDerivedFrom(wanted)) {
        throwBad(CArchiveException::badClass);
    }
    if (schema != nullptr) *schema = known->schema;
    return known->pClass;
}

inline DWORD CArchive::readClassNumber(DWORD* objectTag) {
    WORD shortTag;
    *this >> shortTag;
    if (shortTag > kClassFlag && shortTag != kNewClassTag) [[likely]]
        return static_cast<DWORD>(shortTag ^ kClassFlag);
    return shortTag == kNewClassTag ? readNewClass() : readRareTag(shortTag, objectTag);
}

DWORD CArchive::readRareTag(WORD shortTag, DWORD* objectTag) {
    DWORD tag = shortTag == kClassFlag ? kBigClassFlag : shortTag;
    if (shortTag == kBigTag) *this >> tag;
    if ((tag & kBigClassFlag) == 0) {
        if (objectTag == nullptr) throwBad(CArchiveException::badIndex);
        *objectTag = tag;
        return 0;
    }
    // A number of no class and the number of an object read earlier are different errors.
    if (tag == kBigClassFlag) throwBad(CArchiveException::badIndex);
    return tag ^ kBigClassFlag;
}

DWORD CArchive::readNewClass() {
    WORD schema;
    WORD nameLength;
    *this >> schema >> nameLength;
    if (nameLength == 0 || nameLength > kLongestClassName) throwBad(CArchiveException::badIndex);
    char name[kLongestClassName + 1] = {};
    EnsureRead(name, nameLength);

    CRuntimeClass* pClass = CRuntimeClass::FromName(name);
    if (pClass == nullptr || pClass->m_pfnCreateObject == nullptr || !pClass->IsSerializable() ||
        std::strlen(name) != nameLength) {
        throwBad(CArchiveException::badClass);
    }
    if (!acceptsSchema(pClass, schema)) throwBad(CArchiveException::badSchema);
    const DWORD number = read().addClass({pClass, schema});
    if (number == 0) throwBad(CArchiveException::badIndex);
    return number;
}

inline DWORD CArchive::addRead(CObject* object) {
    const DWORD number = read().addObject(object);
    if (number == 0) throwBad(CArchiveException::badIndex);
    return number;
}

CObject* CArchive::ReadObject(const CRuntimeClass* wanted) {
    UINT schema = 0;
    DWORD tag = 0;
    const CRuntimeClass* pClass = ReadClass(wanted, &schema, &tag);
    if (pClass != nullptr) return readNewObject(pClass, schema);
    if (tag == kNullTag) return nullptr;

    CObject* const known = read().findObject(tag);
    if (known == nullptr) throwBad(CArchiveException::badIndex);
    if (wanted != nullptr && !known->IsKindOf(wanted)) throwBad(CArchiveException::badClass);
    return known;
}

CObject* CArchive::readNewObject(const CRuntimeClass* pClass, UINT schema) {
    if (m_depth == kDeepestNesting) throwBad(CArchiveException::badIndex);
    std::unique_ptr<CObject> object(pClass->CreateObject());
    if (object == nullptr) AfxThrowMemoryException();
    const DWORD number = addRead(object.get());

    const UINT callersSchema = std::exchange(m_objectSchema, schema);
    ++m_depth;
    try {
        object->Serialize(*this);
    } catch (...) {
        read().forgetFrom(number);
        --m_depth;
        m_objectSchema = callersSchema;
        throw;
    }
    --m_depth;
    m_objectSchema = callersSchema;
    return object.release();
}

UINT CArchive::GetObjectSchema() {
    return std::exchange(m_objectSchema, static_cast<UINT>(-1));
}

CArchive& operator<<(CArchive& ar, const CObject* object) {
    ar.WriteObject(object);
    return ar;
}

CArchive& operator>>(CArchive& ar, CObject*& object) {
    object = ar.ReadObject(nullptr);
    return ar;
}
