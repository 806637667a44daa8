#include <cstring>

#include "fuzz/stand_ins.h"
#include "mcu/link.h"
#include "mcu/link_state.h"

CCriticalSection* io_op_lock = nullptr;

namespace rolu_fuzz {
std::deque<std::string> replies_to_come;
std::string commands_sent;
}  // namespace rolu_fuzz

int VPMOpen(const char*, int) {
  if (io_op_lock == nullptr) io_op_lock = new CCriticalSection;
  return 0;
}

int VPMClose() {
  return 0;
}

void RemoveLinkUser() {}

int send_vpm_command(const char* bytes, int length, int) {
  rolu_fuzz::commands_sent.append(bytes, static_cast<size_t>(length));
  return 0;
}

void cancel_queued_commands() {}

int read_vpm_response(char* buffer, unsigned long) {
  std::deque<std::string>& replies = rolu_fuzz::replies_to_come;
  if (replies.empty()) return -1;
  // Fills the buffer with digits, as an earlier, longer line would: a reader that misses the line's end would
  // read them.
  memset(buffer, '1', kLineCapacity);
  memcpy(buffer, replies.front().c_str(), replies.front().size() + 1);
  replies.pop_front();
  return 0;
}
