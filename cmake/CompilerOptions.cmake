# ny_options: the compiler options of every target of this project.
add_library(ny_options INTERFACE)
set(warnings
  -Wall -Wextra -Wpedantic -Werror
  -Wshadow -Wnon-virtual-dtor -Wcast-align -Wformat=2 -Wimplicit-fallthrough -Wunused)
if(MSVC)
  # 4251 and 4275: hosts are built with the same compiler and run time, so that members and bases may be of their classes.
  set(warnings /W4 /WX /wd4251 /wd4275 /permissive- /Zc:__cplusplus /EHsc /utf-8)
elseif(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  list(APPEND warnings -Wduplicated-cond -Wlogical-op -Wsuggest-override)
elseif(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  list(APPEND warnings -Wthread-safety)  # see NyServer/detail/ThreadAnnotations.h
endif()
# Not for resources: their compiler takes other options.
target_compile_options(ny_options INTERFACE "$<$<COMPILE_LANGUAGE:C,CXX>:${warnings}>")

if(WIN32)
  # The socket layer is IPv4 and dotted text throughout: the older calls are intended.
  target_compile_definitions(ny_options INTERFACE _WINSOCK_DEPRECATED_NO_WARNINGS)
endif()

if(NY_SANITIZE)
  add_compile_options(-fsanitize=${NY_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${NY_SANITIZE})
endif()

# clang-tidy reads each source with the headers of the build's compiler. Nothing is compiled or linked, which would take
# as long again.
if(NY_TIDY)
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=include
    OUTPUT_VARIABLE include OUTPUT_STRIP_TRAILING_WHITESPACE)
  set(CMAKE_CXX_CLANG_TIDY clang-tidy --quiet --extra-arg-before=--target=x86_64-w64-mingw32
    --extra-arg=-Wno-unknown-warning-option --extra-arg=-nostdlibinc)
  foreach(folder ${include}/c++ ${include}/c++/x86_64-w64-mingw32 /usr/x86_64-w64-mingw32/include)
    list(APPEND CMAKE_CXX_CLANG_TIDY --extra-arg=-isystem${folder})
  endforeach()
  set(CMAKE_CXX_COMPILER_LAUNCHER true)
  foreach(rule LINK_EXECUTABLE CREATE_SHARED_LIBRARY ARCHIVE_CREATE ARCHIVE_FINISH)
    set(CMAKE_CXX_${rule} "<CMAKE_COMMAND> -E true")
  endforeach()
endif()
