# The library is compiled once, as objects: the shared object that ships is linked from them, and
# so are the tests of its internals.
add_library(kavo_rolu_objects OBJECT
  board/digital_io.cpp
  board/display.cpp
  board/eeprom.cpp
  board/i2c.cpp
  board/light_sensor.cpp
  board/temperature.cpp
  core/core_family.cpp
  core/critical_section.cpp
  core/deadline.cpp
  core/device_file.cpp
  core/process_objects.cpp
  gsensor/gsensor_manager.cpp
  mcu/error_reply.cpp
  mcu/link.cpp
  mcu/link_io_thread.cpp
  mcu/manager_lifecycle.cpp
  mcu/reply_fields.cpp
  mcu/serial_port.cpp
  mcu/transaction.cpp
  mcu/turn.cpp
  mcu/unsolicited.cpp
  peripheralctrl/gps_power.cpp
  peripheralctrl/peripheral_manager.cpp
  peripheralctrl/wireless_interface.cpp
  vpm/backup_battery.cpp
  vpm/battery_range.cpp
  vpm/car_battery.cpp
  vpm/clock.cpp
  vpm/clock_fields.cpp
  vpm/ignition_and_modes.cpp
  vpm/lifecycle.cpp
  vpm/power_off_delays.cpp
  vpm/power_sources.cpp
  vpm/voltage_scale.cpp
  watchdog/watchdog_manager.cpp)
set_target_properties(kavo_rolu_objects PROPERTIES
  POSITION_INDEPENDENT_CODE ON
  CXX_VISIBILITY_PRESET hidden
  VISIBILITY_INLINES_HIDDEN ON)
# A serial line is slow and the board is small: -Os makes the board's library a tenth smaller than -O2.
target_compile_options(kavo_rolu_objects PRIVATE -fno-exceptions -fno-rtti $<$<CONFIG:Release>:-Os>)

# The library needs only the C library: an application in C must not load the C++ runtime. On ARM the function
# that registers the destructor of a process-wide object is in that runtime, so the object file's own list of
# destructors is used instead. The divisions that the processor lacks come from the compiler's static library.
target_compile_options(kavo_rolu_objects PRIVATE -fno-use-cxa-atexit)
if(NOT ROLU_SANITIZE)
  # A sanitizer takes the place of some of these functions by their plain names.
  target_compile_options(kavo_rolu_objects PRIVATE -include ${PROJECT_SOURCE_DIR}/cmake/older_symbols.h)
endif()
target_include_directories(kavo_rolu_objects PUBLIC ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
target_link_libraries(kavo_rolu_objects PRIVATE rolu_flags Threads::Threads)

add_library(kavo_rolu SHARED)
add_library(kavo_rolu::kavo_rolu ALIAS kavo_rolu)
target_link_libraries(kavo_rolu PRIVATE kavo_rolu_objects Threads::Threads)
target_include_directories(kavo_rolu INTERFACE $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>)
set_target_properties(kavo_rolu PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
target_link_options(kavo_rolu PRIVATE
  LINKER:--version-script=${PROJECT_SOURCE_DIR}/cmake/kavo_rolu.map LINKER:-z,relro LINKER:-z,now
  LINKER:--as-needed -static-libgcc)
set_property(TARGET kavo_rolu APPEND PROPERTY LINK_DEPENDS ${PROJECT_SOURCE_DIR}/cmake/kavo_rolu.map)
if(NOT ROLU_SANITIZE)
  # A sanitizer's runtime is in the program, not in the library.
  target_link_options(kavo_rolu PRIVATE LINKER:--no-undefined)
endif()
