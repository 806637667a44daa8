#ifndef CORE_ALLOCATE_H
#define CORE_ALLOCATE_H

#include <cstddef>
#include <cstdlib>

// Room for `count` objects from the C library, to be given back with free; null without memory. The
// language's own allocation would tie every application to the C++ runtime.
template <typename Object>
Object* Allocate(std::size_t count = 1) {
  return static_cast<Object*>(malloc(count * sizeof(Object)));
}

#endif  // CORE_ALLOCATE_H
