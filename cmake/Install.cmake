# The package: what `cmake --install` puts where, and the archive that the target `package` makes of it.
#
#   bin      the DLLs, those of the language runtime, and the programs
#   include  the public headers, in their folders
#   lib      the import libraries; in cmake/NyServer what find_package reads
#   docs     the documents and the example
#   tools    the dissector
include(CMakePackageConfigHelpers)

# A header is public when it declares an exported name, when a public header includes it, and when its name is the class
# library's own.
set(ny_public_headers
  ExceptionBoundary.h
  NyServerApi.h
  base/UniqueHandle.h
  base/WindowsPrelude.h
  base/mfc/AfxCopy.h
  base/mfc/AfxFetchEarly.h
  base/mfc/AfxObjectNumbers.h
  base/mfc/AfxObjectWriter.h
  base/mfc/AfxShortText.h
  base/mfc/AfxText.h
  base/mfc/CArchive.h
  base/mfc/CArchiveWritten.h
  base/mfc/CException.h
  base/mfc/CFile.h
  base/mfc/CMemFile.h
  base/mfc/CObject.h
  base/mfc/CString.h
  base/mfc/CWnd.h
  base/mfc/afx.h
  base/mfc/afxarray.h
  base/mfc/afxcoll.h
  base/mfc/afxdllx.h
  base/mfc/afxplatform.h
  base/mfc/afxtempl.h
  base/mfc/afxwin.h
  base/qo/QoArray2.h
  base/qo/QoArraySerial2.h
  base/qo/QoObject2.h
  base/qo/QoSort.h
  base/qo/QoUi.h
  base/qo/QoUiLoadString.h
  base/qo/QoUiSwitchResource.h
  base/qo/QoWaitCursor.h
  base/support/NyBaseApi.h
  base/support/SmallBlocks.h
  client/NySeClientApp.h
  framing/NySeActions.h
  framing/NySeMemFile.h
  framing/NySeNotification.h
  framing/NySeReply.h
  host/NyFctIpUtil.h
  host/NyServerModule.h
  listener/NyServerApp.h
  listener/NyServerNotification.h
  listener/NyServerThreadApp.h
  online/NyFctWebService.h
  records/NySeConnection.h
  records/NySeConnectionArray.h
  records/NySeLock.h
  records/NySeLockArray.h
  records/NySeMessage.h
  records/NySeRecord.h
  records/NySeRecordStore.h
  records/NySeSessionLock.h
  records/NySeSessionLockPtrArray.h
  records/NySeShareMode.h
  records/NySeTable.h
  records/NySeUser.h
  records/NySeUserPtrArray.h
  records/QoArraySimple.h
  socket/CUT_DataSource.h
  socket/CUT_File.h
  socket/CUT_FileDataSource.h
  socket/CUT_WSClient.h
  socket/CUT_WSServer.h
  socket/CUT_WSThread.h
  socket/HostLookUps.h
  socket/SocketCodes.h
  socket/SocketErrorText.h)

set(ny_programs nycentral nyctl nymonitor)

# Debug information names the folders of the machine that it was made on.
install(CODE "set(CMAKE_INSTALL_DO_STRIP ON)")

install(TARGETS NyServerDll NyBaseDll EXPORT NyServerTargets RUNTIME DESTINATION bin ARCHIVE DESTINATION lib)
install(TARGETS ${ny_programs} RUNTIME DESTINATION bin)
install(FILES ${NY_RUNTIME_DLLS} DESTINATION bin)

foreach(header ${ny_public_headers})
  cmake_path(GET header PARENT_PATH folder)
  install(FILES NyServer/${header} DESTINATION include/NyServer/${folder})
endforeach()

# What a user of the library has to know of its build. The class library's names are a matter of NyBaseDll, so that they
# can be left away together with it.
target_include_directories(NyServerDll INTERFACE $<INSTALL_INTERFACE:include>)
target_include_directories(NyBaseDll INTERFACE
  $<INSTALL_INTERFACE:include> $<INSTALL_INTERFACE:include/NyServer/base/mfc> $<INSTALL_INTERFACE:include/NyServer/base/qo>)
target_compile_definitions(NyServerDll INTERFACE UNICODE _UNICODE)
target_compile_features(NyServerDll INTERFACE cxx_std_20)

set(ny_config_folder lib/cmake/NyServer)
set(ny_shipped_dlls NyServerDll.dll NyBaseDll.dll)
foreach(dll ${NY_RUNTIME_DLLS})
  cmake_path(GET dll FILENAME name)
  list(APPEND ny_shipped_dlls ${name})
endforeach()
list(JOIN ny_shipped_dlls " " ny_shipped_dlls)
configure_package_config_file(cmake/NyServerConfig.cmake.in ${CMAKE_BINARY_DIR}/package/NyServerConfig.cmake
  INSTALL_DESTINATION ${ny_config_folder})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/package/NyServerConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${CMAKE_BINARY_DIR}/package/NyServerConfig.cmake ${CMAKE_BINARY_DIR}/package/NyServerConfigVersion.cmake
  DESTINATION ${ny_config_folder})
install(EXPORT NyServerTargets NAMESPACE NyServer:: DESTINATION ${ny_config_folder})

install(DIRECTORY docs/ DESTINATION docs)
install(DIRECTORY examples DESTINATION docs)
install(DIRECTORY tools/wireshark DESTINATION tools)

set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_NAME NyServer)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Shared library of a collaborative design server")
set(CPACK_SYSTEM_NAME win64)
set(CPACK_PACKAGE_FILE_NAME NyServer-${PROJECT_VERSION}-win64)
include(CPack)
