# How a program of a cross build meets the simulated board. The emulator itself runs natively: only the
# emulated program gets the preloaded object, from the emulator.
set(rolu_emulator)
if(CMAKE_CROSSCOMPILING)
  set(rolu_emulator ${CMAKE_CROSSCOMPILING_EMULATOR} -E LD_PRELOAD=$<TARGET_FILE:rolu_sim_preload>)
endif()

# The words with which an emulated test program starts another program; empty where nothing is emulated.
string(JOIN " " rolu_emulator_words ${rolu_emulator})

# Makes CMake run the target, and the tests that CTest finds in it, under the emulator.
function(rolu_run_on_board target)
  if(CMAKE_CROSSCOMPILING)
    set_property(TARGET ${target} PROPERTY CROSSCOMPILING_EMULATOR ${rolu_emulator})
  endif()
endfunction()
