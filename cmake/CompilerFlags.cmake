# One place for the flags of every target: warnings are errors, and floating point is the same on
# every processor (a fused multiply-add on ARM would round once where x86-64 rounds twice).
add_library(rolu_flags INTERFACE)
target_compile_options(rolu_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wformat=2 -Wundef
  -Wcast-qual -Wcast-align -Wdouble-promotion -Werror
  -ffp-contract=off
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Wold-style-cast -Woverloaded-virtual>
  $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-psabi>
  # GCC 12 sees overlapping copies in the standard library's own string concatenation at -O3.
  $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-restrict>
  $<$<COMPILE_LANG_AND_ID:CXX,Clang>:-Wthread-safety>)

if(ROLU_SANITIZE)
  add_compile_options(-fsanitize=${ROLU_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${ROLU_SANITIZE})
endif()
