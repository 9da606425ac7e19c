# Adds the library `headers`, which includes every header of the package, each in a source of its own.
cmake_path(SET include NORMALIZE ${NyServer_DIR}/../../../include)
file(GLOB_RECURSE headers RELATIVE ${include} ${include}/*.h)
set(sources)
foreach(header ${headers})
  # The class library's own are included by their own names.
  string(REGEX REPLACE "^NyServer/base/(mfc|qo)/" "" name ${header})
  string(MAKE_C_IDENTIFIER ${header} source)
  file(CONFIGURE OUTPUT ${source}.cpp CONTENT "#include <${name}>\n")
  list(APPEND sources ${CMAKE_CURRENT_BINARY_DIR}/${source}.cpp)
endforeach()
add_library(headers OBJECT ${sources})
target_link_libraries(headers PRIVATE NyServer::NyServer ny_options)
