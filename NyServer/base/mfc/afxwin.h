// Windows, message boxes and resources.
#pragma once

#include "afx.h"

#include "CWnd.h"

// The program's own module.
NYBASE_API HINSTANCE AFXAPI AfxGetInstanceHandle();

// The module in which resources are searched first, one per process: the program's own unless
// another was set. May be called from any thread.
NYBASE_API HINSTANCE AFXAPI AfxGetResourceHandle();
// Null: the program's own module.
NYBASE_API void AFXAPI AfxSetResourceHandle(HINSTANCE instance);

// Returns the first module that has the resource: the current resource handle's, then the extension
// modules, the newest first, those of the system last; AfxGetResourceHandle() if none has it.
NYBASE_API HINSTANCE AFXAPI AfxFindResourceHandle(LPCTSTR name, LPCTSTR type);

// Shows a message box over the calling thread's active window, titled with the program's name, and
// waits until the user has answered. `type` is of the MB_ styles. Returns the button chosen (IDOK,
// IDYES, ...); 0 when out of memory. `helpId` is not used: there are no help files.
NYBASE_API int AFXAPI AfxMessageBox(LPCTSTR text, UINT type = MB_OK, UINT helpId = 0);
// The same with a text that CString::LoadString finds; an empty text if there is none.
NYBASE_API int AFXAPI AfxMessageBox(UINT textId, UINT type = MB_OK,
                                    UINT helpId = static_cast<UINT>(-1));

// Returns the name of a window class with these traits for CWnd::CreateEx, registered on first use
// and until the process ends; windows of it treat messages as DefWindowProc does. Throws
// CMemoryException if the system cannot register it. May be called from any thread.
NYBASE_API LPCTSTR AFXAPI AfxRegisterWndClass(UINT classStyle, HCURSOR cursor = nullptr,
                                              HBRUSH background = nullptr, HICON icon = nullptr);
