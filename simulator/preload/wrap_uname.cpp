// The kernel's names are the board's while a board is attached.

#include <string.h>
#include <sys/utsname.h>

#include "simulator/preload/board_client.h"
#include "simulator/preload/exported.h"
#include "simulator/preload/next_call.h"
#include "simulator/preload/redirection.h"

namespace rolu_sim {
namespace {

NextCall<int (*)(utsname*)> next_uname("uname");

// Copies the text at `text` into a field, cut to it; gives the text after it, null at the end.
template <size_t kSize>
const char* CopyName(const char* text, const char* end, char (&field)[kSize]) {
  if (text == nullptr || text >= end) return nullptr;
  const size_t length = strnlen(text, static_cast<size_t>(end - text));
  const size_t copied = length < kSize ? length : kSize - 1;
  memset(field, 0, kSize);
  memcpy(field, text, copied);
  return text + length + 1;
}

}  // namespace
}  // namespace rolu_sim

extern "C" {

ROLU_SIM_EXPORTED int uname(utsname* names) noexcept {
  const int result = rolu_sim::next_uname.get()(names);
  if (result != 0 || rolu_sim::BoardRootPath() == nullptr) return result;
  char text[3 * sizeof names->machine];
  rolu_sim::DeviceMessage answer{};
  if (rolu_sim::AskBoard(rolu_sim::DeviceRequest::kUname, "", answer, text, sizeof text) < 0) return result;
  const char* const end = text + (answer.length < sizeof text ? answer.length : sizeof text);
  const char* next = rolu_sim::CopyName(text, end, names->machine);
  next = rolu_sim::CopyName(next, end, names->release);
  rolu_sim::CopyName(next, end, names->version);
  return result;
}

// Tells that the object is loaded.
ROLU_SIM_EXPORTED int rolu_sim_preload_version() {
  return 1;
}

}  // extern "C"
