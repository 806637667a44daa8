# Checks the built library: it exports exactly the functions that the header declares, each with the
# version of the interface, it is named as the linker line expects it, and it needs nothing but the
# C library, unless ANY_RUNTIME is set. Use:
# cmake -DLIBRARY=... -DHEADER=... -DREADELF=... [-DANY_RUNTIME=ON] -P exported_symbols.cmake
set(version KAVO_ROLU_3)
set(soname libkavo_rolu.so.3)

set(ENV{LC_ALL} C)

# All matches of `pattern`'s first group in `text`, sorted.
function(collect text pattern result)
  string(REGEX MATCHALL "${pattern}" matches "${text}")
  set(found "")
  foreach(match IN LISTS matches)
    string(REGEX REPLACE "${pattern}" "\\1" name "${match}")
    list(APPEND found "${name}")
  endforeach()
  list(SORT found)
  set(${result} "${found}" PARENT_SCOPE)
endfunction()

function(read_elf option result)
  execute_process(COMMAND ${READELF} -W ${option} ${LIBRARY} OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
  set(${result} "${output}" PARENT_SCOPE)
endfunction()

file(READ ${HEADER} header)
string(REGEX REPLACE "[ \n]+" " " header "${header}")
collect("${header}" "KAVO_ROLU_API ROLU_STATUS (KAVO_ROLU_[A-Za-z0-9_]+)\\(" declared)
list(LENGTH declared declared_count)
if(NOT declared_count EQUAL 150)
  message(FATAL_ERROR "the interface has 150 functions, the header declares ${declared_count}")
endif()
list(TRANSFORM declared APPEND "@@${version}" OUTPUT_VARIABLE expected)

# Columns: number, value, size, type, binding, visibility, section, name@@version. The version node
# itself is a symbol without a section (ABS).
read_elf(--dyn-syms symbols)
collect("${symbols}" "[A-Z]+ +(GLOBAL|WEAK|UNIQUE) +[A-Z]+ +[0-9]+ +[^ \n]+" defined_lines)
collect("${symbols}" "FUNC +GLOBAL +DEFAULT +[0-9]+ +([^ \n]+)" exported)
list(LENGTH defined_lines defined_count)
list(LENGTH exported function_count)
if(NOT defined_count EQUAL function_count)
  message(SEND_ERROR "${defined_count} symbols are exported, but only ${function_count} functions:\n${symbols}")
endif()

set(missing ${expected})
list(REMOVE_ITEM missing ${exported})
set(surplus ${exported})
list(REMOVE_ITEM surplus ${expected})
if(missing OR surplus)
  message(SEND_ERROR "declared but not exported: ${missing}\nexported but not declared: ${surplus}")
endif()

read_elf(--dynamic dynamic)
collect("${dynamic}" "Shared library: \\[([^]\n]+)\\]" needed)
if(NOT ANY_RUNTIME AND NOT needed STREQUAL "libc.so.6")
  message(SEND_ERROR "the library needs more than the C library: ${needed}")
endif()
if(NOT dynamic MATCHES "Library soname: \\[${soname}\\]")
  message(SEND_ERROR "the library's soname is not ${soname}")
endif()
message(STATUS "${declared_count} functions exported; needed: ${needed}")
