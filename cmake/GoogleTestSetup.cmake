# Debian ships GoogleTest compiled for the build machine and as sources; a cross build compiles the
# sources for the board.
if(CMAKE_CROSSCOMPILING)
  set(INSTALL_GTEST OFF)
  add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
else()
  find_package(GTest REQUIRED)
endif()
include(GoogleTest)
