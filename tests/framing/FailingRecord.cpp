#include "tests/framing/FailingRecord.h"

IMPLEMENT_SERIAL(FailingRecord, CObject, 1)

void FailingRecord::Serialize(CArchive& ar) {
    ar << 7;
    switch (m_failure) {
        case Failure::archive:
            AfxThrowArchiveException(CArchiveException::genericException);
        case Failure::file:
            AfxThrowFileException(CFileException::diskFull);
        case Failure::memory:
            AfxThrowMemoryException();
    }
}
