include(CMakePackageConfigHelpers)

# ny_install_common(CONFIG LIBRARIES DOCUMENTS): installs what every package has: the public headers, what find_package
# reads, made from cmake/CONFIG, below the folder LIBRARIES, and the documents and examples in the folder DOCUMENTS.
function(ny_install_common config libraries documents)
  install(TARGETS nyserver_headers nybase_headers FILE_SET HEADERS DESTINATION include)

  set(made ${CMAKE_BINARY_DIR}/package)
  set(folder ${libraries}/cmake/NyServer)
  configure_package_config_file(cmake/${config} ${made}/NyServerConfig.cmake INSTALL_DESTINATION ${folder})
  write_basic_package_version_file(${made}/NyServerConfigVersion.cmake COMPATIBILITY SameMajorVersion)
  install(FILES ${made}/NyServerConfig.cmake ${made}/NyServerConfigVersion.cmake DESTINATION ${folder})
  install(EXPORT NyServerTargets NAMESPACE NyServer:: DESTINATION ${folder})

  install(DIRECTORY docs/ examples DESTINATION ${documents})
endfunction()
