// Windows, message boxes and resources.
#pragma once

#include "afx.h"

#include "CWnd.h"

// The program's own module.
NYBASE_API HINSTANCE AFXAPI AfxGetInstanceHandle();

// The module that resources are looked for in first, one per process: the program's own unless
// another was set. May be called from any thread.
NYBASE_API HINSTANCE AFXAPI AfxGetResourceHandle();
// Null: the program's own again.
NYBASE_API void AFXAPI AfxSetResourceHandle(HINSTANCE instance);

// The module that has the resource: the current resource handle's, then the extension modules, the
// newest first, those of the system last; AfxGetResourceHandle() when none has it.
NYBASE_API HINSTANCE AFXAPI AfxFindResourceHandle(LPCTSTR name, LPCTSTR type);

// Shows a message box over the calling thread's active window, titled with the program's name, and
// waits until the user has answered. `type` is of the MB_ styles. The button chosen (IDOK, IDYES,
// ...); 0 when there was no memory for the box. `helpId` is not used: there are no help files.
NYBASE_API int AFXAPI AfxMessageBox(LPCTSTR text, UINT type = MB_OK, UINT helpId = 0);
// The same with a text that CString::LoadString finds; an empty box when there is none.
NYBASE_API int AFXAPI AfxMessageBox(UINT textId, UINT type = MB_OK,
                                    UINT helpId = static_cast<UINT>(-1));

// The name of a window class with these traits for CWnd::CreateEx, registered on first use and kept
// for the life of the process; windows of it treat messages as DefWindowProc does. Throws
// CMemoryException when the system takes no more classes. May be called from any thread.
NYBASE_API LPCTSTR AFXAPI AfxRegisterWndClass(UINT classStyle, HCURSOR cursor = nullptr,
                                              HBRUSH background = nullptr, HICON icon = nullptr);
