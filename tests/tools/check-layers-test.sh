#!/usr/bin/env bash
# check-layers allows what the order of the layers allows and names each kind of wrong include.
set -eu
. "$(dirname "$0")/testing.sh"

cd "$project"
mkdir -p tests NyServer/{base/mfc/windows,base/port/posix,base/support,base/qo,records,framing,socket/windows,client,online}
touch tests/Helper.h NyServer/{NyServerApi.h,base/WindowsPrelude.h,base/qo/QoObject2.h} \
  NyServer/base/{mfc/afx.h,mfc/CArchive.h,support/SmallBlocks.h} \
  NyServer/{records/NySeUser.h,framing/NySeMemFile.h}

# after_adding LINE FILE: the project with LINE in one more file of the library.
after_adding() {
  find NyServer -name 'Added.*' -delete
  echo "$1" > "NyServer/$2"
}

after_adding '#include "NyServer/NyServerApi.h"' base/qo/Added.h
accepts check-layers
after_adding '#include <QoObject2.h>' records/Added.h
accepts check-layers
after_adding '#include <vector>' records/Added.h
accepts check-layers
after_adding '#include "NyServer/base/WindowsPrelude.h"' socket/windows/Added.cpp
accepts check-layers
after_adding '#include <unistd.h>' base/port/posix/Added.cpp
accepts check-layers
after_adding '#ifdef _WIN32' base/port/Port.h
accepts check-layers
rm NyServer/base/port/Port.h
after_adding '#include "NyServer/base/WindowsPrelude.h"' base/mfc/windows/Added.cpp
accepts check-layers
after_adding '#include "NyServer/base/support/SmallBlocks.h"' base/mfc/Added.h
accepts check-layers
after_adding '#include "CArchive.h"' base/mfc/Added.h
accepts check-layers
after_adding '#include <afx.h>' base/qo/Added.h
accepts check-layers
after_adding '#include "NyServer/base/support/SmallBlocks.h"' base/qo/Added.h
accepts check-layers
after_adding '#include <afx.h>' socket/Added.cpp
accepts check-layers

after_adding '#include "NyServer/framing/NySeMemFile.h"' records/Added.h
rejects check-layers 'records must not include NyServer/framing/NySeMemFile.h of layer framing'
after_adding '#include <QoObject2.h>' base/mfc/Added.h
rejects check-layers 'base/mfc must not include NyServer/base/qo/QoObject2.h'
after_adding '#include <CArchive.h>' base/qo/Added.h
rejects check-layers 'includes NyServer/base/mfc/CArchive.h, which the real class library does not have'
after_adding '#include "NyServer/base/mfc/CArchive.h"' framing/Added.h
rejects check-layers 'which the real class library does not have'
after_adding '#include <afx.h>' base/support/Added.h
rejects check-layers 'base/support must not include NyServer/base/mfc/afx.h'
after_adding '  #  include "../records/NySeUser.h"' socket/Added.cpp
rejects check-layers 'socket must not include NyServer/records/NySeUser.h'
after_adding '#include <afx.h>' base/port/Added.h
rejects check-layers 'base/port must not include NyServer/base/mfc/afx.h'
after_adding '#include "NyServer/base/WindowsPrelude.h"' framing/Added.h
rejects check-layers 'framing must not include NyServer/base/WindowsPrelude.h'
after_adding '#include <process.h>' records/Added.h
rejects check-layers 'is portable and includes <process.h>'
after_adding '#include "NyServer/base/WindowsPrelude.h"' socket/Added.cpp
rejects check-layers 'socket must not include NyServer/base/WindowsPrelude.h'
after_adding '#include <unistd.h>' socket/Added.cpp
rejects check-layers 'is portable and includes <unistd.h>'
after_adding '#include <winsock2.h>' socket/windows/Added.cpp
rejects check-layers 'include "NyServer/base/WindowsPrelude.h" instead'
echo '#include <wininet.h>' > NyServer/online/ElementText.cpp
rejects check-layers 'ElementText.cpp is portable and includes <wininet.h>'
rm NyServer/online/ElementText.cpp
after_adding '#include "NyServer/records/Nowhere.h"' client/Added.cpp
rejects check-layers 'does not exist'
after_adding '#ifdef _WIN32' records/Added.h
rejects check-layers 'ask for the platform in'
after_adding '#include "tests/Helper.h"' client/Added.cpp
rejects check-layers 'of the library includes tests/Helper.h'

after_adding '' records/Added.h
echo '#if defined(__linux__)' > tests/Asking.cpp
rejects check-layers 'tests/Asking.cpp: ask for the platform in'

finish
