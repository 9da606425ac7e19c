// The class library's exceptions: thrown as pointers, caught by pointer, released with Delete().
#pragma once

#include "CObject.h"
#include "CString.h"

// A handler that does not rethrow an exception calls Delete() once.
class NYBASE_API CException : public CObject {
    DECLARE_DYNAMIC(CException)
  public:
    // bAutoDelete: whether Delete() frees the object; FALSE for one that is not on the heap.
    explicit CException(BOOL bAutoDelete = TRUE) : m_bAutoDelete(bAutoDelete) {}
    void Delete();

  private:
    BOOL m_bAutoDelete;
};

class NYBASE_API CSimpleException : public CException {
    DECLARE_DYNAMIC(CSimpleException)
  public:
    using CException::CException;
};

// Out of memory.
class NYBASE_API CMemoryException : public CSimpleException {
    DECLARE_DYNAMIC(CMemoryException)
  public:
    using CSimpleException::CSimpleException;
};

// The object does not support the operation.
class NYBASE_API CNotSupportedException : public CSimpleException {
    DECLARE_DYNAMIC(CNotSupportedException)
  public:
    using CSimpleException::CSimpleException;
};

// An argument was outside its allowed values.
class NYBASE_API CInvalidArgException : public CSimpleException {
    DECLARE_DYNAMIC(CInvalidArgException)
  public:
    using CSimpleException::CSimpleException;
};

class NYBASE_API CArchiveException : public CException {
    DECLARE_DYNAMIC(CArchiveException)
  public:
    // Hosts test these numbers: do not change them.
    enum {
        none = 0,
        genericException = 1,
        readOnly = 2,   // writing into a loading archive
        endOfFile = 3,  // the data ended inside a value
        writeOnly = 4,  // reading from a storing archive
        badIndex = 5,   // the bytes are not an archive ("invalid format")
        badClass = 6,   // an object of an unexpected or an unknown class
        badSchema = 7   // stored under a schema that the class does not read
    };

    explicit CArchiveException(int cause = none, LPCTSTR lpszArchiveName = nullptr)
        : m_cause(cause), m_strFileName(lpszArchiveName) {}

    int m_cause;
    CString m_strFileName;
};

class NYBASE_API CFileException : public CException {
    DECLARE_DYNAMIC(CFileException)
  public:
    // Hosts test these numbers: do not change them.
    enum {
        none = 0,
        genericException = 1,
        fileNotFound = 2,
        badPath = 3,
        tooManyOpenFiles = 4,
        accessDenied = 5,
        invalidFile = 6,
        removeCurrentDir = 7,
        directoryFull = 8,
        badSeek = 9,
        hardIO = 10,
        sharingViolation = 11,
        lockViolation = 12,
        diskFull = 13,
        endOfFile = 14
    };

    explicit CFileException(int cause = none, LONG lOsError = -1, LPCTSTR lpszArchiveName = nullptr)
        : m_cause(cause), m_lOsError(lOsError), m_strFileName(lpszArchiveName) {}

    int m_cause;
    LONG m_lOsError;  // the platform's error number; -1 when there is none
    CString m_strFileName;
};

[[noreturn]] NYBASE_API void AFXAPI AfxThrowMemoryException();
[[noreturn]] NYBASE_API void AFXAPI AfxThrowNotSupportedException();
[[noreturn]] NYBASE_API void AFXAPI AfxThrowInvalidArgException();
[[noreturn]] NYBASE_API void AFXAPI AfxThrowArchiveException(int cause,
                                                             LPCTSTR lpszArchiveName = nullptr);
[[noreturn]] NYBASE_API void AFXAPI AfxThrowFileException(int cause, LONG lOsError = -1,
                                                          LPCTSTR lpszFileName = nullptr);
