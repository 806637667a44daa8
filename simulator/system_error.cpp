#include "simulator/system_error.h"

#include <cerrno>
#include <system_error>

namespace rolu_sim {

void ThrowErrno(const std::string& doing) {
  throw std::system_error(errno, std::generic_category(), doing);
}

}  // namespace rolu_sim
