#include "apps/central/MachineIdentity.h"

#include "NyServer/base/WindowsPrelude.h"

CString machineIdentity() {
    DWORD serial = 0;
    if (!::GetVolumeInformationW(L"C:\\", nullptr, 0, &serial, nullptr, nullptr, nullptr, 0))
        return {};
    CString text;
    text.Format(_T("%08lx"), serial);
    return text;
}
