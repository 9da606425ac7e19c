# In place of base: the class library of the compiler and the vendor's record base, both installed; or what is documented of
# them, of which nothing can be linked.
set(NY_INSTALLED_BASE_INCLUDES "" CACHE STRING "Folders of the installed record base's headers")
set(NY_INSTALLED_BASE_LIBRARIES "" CACHE STRING "Its import libraries")

add_library(nybase_headers INTERFACE)
target_include_directories(nybase_headers INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_definitions(nybase_headers INTERFACE _AFXDLL _AFXEXT NOMINMAX WIN32_LEAN_AND_MEAN)
add_library(NyBaseDll INTERFACE)
target_link_libraries(NyBaseDll INTERFACE nybase_headers)
if(NY_BASE STREQUAL "strict")
  target_include_directories(nybase_headers INTERFACE ${PROJECT_SOURCE_DIR}/tests/strict)
elseif(NY_INSTALLED_BASE_INCLUDES AND NY_INSTALLED_BASE_LIBRARIES)
  set(CMAKE_MFC_FLAG 2)
  target_include_directories(nybase_headers INTERFACE ${NY_INSTALLED_BASE_INCLUDES})
  target_link_libraries(NyBaseDll INTERFACE ${NY_INSTALLED_BASE_LIBRARIES})
else()
  message(FATAL_ERROR "Say where the record base is: NY_INSTALLED_BASE_INCLUDES and NY_INSTALLED_BASE_LIBRARIES")
endif()
