# ny_options: what every target of this project is compiled with.
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
  list(APPEND warnings -Wthread-safety)  # see NyServer/ThreadAnnotations.h
endif()
# Not for resources: their compiler takes other options.
target_compile_options(ny_options INTERFACE "$<$<COMPILE_LANGUAGE:C,CXX>:${warnings}>")

if(WIN32)
  # The socket layer is IPv4 and dotted text throughout: the older calls are meant.
  target_compile_definitions(ny_options INTERFACE UNICODE _UNICODE _WINSOCK_DEPRECATED_NO_WARNINGS)
endif()

if(NY_SANITIZE)
  add_compile_options(-fsanitize=${NY_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${NY_SANITIZE})
endif()
