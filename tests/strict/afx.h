// What the library uses of what is publicly documented of the class library's <afx.h>: what a
// source outside NyServer/base uses beyond it does not compile in the preset strict. Declare more
// here only from the documentation. Nothing is linked with it.
#pragma once

#ifdef _WINDOWS_
#error "<afx.h> comes before <windows.h>"
#endif

#include <tchar.h>
#include <windows.h>

#define AFXAPI
#define AFX_API
#define AFX_DATA

#define VERSIONABLE_SCHEMA 0x80000000U

class CArchive;
class CDumpContext;
class CObject;

struct CRuntimeClass {
    LPCSTR m_lpszClassName;
    int m_nObjectSize;
    UINT m_wSchema;
    CObject*(PASCAL* m_pfnCreateObject)();
    CRuntimeClass*(PASCAL* m_pfnGetBaseClass)();
    CRuntimeClass* m_pNextClass;
};

class CObject {
  public:
    CObject(const CObject&) = delete;
    CObject& operator=(const CObject&) = delete;
    virtual ~CObject();

    void* PASCAL operator new(size_t nSize);
    void* PASCAL operator new(size_t, void* p);
    void* PASCAL operator new(size_t nSize, LPCSTR lpszFileName, int nLine);
    void PASCAL operator delete(void* p);
    void PASCAL operator delete(void* p, void* pPlace);
    void PASCAL operator delete(void* p, LPCSTR lpszFileName, int nLine);

    virtual CRuntimeClass* GetRuntimeClass() const;
    BOOL IsKindOf(const CRuntimeClass* pClass) const;
    virtual void Serialize(CArchive& ar);
    virtual void AssertValid() const;
    virtual void Dump(CDumpContext& dc) const;

    static CRuntimeClass classCObject;
    static CRuntimeClass* PASCAL GetThisClass();

  protected:
    CObject();
};

#define RUNTIME_CLASS(class_name) (class_name::GetThisClass())

CObject* AFXAPI AfxDynamicDownCast(CRuntimeClass* pClass, CObject* pObject);
#define DYNAMIC_DOWNCAST(class_name, object) \
    (static_cast<class_name*>(AfxDynamicDownCast(RUNTIME_CLASS(class_name), object)))

#define DECLARE_DYNAMIC(class_name)                  \
  protected:                                         \
    static CRuntimeClass* PASCAL _GetBaseClass();    \
                                                     \
  public:                                            \
    static AFX_DATA CRuntimeClass class##class_name; \
    static CRuntimeClass* PASCAL GetThisClass();     \
    CRuntimeClass* GetRuntimeClass() const override;

#define DECLARE_DYNCREATE(class_name) \
    DECLARE_DYNAMIC(class_name)       \
    static CObject* PASCAL CreateObject();

#define DECLARE_SERIAL(class_name) \
    DECLARE_DYNCREATE(class_name)  \
    friend AFX_API CArchive& AFXAPI operator>>(CArchive& ar, class_name*& pOb);

struct AFX_CLASSINIT {
    explicit AFX_CLASSINIT(CRuntimeClass* pNewClass);
};

#define IMPLEMENT_SERIAL(class_name, base_class_name, wSchema)                    \
    CObject* PASCAL class_name::CreateObject() {                                  \
        return new class_name;                                                    \
    }                                                                             \
    CRuntimeClass* PASCAL class_name::_GetBaseClass() {                           \
        return RUNTIME_CLASS(base_class_name);                                    \
    }                                                                             \
    CRuntimeClass class_name::class##class_name = {#class_name,                   \
                                                   sizeof(class_name),            \
                                                   wSchema,                       \
                                                   class_name::CreateObject,      \
                                                   &class_name::_GetBaseClass,    \
                                                   nullptr};                      \
    CRuntimeClass* PASCAL class_name::GetThisClass() {                            \
        return &class_name::class##class_name;                                    \
    }                                                                             \
    CRuntimeClass* class_name::GetRuntimeClass() const {                          \
        return RUNTIME_CLASS(class_name);                                         \
    }                                                                             \
    static AFX_CLASSINIT init_##class_name(RUNTIME_CLASS(class_name));            \
    CArchive& AFXAPI operator>>(CArchive& ar, class_name*& pOb) {                 \
        pOb = static_cast<class_name*>(ar.ReadObject(RUNTIME_CLASS(class_name))); \
        return ar;                                                                \
    }

// A template as there: a source that declares `class CString` does not compile.
template <class CharType>
class CStringT {
  public:
    CStringT();
    CStringT(const CStringT& strSrc);
    CStringT(LPCWSTR pszSrc);
    CStringT(LPCSTR pszSrc);
    CStringT(LPCWSTR pch, int nLength);
    CStringT(LPCSTR pch, int nLength);
    explicit CStringT(wchar_t ch, int nLength = 1);
    ~CStringT();
    CStringT& operator=(const CStringT& strSrc);
    CStringT& operator=(LPCWSTR pszSrc);
    CStringT& operator=(LPCSTR pszSrc);
    CStringT& operator=(wchar_t ch);
    CStringT& operator+=(const CStringT& str);
    CStringT& operator+=(LPCWSTR pszSrc);
    CStringT& operator+=(LPCSTR pszSrc);
    CStringT& operator+=(wchar_t ch);

    int GetLength() const;
    bool IsEmpty() const;
    void Empty();
    LPCWSTR GetString() const;
    operator LPCWSTR() const;
    wchar_t GetAt(int iChar) const;
    wchar_t operator[](int iChar) const;

    int Compare(LPCWSTR psz) const;
    int CompareNoCase(LPCWSTR psz) const;
    int Find(LPCWSTR pszSub, int iStart = 0) const;
    int Find(wchar_t ch, int iStart = 0) const;
    CStringT Mid(int iFirst) const;
    CStringT Mid(int iFirst, int nCount) const;

    void Format(LPCWSTR pszFormat, ...);
    void Format(UINT nFormatID, ...);
};
typedef CStringT<wchar_t> CString;

CString operator+(const CString& str1, const CString& str2);
CString operator+(const CString& str1, LPCWSTR psz2);
CString operator+(LPCWSTR psz1, const CString& str2);
bool operator==(const CString& str1, const CString& str2);
bool operator==(const CString& str1, LPCWSTR psz2);
bool operator!=(const CString& str1, const CString& str2);
bool operator!=(const CString& str1, LPCWSTR psz2);
bool operator<(const CString& str1, const CString& str2);

class CException : public CObject {
    DECLARE_DYNAMIC(CException)
  public:
    CException();
    void Delete();
};

class CMemoryException : public CException {};

class CArchiveException : public CException {
    DECLARE_DYNAMIC(CArchiveException)
  public:
    enum { none, genericException, readOnly, endOfFile, writeOnly, badIndex, badClass, badSchema };
};

class CFileException : public CException {};

[[noreturn]] void AFXAPI AfxThrowArchiveException(int cause, LPCTSTR lpszArchiveName = nullptr);

class CFile : public CObject {
    DECLARE_DYNAMIC(CFile)
  public:
    enum SeekPosition { begin = 0, current = 1, end = 2 };
    enum BufferCommand { bufferRead, bufferWrite, bufferCommit, bufferCheck };
    enum BufferFlags { bufferDirect = 1, bufferBlocking = 2 };

    virtual ULONGLONG GetPosition() const;
    virtual CString GetFilePath() const;
    virtual void SetFilePath(LPCTSTR lpszNewName);
    virtual ULONGLONG Seek(LONGLONG lOff, UINT nFrom);
    void SeekToBegin();
    virtual void SetLength(ULONGLONG dwNewLen);
    virtual ULONGLONG GetLength() const;
    virtual UINT Read(void* lpBuf, UINT nCount);
    virtual void Write(const void* lpBuf, UINT nCount);
    virtual void Abort();
    virtual void Flush();
    virtual void Close();
    virtual UINT GetBufferPtr(UINT nCommand, UINT nCount = 0, void** ppBufStart = nullptr,
                              void** ppBufMax = nullptr);
};

class CMemFile : public CFile {
    DECLARE_DYNAMIC(CMemFile)
  public:
    explicit CMemFile(UINT nGrowBytes = 1024);
    CMemFile(BYTE* lpBuffer, UINT nBufferSize, UINT nGrowBytes = 0);
    void Attach(BYTE* lpBuffer, UINT nBufferSize, UINT nGrowBytes = 0);
    BYTE* Detach();

  protected:
    virtual BYTE* Alloc(SIZE_T nBytes);
    virtual BYTE* Realloc(BYTE* lpMem, SIZE_T nBytes);
    virtual BYTE* Memcpy(BYTE* lpMemTarget, const BYTE* lpMemSource, SIZE_T nBytes);
    virtual void Free(BYTE* lpMem);
    virtual void GrowFile(SIZE_T dwNewLen);

    // The one undocumented name here: NySeMemFile::getBuffer sets it.
    BOOL m_bAutoDelete;
};

class CArchive {
  public:
    enum Mode { store = 0, load = 1, bNoFlushOnDelete = 2 };

    CArchive(CFile* pFile, UINT nMode, int nBufSize = 4096, void* lpBuf = nullptr);
    CArchive(const CArchive&) = delete;
    CArchive& operator=(const CArchive&) = delete;
    ~CArchive();

    BOOL IsStoring() const;
    void Close();
    UINT Read(void* lpBuf, UINT nMax);
    void Write(const void* lpBuf, INT nMax);

    CArchive& operator<<(BYTE by);
    CArchive& operator<<(WORD w);
    CArchive& operator<<(LONG l);
    CArchive& operator<<(DWORD dw);
    CArchive& operator<<(float f);
    CArchive& operator<<(double d);
    CArchive& operator<<(LONGLONG dwdw);
    CArchive& operator<<(ULONGLONG dwdw);
    CArchive& operator<<(int i);
    CArchive& operator<<(short w);
    CArchive& operator<<(char ch);
    CArchive& operator<<(wchar_t ch);
    CArchive& operator<<(unsigned u);
    CArchive& operator<<(bool b);
    CArchive& operator>>(BYTE& by);
    CArchive& operator>>(WORD& w);
    CArchive& operator>>(DWORD& dw);
    CArchive& operator>>(LONG& l);
    CArchive& operator>>(float& f);
    CArchive& operator>>(double& d);
    CArchive& operator>>(LONGLONG& dwdw);
    CArchive& operator>>(ULONGLONG& dwdw);
    CArchive& operator>>(int& i);
    CArchive& operator>>(short& w);
    CArchive& operator>>(char& ch);
    CArchive& operator>>(wchar_t& ch);
    CArchive& operator>>(unsigned& u);
    CArchive& operator>>(bool& b);

    CObject* ReadObject(const CRuntimeClass* pClass);
    void WriteObject(const CObject* pOb);
    CRuntimeClass* ReadClass(const CRuntimeClass* pClassRefRequested = nullptr,
                             UINT* pSchema = nullptr, DWORD* pObTag = nullptr);
    UINT GetObjectSchema();
    void SetObjectSchema(UINT nSchema);
};

CArchive& AFXAPI operator<<(CArchive& ar, const CObject* pOb);
CArchive& AFXAPI operator>>(CArchive& ar, CObject*& pOb);
CArchive& AFXAPI operator<<(CArchive& ar, const CString& str);
CArchive& AFXAPI operator>>(CArchive& ar, CString& str);
