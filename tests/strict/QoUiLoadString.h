// The operations that the library needs of the vendor's windows library; see QoSort.h.
#pragma once

#include <afxwin.h>

class QoUiLoadString {
  public:
    explicit QoUiLoadString(UINT id);
    CString loadString() const;

  protected:
    ~QoUiLoadString();
    virtual HINSTANCE getResourceHandle() const;
};
