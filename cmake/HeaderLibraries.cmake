# Libraries that come as headers, so that the board's image needs nothing but this library and the C++
# runtime. A cross build takes them from the build machine, one by one: its /usr/include as a whole
# would hide the board's.
set(directory ${PROJECT_BINARY_DIR}/header_libraries)
file(MAKE_DIRECTORY ${directory})
foreach(header_library CLI fmt nlohmann)
  find_path(ROLU_${header_library}_DIR ${header_library} PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH REQUIRED)
  file(CREATE_LINK ${ROLU_${header_library}_DIR}/${header_library} ${directory}/${header_library} SYMBOLIC)
endforeach()
add_library(rolu_header_libraries INTERFACE)
target_include_directories(rolu_header_libraries SYSTEM INTERFACE ${directory})
target_compile_definitions(rolu_header_libraries INTERFACE FMT_HEADER_ONLY)
