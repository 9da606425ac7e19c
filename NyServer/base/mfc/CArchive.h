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

// The value types that are written as their own little-endian bytes: 1, 2, 4 or 8 of them. A LONG
// is 4 bytes on every platform. A native long, whose size depends on the platform, is not among
// them.
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
// Reading operations throw CArchiveException endOfFile if the data ends inside a value, and
// writeOnly on a storing archive; writing operations throw readOnly on a loading archive.
// Exceptions of the file pass through.
class NYBASE_API CArchive {
  public:
    enum Mode { store = 0, load = 1, bNoFlushOnDelete = 2 };

    // `buffer` is the caller's, of bufferSize bytes, and used if the file has no memory to work in;
    // if null, a buffer is allocated when it is needed.
    CArchive(CFile* file, UINT mode, int bufferSize = 4096, void* buffer = nullptr);
    CArchive(const CArchive&) = delete;
    CArchive& operator=(const CArchive&) = delete;
    // Closes, unless bNoFlushOnDelete was given. May throw what the file throws.
    ~CArchive() noexcept(false);

    BOOL IsLoading() const { return (m_mode & load) != 0; }
    BOOL IsStoring() const { return !IsLoading(); }
    CFile* GetFile() const { return m_file; }

    // Storing: writes what is buffered; the file's position is after the last byte written.
    // Loading: sets the file's position to the first byte that was not extracted.
    void Flush();
    // Flushes and detaches the file. REQUIRES: no operation is called afterwards.
    void Close();
    // Detaches the file without flushing: what is buffered is lost. Never throws.
    void Abort() noexcept;

    // Returns the number of bytes read, less than `count` at the end of the data.
    UINT Read(void* buffer, UINT count);
    // Reads all `count` bytes or throws CArchiveException endOfFile.
    void EnsureRead(void* buffer, UINT count);
    void Write(const void* buffer, int count);

    template <class T>
    requires afxIsArchiveValue<T> CArchive& operator<<(T value) {
        if (spaceLeft() < sizeof value) [[unlikely]]
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

    // Reads a byte; any value but 0 is true.
    CArchive& operator>>(bool& value) {
        BYTE byte;
        *this >> byte;
        value = byte != 0;
        return *this;
    }

    // Writes a count: 2 bytes if below FFFF, else FFFF and 4 bytes.
    void WriteCount(size_t count) {
        if (count < 0xFFFF) {
            *this << static_cast<WORD>(count);
        } else {
            writeLongCount(count);
        }
    }
    size_t ReadCount();

    // Returns the number of bytes that can still be read. REQUIRES: a loading archive.
    ULONGLONG BytesLeft() const;

    // Writes a reference to an object: its class, once per archive, its number, and its fields,
    // once per object; a null tag for null. An object is identified by its address: one that takes
    // the place of a deleted one while the archive is open may count as written. Throws
    // CNotSupportedException for a class that is not serialisable, and CArchiveException badIndex
    // if no number is left.
    void WriteObject(const CObject* object);
    // Writes a count, then each object as WriteObject does. An extension of this library, as is the
    // next function.
    void WriteObjects(const CObject* const* objects, size_t count);
    // Does the same in less time for objects of type T. REQUIRES: Serialize of T writes exactly the
    // bytes of `fieldsOf(const T&)`, a plain value.
    template <class T, class FieldsOf>
    void WriteFields(const CObject* const* objects, size_t count, FieldsOf fieldsOf);
    // Reads what WriteObject wrote. Returns a new object, owned by the caller, or the one that was
    // read earlier from this archive; null for null. `wanted` is the class that the object must
    // have, null for any. Throws CArchiveException badIndex for bytes that are no object or are
    // nested too deep, badClass for an unknown class or one that is not `wanted`, badSchema for a
    // schema that the class does not read, and CMemoryException if out of memory. A new object
    // whose fields cannot be read is deleted.
    CObject* ReadObject(const CRuntimeClass* wanted);

    // Write and read the class part of an object alone. ReadClass returns null if the next is an
    // object read earlier, or null: then *objectTag is its number. Throws badIndex in that case if
    // objectTag is null.
    void WriteClass(const CRuntimeClass* pClass);
    CRuntimeClass* ReadClass(const CRuntimeClass* wanted = nullptr, UINT* schema = nullptr,
                             DWORD* objectTag = nullptr);
    // Gives `object` the next number without writing or reading anything. REQUIRES: both directions
    // call it at the same place.
    void MapObject(const CObject* object);

    // Extensions of this library. Return the last number that a class or an object was given, 0 if
    // none; and the object with that number, null if none. REQUIRES: a loading archive.
    DWORD LastReadNumber() const;
    CObject* FindReadObject(DWORD number) const;

    // Returns, when loading, the schema under which the object being read was stored; when storing,
    // what SetObjectSchema set; (UINT)-1 if unknown. Resets the schema to unknown.
    UINT GetObjectSchema();
    void SetObjectSchema(UINT schema) { m_objectSchema = schema; }

    CString m_strFileName;

  private:
    class WrittenNumbers;
    struct WrittenType;
    class ReadNumbers;

    friend NYBASE_API CArchive& operator<<(CArchive& ar, const CString& text);
    friend NYBASE_API CArchive& operator>>(CArchive& ar, CString& text);

    // In the window, in bytes; 0 if it is closed or the archive has the other direction.
    size_t spaceLeft() const { return static_cast<size_t>(m_outEnd - m_out); }
    size_t unreadBytes() const { return static_cast<size_t>(m_inEnd - m_in); }
    [[noreturn]] void throwWrongDirection() const;
    // Provides at least `count` bytes of space at m_out; throws readOnly when loading.
    void makeRoom(size_t count);
    // Provides at least `count` unread bytes at m_in, or throws endOfFile; writeOnly when storing.
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
    // Returns the number of the next class; 0, with the number in *objectTag, if the next is an
    // object read earlier.
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
