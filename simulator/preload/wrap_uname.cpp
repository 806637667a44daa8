// The kernel's names are the board's while a board is attached.

#include <string.h>
#include <sys/utsname.h>

#include "simulator/preload/board_client.h"
#include "simulator/preload/next_call.h"
#include "simulator/preload/redirection.h"

using namespace rolu_sim;

#pragma GCC visibility push(default)
extern "C" {

int uname(utsname* names) noexcept {
  const int result = Next<uname>("uname")(names);
  utsname board{};
  if (result != 0 || BoardRootPath() == nullptr) return result;
  if (AskBoard(DeviceRequest::kUname, "", &board, sizeof board) < 0) return result;
  memcpy(names->machine, board.machine, sizeof names->machine);
  memcpy(names->release, board.release, sizeof names->release);
  memcpy(names->version, board.version, sizeof names->version);
  return result;
}

// Tells that the object is loaded.
int rolu_sim_preload_version() {
  return 1;
}

}  // extern "C"
#pragma GCC visibility pop
