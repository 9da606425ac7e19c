# The language runtime is shared by all modules, so that an exception thrown in one can be caught in another; its DLLs
# are in the folder of the programs. NY_RUNTIME_DLLS: their paths in the compiler.
set(NY_RUNTIME_DLLS)
cmake_path(GET CMAKE_CXX_COMPILER PARENT_PATH ny_compiler_folder)
foreach(dll libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${dll}
    OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT IS_ABSOLUTE "${path}")
    find_file(NY_RUNTIME_${dll} ${dll} PATHS /usr/x86_64-w64-mingw32/lib ${ny_compiler_folder} REQUIRED)
    set(path ${NY_RUNTIME_${dll}})
  endif()
  list(APPEND NY_RUNTIME_DLLS ${path})
  file(COPY ${path} DESTINATION ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
endforeach()
