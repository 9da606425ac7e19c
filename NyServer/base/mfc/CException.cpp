#include "afx.h"

IMPLEMENT_DYNAMIC(CException, CObject)
IMPLEMENT_DYNAMIC(CSimpleException, CException)
IMPLEMENT_DYNAMIC(CMemoryException, CSimpleException)
IMPLEMENT_DYNAMIC(CNotSupportedException, CSimpleException)
IMPLEMENT_DYNAMIC(CInvalidArgException, CSimpleException)
IMPLEMENT_DYNAMIC(CArchiveException, CException)
IMPLEMENT_DYNAMIC(CFileException, CException)

void CException::Delete() {
    if (m_bAutoDelete) delete this;
}

void AFXAPI AfxThrowMemoryException() {
    // Created in advance: there is no memory to create it now.
    static CMemoryException noMemory(FALSE);
    throw &noMemory;
}

void AFXAPI AfxThrowNotSupportedException() {
    throw new CNotSupportedException;
}
void AFXAPI AfxThrowInvalidArgException() {
    throw new CInvalidArgException;
}

void AFXAPI AfxThrowArchiveException(int cause, LPCTSTR lpszArchiveName) {
    throw new CArchiveException(cause, lpszArchiveName);
}

void AFXAPI AfxThrowFileException(int cause, LONG lOsError, LPCTSTR lpszFileName) {
    throw new CFileException(cause, lOsError, lpszFileName);
}
