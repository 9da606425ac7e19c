// A text from a module's string table.
#pragma once

#include <afxwin.h>

#include "NyServer/base/support/NyBaseApi.h"

// Derived classes say in which module the text lies. Not to be deleted by a pointer to this class.
class NYBASE_API QoUiLoadString {
  public:
    explicit QoUiLoadString(UINT id) : m_id(id) {}
    QoUiLoadString(const QoUiLoadString&) = delete;
    QoUiLoadString& operator=(const QoUiLoadString&) = delete;

    // The text; empty when the module has none with that identifier, or is not known.
    CString loadString() const;

  protected:
    ~QoUiLoadString() = default;

    // The module; null when it is not known. The current resource handle's unless overridden.
    virtual HINSTANCE getResourceHandle() const;

  private:
    UINT m_id;
};
