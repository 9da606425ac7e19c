// A text from a module's string table.
#pragma once

#include <afxwin.h>

#include "NyServer/base/support/NyBaseApi.h"

// Derived classes select the module. Not to be deleted by a pointer to this class.
class NYBASE_API QoUiLoadString {
  public:
    explicit QoUiLoadString(UINT id) : m_id(id) {}
    QoUiLoadString(const QoUiLoadString&) = delete;
    QoUiLoadString& operator=(const QoUiLoadString&) = delete;

    // Returns the text; empty if the module is unknown or has no text with that identifier.
    CString loadString() const;

  protected:
    ~QoUiLoadString() = default;

    // Returns the module; null if it is unknown. By default AfxGetResourceHandle().
    virtual HINSTANCE getResourceHandle() const;

  private:
    UINT m_id;
};
