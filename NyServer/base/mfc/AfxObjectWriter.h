// Writes tables of objects whose type is known to the compiler, much faster than an archive does by
// itself. Internal to the class library: use CArchive::WriteObjects.
#pragma once

#include "AfxFetchEarly.h"
#include "AfxShortText.h"
#include "CArchiveWritten.h"
#include "CObject.h"
#include "CString.h"

// Takes an archive's place between its construction and finish(), and leaves the archive as if it
// had written everything itself. What makes it fast is that nothing of the usual course is a call,
// so that the ends of what is written stay in the processor's registers from one field to the next.
// Whatever is not usual is the archive's to write: an object that is null, of another type or
// written before, the first of its class, and whatever the room does not suffice for.
//
// Throws as the archive does, which nobody must write to afterwards.
class AfxObjectWriter {
  public:
    explicit AfxObjectWriter(CArchive& ar) : m_archive(ar) { resume(); }
    AfxObjectWriter(const AfxObjectWriter&) = delete;
    AfxObjectWriter& operator=(const AfxObjectWriter&) = delete;

    // REQUIRES: nothing is written through this object afterwards.
    void finish() {
        m_archive.m_out = m_out;
        if (m_numbers != nullptr) m_numbers->takeBack(m_marker);
    }

    template <class T>
    requires afxIsArchiveValue<T> AfxObjectWriter& operator<<(T value) {
        if (roomLeft() < sizeof value) [[unlikely]]
            return leaveToArchive([value](CArchive& ar) { ar << value; });
        append(value);
        return *this;
    }

    // Several at once, with one look at the room.
    template <class... Ts>
    requires(afxIsArchiveValue<Ts>&&...) void WriteValues(Ts... values) {
        if (roomLeft() < (sizeof values + ...)) [[unlikely]] {
            leaveToArchive([values...](CArchive& ar) { (ar << ... << values); });
            return;
        }
        (append(values), ...);
    }

    AfxObjectWriter& operator<<(const CString& text) {
        const size_t bytes = AfxShortText::bytesOf(text);
        if (bytes == 0 || roomLeft() < bytes) [[unlikely]]
            return leaveToArchive([&text](CArchive& ar) { ar << text; });
        AfxShortText::write(m_out, text);
        m_out += bytes;
        return *this;
    }

    // As CArchive::WriteObjects.
    template <class T>
    void WriteObjects(const CObject* const* objects, size_t count) {
        if (count < 0xFFFF) [[likely]] {
            *this << static_cast<WORD>(count);
        } else {
            leaveToArchive([count](CArchive& ar) { ar.WriteCount(count); });
        }
        WORD tag = tagOf<T>();
        for (size_t i = 0; i < count; ++i) {
            const CObject* const object = objects[i];
            if constexpr (requires { &T::storedMemory; }) fetchAhead<T>(objects + i, count - i);
            if (__builtin_expect(tag == 0 || !isOf<T>(object) || !m_marker.mark(object), false)) {
                leaveToArchive([object](CArchive& ar) { ar.WriteObject(object); });
                tag = tagOf<T>();
                continue;
            }
            *this << tag;
            static_cast<const T*>(object)->storeFields(*this);
        }
    }

  private:
    // REQUIRES: there is room.
    template <class T>
    void append(T value) {
        std::memcpy(m_out, &value, sizeof value);
        m_out += sizeof value;
    }

    size_t roomLeft() const { return static_cast<size_t>(m_end - m_out); }

    void resume() {
        m_numbers = m_archive.m_written.get();
        m_out = m_archive.m_out;
        m_end = m_archive.m_outEnd;
        if (m_numbers != nullptr) m_marker = CArchive::WrittenNumbers::Marker(*m_numbers);
    }

    template <class Write>
    AfxObjectWriter& leaveToArchive(Write write) {
        finish();
        callOutOfLine(m_archive, write);
        resume();
        return *this;
    }
    template <class Write>
    [[gnu::noinline]] static void callOutOfLine(CArchive& ar, Write write) {
        write(ar);
    }

    template <class T>
    WORD tagOf() const {
        return m_numbers != nullptr ? m_numbers->tagOf(typeid(T)) : 0;
    }

    // Whether the object is of that very type.
    template <class T>
    static bool isOf(const CObject* object) {
        return object != nullptr && &typeid(*object) == &typeid(T);
    }

    // The objects of a large table are not in the processor's caches: it is told of each, and then
    // of what belongs to it, some objects beforehand. Inlined, since the compiler drops calls of
    // functions that have no other effect.
    template <class T>
    [[gnu::always_inline]] static void fetchAhead(const CObject* const* objects, size_t left) {
        constexpr size_t kFar = 16;
        constexpr size_t kNear = 8;
        if (left <= kFar) return;
        afxFetchEarly(objects[kFar]);
        if (!isOf<T>(objects[kNear])) return;
        for (const void* const part : static_cast<const T*>(objects[kNear])->storedMemory()) {
            __builtin_prefetch(part);
        }
    }

    CArchive& m_archive;
    CArchive::WrittenNumbers* m_numbers;  // null before the archive's first object
    CArchive::WrittenNumbers::Marker m_marker;
    BYTE* m_out;
    BYTE* m_end;
};

template <class T>
[[gnu::flatten]] void CArchive::WriteObjects(const CObject* const* objects, size_t count) {
    AfxObjectWriter writer(*this);
    writer.WriteObjects<T>(objects, count);
    writer.finish();
}
