// Arrays of objects and of strings.
#pragma once

#include "afx.h"
#include "detail/AfxArray.h"

// The extraction operators of these classes are exported with them.
#undef AFX_API
#define AFX_API NYBASE_API

// Pointers to objects, which the array does not own.
class NYBASE_API CObArray : public AfxArray<CObject*, CObject*> {
    DECLARE_SERIAL(CObArray)
  public:
    // A count, then each object as WriteObject writes it. The caller owns loaded objects.
    void Serialize(CArchive& ar) override;
};

class NYBASE_API CStringArray : public AfxArray<CString> {
    DECLARE_SERIAL(CStringArray)
  public:
    // A count, then each string.
    void Serialize(CArchive& ar) override;
};

#undef AFX_API
#define AFX_API
