// CArchive: values and objects as a stream of bytes in a file. Its encodings are the wire format.
#pragma once

#include "CException.h"
#include "CFile.h"

#include <cstring>
#include <memory>
#include <type_traits>
#include <utility>

class CObject;
struct CRuntimeClass;

// The value types that travel as their own little-endian bytes: 1, 2, 4 or 8 of them. A LONG is 4
// bytes everywhere; a type whose size depends on the platform (a native long) is left out, since
// its bytes would.
template <class T>
inline constexpr bool afxIsArchiveValue =
    std::is_same_v<T, BYTE> || std::is_same_v<T, char> || std::is_same_v<T, bool> ||
    std::is_same_v<T, WORD> || std::is_same_v<T, short> || std::is_same_v<T, WCHAR> ||
    std::is_same_v<T, int> || std::is_same_v<T, unsigned int> || std::is_same_v<T, LONG> ||
    std::is_same_v<T, DWORD> || std::is_same_v<T, float> || std::is_same_v<T, double> ||
    std::is_same_v<T, LONGLONG> || std::is_same_v<T, ULONGLONG>;

// Bound to one file in one direction. One archive may be used by one thread at a time. The file is
// the caller's and must outlive the archive; its position is meaningful only after Flush or Close.
//
// Every reading operation throws CArchiveException endOfFile when the data ends inside a value,
// writeOnly on a storing archive; every writing one throws readOnly on a loading archive. What the
// file throws passes through.
class NYBASE_API CArchive {
  public:
    enum Mode { store = 0, load = 1, bNoFlushOnDelete = 2 };

    // buffer: the caller's, of bufferSize bytes, used where the file has no memory of its own to
    // work in; null: one is made when it is needed.
    CArchive(CFile* file, UINT mode, int bufferSize = 4096, void* buffer = nullptr);
    CArchive(const CArchive&) = delete;
    CArchive& operator=(const CArchive&) = delete;
    // Closes, unless bNoFlushOnDelete was given. May throw as the file does.
    ~CArchive() noexcept(false);

    BOOL IsLoading() const { return (m_mode & load) != 0; }
    BOOL IsStoring() const { return !IsLoading(); }
    CFile* GetFile() const { return m_file; }

    // Storing: what was written is in the file, whose position is behind it. Loading: the file's
    // position is the first byte that was not extracted.
    void Flush();
    // Flushes and lets go of the file; no operation is legal afterwards.
    void Close();
    // Lets go of the file without flushing: what is still buffered is lost. Never throws.
    void Abort() noexcept;

    // The number of bytes read, less than `count` at the end of the data.
    UINT Read(void* buffer, UINT count);
    // Reads all `count` bytes or throws CArchiveException endOfFile.
    void EnsureRead(void* buffer, UINT count);
    void Write(const void* buffer, int count);

    template <class T>
    requires afxIsArchiveValue<T> CArchive& operator<<(T value) {
        if (roomLeft() < sizeof value) [[unlikely]]
            makeRoom(sizeof value);
        std::memcpy(m_out, &value, sizeof value);
        m_out += sizeof value;
        return *this;
    }

    template <class T>
    requires afxIsArchiveValue<T> CArchive& operator>>(T& value) {
        if (unreadBytes() < sizeof value) [[unlikely]]
            fetch(sizeof value);
        std::memcpy(&value, m_in, sizeof value);
        m_in += sizeof value;
        return *this;
    }

    // Any byte but 0 is true.
    CArchive& operator>>(bool& value) {
        BYTE byte;
        *this >> byte;
        value = byte != 0;
        return *this;
    }

    // A count: 2 bytes below FFFF, else FFFF and 4 bytes.
    void WriteCount(size_t count) {
        if (count < 0xFFFF) {
            *this << static_cast<WORD>(count);
        } else {
            writeLongCount(count);
        }
    }
    size_t ReadCount();

    // Bytes that can still be read. Loading archives only.
    ULONGLONG BytesLeft() const;

    // An object by reference: its class, once per archive, its number and its fields, once per
    // object; null for null. An object is known by its address: one that takes the place of a
    // deleted one while the archive is open may count as written. Throws CNotSupportedException for
    // a class that is not serialisable, CArchiveException badIndex when the archive's numbers are
    // used up.
    void WriteObject(const CObject* object);
    // A count, and then each object as WriteObject does it. Of this library alone, as is the next.
    void WriteObjects(const CObject* const* objects, size_t count);
    // The same, in less time for objects of type T, whose Serialize writes nothing but the bytes of
    // `fieldsOf(const T&)`, a plain value.
    template <class T, class FieldsOf>
    void WriteFields(const CObject* const* objects, size_t count, FieldsOf fieldsOf);
    // The object written by WriteObject: a new one, owned by the caller, or the one that was read
    // earlier from this archive. wanted: the class it must be of, null for any. Throws
    // CArchiveException badIndex for bytes that are no object (or are nested too deep), badClass
    // for an unknown class or another than wanted, badSchema for a schema that the class does not
    // read, and CMemoryException when it cannot be made. A new object whose fields cannot be read
    // is deleted.
    CObject* ReadObject(const CRuntimeClass* wanted);

    // The class part of an object alone. ReadClass returns null when an object read earlier (or
    // null) is what comes next: *objectTag is its number then, and badIndex is thrown where
    // objectTag is null.
    void WriteClass(const CRuntimeClass* pClass);
    CRuntimeClass* ReadClass(const CRuntimeClass* wanted = nullptr, UINT* schema = nullptr,
                             DWORD* objectTag = nullptr);
    // Gives `object` the next number without writing or reading anything; both directions must do
    // it at the same place.
    void MapObject(const CObject* object);

    // Loading, and of this library alone. The last number that a class or an object was given, 0
    // when there is none yet; and the object with that number, null when there is none.
    DWORD LastReadNumber() const;
    CObject* FindReadObject(DWORD number) const;

    // Loading: the schema under which the object being read was stored. Storing: what
    // SetObjectSchema set. (UINT)-1 when nothing is known. Asking resets it to that.
    UINT GetObjectSchema();
    void SetObjectSchema(UINT schema) { m_objectSchema = schema; }

    CString m_strFileName;

  private:
    class WrittenNumbers;
    struct WrittenType;
    class ReadNumbers;

    friend NYBASE_API CArchive& operator<<(CArchive& ar, const CString& text);
    friend NYBASE_API CArchive& operator>>(CArchive& ar, CString& text);

    // In the window, in bytes; 0 when it is closed or the archive goes the other way.
    size_t roomLeft() const { return static_cast<size_t>(m_outEnd - m_out); }
    size_t unreadBytes() const { return static_cast<size_t>(m_inEnd - m_in); }
    [[noreturn]] void throwWrongDirection() const;
    // Makes at least `count` bytes of room at m_out; throws readOnly when loading.
    void makeRoom(size_t count);
    // Makes at least `count` unread bytes lie at m_in, or throws endOfFile; writeOnly when storing.
    void fetch(size_t count);
    bool tryFetch(size_t count);
    void openWindow(size_t count);
    void useOwnBuffer();
    void closeWindow() noexcept { m_start = m_in = m_inEnd = m_out = m_outEnd = nullptr; }

    WrittenNumbers& written();
    ReadNumbers& read();
    [[noreturn]] void throwBad(int cause) const;
    void writeLongCount(size_t count);
    bool tryWriteNew(const CObject* object, WrittenType& known);
    void writeAnyObject(const CObject* object);
    void writeTag(DWORD number, DWORD classFlag);
    template <class T, bool ANYWHERE, class FieldsOf>
    bool tryWriteFields(const CObject* const* objects, size_t count, FieldsOf fieldsOf);
    template <class T, class FieldsOf>
    void writeFieldsAnywhere(const CObject* const* objects, size_t count, FieldsOf fieldsOf);
    // The number of the class that comes next; 0, with the number in *objectTag, when an object
    // read earlier comes next.
    DWORD readClassNumber(DWORD* objectTag);
    DWORD readRareTag(WORD shortTag, DWORD* objectTag);
    DWORD readNewClass();
    DWORD addRead(CObject* object);
    CObject* readNewObject(const CRuntimeClass* pClass, UINT schema);

    CFile* m_file;
    const UINT m_mode;
    const bool m_direct;  // the file's own memory is the window
    // The window: storing, [m_start, m_out) is written and [m_out, m_outEnd) is room; loading,
    // [m_in, m_inEnd) is unread. The other pair is null, so that a value that goes the wrong way
    // finds no room, and one check serves for both.
    BYTE* m_start = nullptr;
    BYTE* m_in = nullptr;
    BYTE* m_inEnd = nullptr;
    BYTE* m_out = nullptr;
    BYTE* m_outEnd = nullptr;
    size_t m_bufferSize;
    BYTE* m_buffer;
    std::unique_ptr<BYTE[]> m_ownBuffer;
    std::unique_ptr<WrittenNumbers> m_written;
    std::unique_ptr<ReadNumbers> m_read;
    UINT m_objectSchema = static_cast<UINT>(-1);
    int m_depth = 0;
};

NYBASE_API CArchive& operator<<(CArchive& ar, const CObject* object);
NYBASE_API CArchive& operator>>(CArchive& ar, CObject*& object);

NYBASE_API CArchive& operator<<(CArchive& ar, const CString& text);
NYBASE_API CArchive& operator>>(CArchive& ar, CString& text);

// The prefix of a string: its mark and its length in characters.
NYBASE_API void AfxWriteStringLength(CArchive& ar, UINT_PTR length, BOOL unicode);
// The length in characters; charSize becomes the bytes of each, 1 or 2. Throws CArchiveException
// badIndex for a length that no string has.
NYBASE_API UINT_PTR AfxReadStringLength(CArchive& ar, int& charSize);
