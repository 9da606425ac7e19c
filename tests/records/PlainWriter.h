// An archive of locks and holders, written in the plainest way.
#pragma once

#include <map>
#include <string>

#include "NyServer/records/NySeLockArray.h"
#include "tests/support/Bytes.h"

// Writes the bytes that an archive does, by a map of all that was written.
class PlainWriter {
  public:
    template <class T>
    void value(T value) {
        const BYTE* const start = reinterpret_cast<const BYTE*>(&value);
        m_bytes.insert(m_bytes.end(), start, start + sizeof value);
    }
    void map(const CObject* object) {
        ++m_last;
        m_numbers.emplace(object, m_last);
    }
    void holder(const CObject* object) {
        if (beginObject(object)) holderFields(object);
    }
    void table(const NySeLockArray& table) {
        writeTable(table, [this](const CObject* object) {
            const auto& lock = static_cast<const NySeLock&>(*object);
            text(lock.getStrLockName());
            holders(lock.getHolders());
        });
    }
    void holders(const NySeSessionLockPtrArray& table) {
        writeTable(table, [this](const CObject* object) { holderFields(object); });
    }
    const Bytes& bytes() const { return m_bytes; }

  private:
    static constexpr WORD kBigTag = 0x7FFF;
    static constexpr DWORD kClassFlag = 0x8000;

    void holderFields(const CObject* object) {
        const auto& holder = static_cast<const NySeSessionLock&>(*object);
        value(holder.getLockState());
        value(holder.getSessionNumber());
    }
    template <class WriteFields>
    void writeTable(const CObArray& table, WriteFields writeFields) {
        value(static_cast<WORD>(table.GetSize()));
        for (INT_PTR i = 0; i < table.GetSize(); ++i) {
            if (beginObject(table.GetAt(i))) writeFields(table.GetAt(i));
        }
    }
    bool beginObject(const CObject* object) {
        if (object == nullptr || m_numbers.contains(object)) {
            tag(object != nullptr ? m_numbers[object] : 0, 0);
            return false;
        }
        const CRuntimeClass* const type = object->GetRuntimeClass();
        if (m_numbers.contains(type)) {
            tag(m_numbers[type], kClassFlag);
        } else {
            const std::string name = type->m_lpszClassName;
            value(WORD{0xFFFF});
            value(static_cast<WORD>(type->m_wSchema));
            value(static_cast<WORD>(name.size()));
            m_bytes.insert(m_bytes.end(), name.begin(), name.end());
            m_numbers[type] = ++m_last;
        }
        m_numbers[object] = ++m_last;
        return true;
    }
    void tag(DWORD number, DWORD flag) {
        if (number < kBigTag) return value(static_cast<WORD>(number | flag));
        value(kBigTag);
        value(number | flag << 16);
    }
    void text(const CString& text) {
        value(DWORD{0x00FFFEFF} | static_cast<DWORD>(text.GetLength()) << 24);
        for (int i = 0; i < text.GetLength(); ++i) value(text.GetAt(i));
    }

    Bytes m_bytes;
    std::map<const void*, DWORD> m_numbers;
    DWORD m_last = 0;
};
