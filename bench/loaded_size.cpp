#include "bench/loaded_size.h"

#include <dlfcn.h>
#include <link.h>

#include <set>
#include <string_view>
#include <vector>

#include "bench/require.h"

namespace rolu_bench {
namespace {

struct Searched {
  ElfW(Addr) base;
  std::size_t bytes;
};

int AddSegments(dl_phdr_info* object, std::size_t /*size*/, void* data) {
  Searched& searched = *static_cast<Searched*>(data);
  if (object->dlpi_addr != searched.base) return 0;
  for (int i = 0; i < object->dlpi_phnum; ++i) {
    if (object->dlpi_phdr[i].p_type == PT_LOAD) searched.bytes += object->dlpi_phdr[i].p_memsz;
  }
  return 1;
}

std::size_t SegmentBytes(const link_map* object) {
  Searched searched{object->l_addr, 0};
  Require(dl_iterate_phdr(AddSegments, &searched) == 1, "a shared object is not loaded");
  return searched.bytes;
}

bool IsInEveryProgram(std::string_view name) {
  return name == "libc.so.6" || name.substr(0, 3) == "ld-";
}

const link_map* LoadedObject(const char* name) {
  void* const handle = dlopen(name, RTLD_LAZY | RTLD_NOLOAD);
  Require(handle != nullptr, "a needed shared object is not loaded");
  const link_map* object = nullptr;
  Require(dlinfo(handle, RTLD_DI_LINKMAP, &object) == 0, "a shared object without a link map");
  dlclose(handle);
  return object;
}

std::vector<const link_map*> NeededBy(const link_map* object) {
  const char* names = nullptr;
  for (const ElfW(Dyn)* entry = object->l_ld; entry->d_tag != DT_NULL; ++entry) {
    if (entry->d_tag != DT_STRTAB) continue;
    // The dynamic linker has replaced the file offset by an address.
    names = reinterpret_cast<const char*>(entry->d_un.d_ptr);  // NOLINT(performance-no-int-to-ptr)
  }
  Require(names != nullptr, "a shared object without names");
  std::vector<const link_map*> needed;
  for (const ElfW(Dyn)* entry = object->l_ld; entry->d_tag != DT_NULL; ++entry) {
    if (entry->d_tag != DT_NEEDED) continue;
    const char* const name = names + entry->d_un.d_val;
    if (!IsInEveryProgram(name)) needed.push_back(LoadedObject(name));
  }
  return needed;
}

}  // namespace

LoadedSize LoadedSizeOf(const void* function_inside) {
  if (function_inside == nullptr) return {};
  Dl_info info{};
  void* map = nullptr;
  Require(dladdr1(function_inside, &info, &map, RTLD_DL_LINKMAP) != 0, "a function is in no shared object");
  const auto* const object = static_cast<const link_map*>(map);
  LoadedSize size{SegmentBytes(object), 0};
  std::set<const link_map*> counted;
  std::vector<const link_map*> pending{object};
  while (!pending.empty()) {
    const link_map* const next = pending.back();
    pending.pop_back();
    if (!counted.insert(next).second) continue;
    size.with_needed_bytes += SegmentBytes(next);
    const std::vector<const link_map*> needed = NeededBy(next);
    pending.insert(pending.end(), needed.begin(), needed.end());
  }
  return size;
}

}  // namespace rolu_bench
