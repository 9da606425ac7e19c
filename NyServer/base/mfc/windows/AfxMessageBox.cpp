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
