#include "simulator/preload_list.h"

#include <array>

namespace rolu_sim {
namespace {

bool IsSanitizerRuntime(std::string_view object) {
  static constexpr std::array<std::string_view, 5> kNames = {"libasan.", "libtsan.", "libubsan.", "liblsan.",
                                                             "libclang_rt."};
  const std::string_view name = object.substr(object.rfind('/') + 1);
  for (const std::string_view runtime : kNames) {
    if (name.substr(0, runtime.size()) == runtime) return true;
  }
  return false;
}

void Append(std::string& list, std::string_view object) {
  if (!list.empty()) list += ':';
  list += object;
}

}  // namespace

std::string PreloadListWith(std::string_view present, std::string_view object) {
  std::string runtimes;
  std::string others;
  while (!present.empty()) {
    const std::size_t end = present.find_first_of(": ");
    const std::string_view entry = present.substr(0, end);
    if (!entry.empty() && entry != object) Append(IsSanitizerRuntime(entry) ? runtimes : others, entry);
    present.remove_prefix(end == std::string_view::npos ? present.size() : end + 1);
  }
  Append(runtimes, object);
  if (!others.empty()) Append(runtimes, others);
  return runtimes;
}

}  // namespace rolu_sim
