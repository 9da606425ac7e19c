#include "../afxwin.h"

namespace {

// The program's file name without folder and extension.
CString programName() {
    wchar_t path[MAX_PATH] = L"";
    ::GetModuleFileNameW(nullptr, path, MAX_PATH - 1);
    const CString file(path);
    const CString name = file.Mid(file.ReverseFind('\\') + 1);
    const int extension = name.ReverseFind('.');
    return extension > 0 ? name.Left(extension) : name;
}

}  // namespace

int AFXAPI AfxMessageBox(LPCTSTR text, UINT type, UINT) {
    return ::MessageBoxW(::GetActiveWindow(), text, programName(), type);
}

int AFXAPI AfxMessageBox(UINT textId, UINT type, UINT helpId) {
    CString text;
    text.LoadString(textId);
    return AfxMessageBox(text.GetString(), type, helpId);
}
