# The library as layers. Each of the modules base and server is made of layers:
#
#   ny<module>_headers  for sources that include the module's headers; nothing to link
#   ny_<layer>          the objects of one layer; each source is compiled once
#   ny<module>          all layers of the module, for a program that contains them; the DLL is linked from it too
#
# Objects, not archives: a linker would omit the records, whose classes register themselves.

# ny_module(MODULE): NY<MODULE>_EXPORTS, in the DLL, and NY<MODULE>_VISIBLE, where libraries export by visibility, select
# the export macro of this build; a user of the DLL defines neither.
function(ny_module module)
  add_library(ny${module}_headers INTERFACE)
  add_library(ny${module} INTERFACE)
  target_link_libraries(ny${module} INTERFACE ny${module}_headers)
  if(NOT WIN32)
    string(TOUPPER ny${module}_VISIBLE visible)
    target_compile_definitions(ny${module}_headers INTERFACE ${visible})
  endif()
endfunction()

# ny_dll(NAME MODULE): the DLL of all of the module's layers.
function(ny_dll name module)
  add_library(${name} SHARED)
  set_target_properties(${name} PROPERTIES PREFIX "" LINKER_LANGUAGE CXX)
  target_link_libraries(${name} PRIVATE ny${module} ny_options PUBLIC $<BUILD_INTERFACE:ny${module}_headers>)
endfunction()

# ny_public_headers(MODULE HEADER...): headers of this folder, which are installed in their folders.
function(ny_public_headers module)
  target_sources(ny${module}_headers INTERFACE
    FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${ARGN})
endfunction()

# ny_layer(LAYER MODULE [SOURCES file...] [HEADERS file...]): adds this folder's sources and public headers to a layer of
# the module. A header is public when it declares an exported name, when its name is the class library's own, and when a
# public header includes it.
function(ny_layer layer module)
  cmake_parse_arguments(arg "" "" "SOURCES;HEADERS" ${ARGN})
  if(NOT TARGET ny_${layer})
    add_library(ny_${layer} OBJECT)
    set_target_properties(ny_${layer} PROPERTIES UNITY_BUILD ${NY_UNITY} POSITION_INDEPENDENT_CODE ON)
    if(NOT WIN32)
      set_target_properties(ny_${layer} PROPERTIES CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
    else()
      string(TOUPPER ny${module}_EXPORTS exports)
      target_compile_definitions(ny_${layer} PRIVATE ${exports})
    endif()
    target_link_libraries(ny_${layer} PRIVATE ny${module}_headers ny_options)
    target_sources(ny${module} INTERFACE $<TARGET_OBJECTS:ny_${layer}>)
  endif()
  target_sources(ny_${layer} PRIVATE ${arg_SOURCES})
  if(arg_HEADERS)
    ny_public_headers(${module} ${arg_HEADERS})
  endif()
endfunction()
