// Windows.
#pragma once

#include "afx.h"

#include "CWnd.h"

// Shows a message box over the calling thread's active window, titled with the program's name, and
// waits until the user has answered. `type` is of the MB_ styles. The button chosen (IDOK, IDYES,
// ...); 0 when there was no memory for the box. `helpId` is not used: there are no help files.
NYBASE_API int AFXAPI AfxMessageBox(LPCTSTR text, UINT type = MB_OK, UINT helpId = 0);
