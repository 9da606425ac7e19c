// The operations that the library needs of the vendor's windows library; see QoSort.h.
#pragma once

#include <afxwin.h>

namespace QoUi {

HINSTANCE getHInstanceModuleRc(const CString& baseName, const CString& extension,
                               const CString& language);

}  // namespace QoUi
