#ifndef CORE_ALLOCATE_H
#define CORE_ALLOCATE_H

#include <cstddef>
#include <cstdlib>

// Memory for `count` objects from the C library; give it back with free. Null when there is no memory.
// operator new would tie every application to the C++ runtime.
template <typename Object>
Object* Allocate(std::size_t count = 1) {
  return static_cast<Object*>(malloc(count * sizeof(Object)));
}

#endif  // CORE_ALLOCATE_H
