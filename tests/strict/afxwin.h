// What is used of the class library's <afxwin.h>; see afx.h.
#pragma once

#include "afx.h"

class CWnd : public CObject {
    DECLARE_DYNAMIC(CWnd)
  public:
    CWnd();
    HWND GetSafeHwnd() const;

    HWND m_hWnd;
};

int AFXAPI AfxMessageBox(LPCTSTR lpszText, UINT nType = MB_OK, UINT nIDHelp = 0);
int AFXAPI AfxMessageBox(UINT nIDPrompt, UINT nType = MB_OK, UINT nIDHelp = static_cast<UINT>(-1));
