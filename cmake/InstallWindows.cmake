# The package: the folders of `cmake --install`, and the archive that the target `package` makes of them.
#
#   bin      the DLLs, the DLLs of the language runtime, and the programs
#   include  the public headers, in their folders
#   lib      the import libraries; in cmake/NyServer the files for find_package
#   docs     the documents and the example
#   tools    the dissector
include(cmake/InstallCommon.cmake)

set(ny_programs nycentral nyctl nymonitor)

install(TARGETS NyServerDll NyBaseDll EXPORT NyServerTargets RUNTIME DESTINATION bin ARCHIVE DESTINATION lib)
install(TARGETS ${ny_programs} RUNTIME DESTINATION bin)
install(FILES ${NY_RUNTIME_DLLS} DESTINATION bin)

# The build properties that users of the library need. The class library's names belong to NyBaseDll, so that they can
# be omitted together with it.
target_include_directories(NyServerDll INTERFACE $<INSTALL_INTERFACE:include>)
target_include_directories(NyBaseDll INTERFACE
  $<INSTALL_INTERFACE:include> $<INSTALL_INTERFACE:include/NyServer/base/mfc> $<INSTALL_INTERFACE:include/NyServer/base/qo>)
target_compile_definitions(NyServerDll INTERFACE UNICODE _UNICODE)
target_compile_features(NyServerDll INTERFACE cxx_std_20)

set(ny_shipped_dlls NyServerDll.dll NyBaseDll.dll)
foreach(dll ${NY_RUNTIME_DLLS})
  cmake_path(GET dll FILENAME name)
  list(APPEND ny_shipped_dlls ${name})
endforeach()
list(JOIN ny_shipped_dlls " " ny_shipped_dlls)
ny_install_common(NyServerConfigWindows.cmake.in lib docs)
install(DIRECTORY tools/wireshark DESTINATION tools)

set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_NAME NyServer)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Shared library of a collaborative design server")
set(CPACK_SYSTEM_NAME win64)
set(CPACK_PACKAGE_FILE_NAME NyServer-${PROJECT_VERSION}-win64)
include(CPack)
