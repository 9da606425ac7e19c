# Header-only libraries that Debian installs under /usr/include. A cross build must not see that folder whole (it holds
# the host's C library), so each library gets its own folder with one link in it.
function(ny_header_only_library target folder package)
  if(CMAKE_HOST_WIN32)  # the compiler finds them where they are installed
    add_library(${target} INTERFACE)
    return()
  endif()
  if(NOT EXISTS /usr/include/${folder})
    message(FATAL_ERROR "/usr/include/${folder} is missing: install the Debian package ${package}")
  endif()
  set(links ${CMAKE_BINARY_DIR}/host-headers/${target})
  file(MAKE_DIRECTORY ${links})
  file(CREATE_LINK /usr/include/${folder} ${links}/${folder} SYMBOLIC)
  add_library(${target} INTERFACE)
  target_include_directories(${target} SYSTEM INTERFACE ${links})
endfunction()

ny_header_only_library(cli11 CLI libcli11-dev)
ny_header_only_library(nlohmann_json nlohmann nlohmann-json3-dev)
