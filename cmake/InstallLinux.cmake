# The package: the folders of `cmake --install`.
#
#   bin      the programs, which contain the library
#   include  the public headers, in their folders
#   lib      the shared and the static library; in cmake/NyServer the files for find_package
#   share    the documents, the example, the dissector, and `nyctl`'s manual page and completion
include(GNUInstallDirs)
include(cmake/InstallCommon.cmake)

# Both libraries contain all layers, the class library's included.
ny_dll(NyServer server)
target_link_libraries(NyServer PRIVATE nybase)
set_target_properties(NyServer PROPERTIES PREFIX lib OUTPUT_NAME nyserver
  VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
add_library(NyServerArchive STATIC)
target_link_libraries(NyServerArchive PUBLIC $<BUILD_INTERFACE:nyserver> $<BUILD_INTERFACE:nybase>)
set_target_properties(NyServerArchive PROPERTIES OUTPUT_NAME nyserver LINKER_LANGUAGE CXX)

# A linker would omit the records, whose classes register themselves, from a plain archive.
add_library(NyServerStatic INTERFACE)
target_link_libraries(NyServerStatic INTERFACE $<INSTALL_INTERFACE:$<LINK_LIBRARY:WHOLE_ARCHIVE,NyServer::NyServerArchive>>)

foreach(library NyServer NyServerStatic)
  target_include_directories(${library} INTERFACE
    $<INSTALL_INTERFACE:include> $<INSTALL_INTERFACE:include/NyServer/base/mfc> $<INSTALL_INTERFACE:include/NyServer/base/qo>)
  target_compile_definitions(${library} INTERFACE $<INSTALL_INTERFACE:NYSERVER_VISIBLE>
    $<INSTALL_INTERFACE:NYBASE_VISIBLE>)
  target_compile_features(${library} INTERFACE cxx_std_20)
endforeach()

install(TARGETS NyServer NyServerArchive NyServerStatic EXPORT NyServerTargets)
# CMake strips no archives.
install(CODE "execute_process(COMMAND ${CMAKE_STRIP} --strip-debug
  \$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}/libnyserver.a COMMAND_ERROR_IS_FATAL ANY)")

ny_install_common(NyServerConfigLinux.cmake.in ${CMAKE_INSTALL_LIBDIR} ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY tools/wireshark DESTINATION ${CMAKE_INSTALL_DOCDIR})
