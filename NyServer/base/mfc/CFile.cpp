#include "afx.h"

IMPLEMENT_DYNAMIC(CFile, CObject)

UINT CFile::GetBufferPtr(UINT, UINT, void**, void**) {
    return 0;
}
