#include "simulator/desk/control_socket.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <cerrno>
#include <optional>

#include "simulator/system_error.h"

namespace rolu_sim {
namespace {

std::optional<sockaddr_un> AddressOf(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) return std::nullopt;
  path.copy(address.sun_path, path.size());
  return address;
}

// The generic socket address is what POSIX has in place of a base class.
const sockaddr* Generic(const sockaddr_un& address) {
  return reinterpret_cast<const sockaddr*>(&address);
}

}  // namespace

std::string ControlSocketPath(const std::string& board_directory) {
  return board_directory + "/control";
}

UniqueFd ListenAt(const std::string& socket_path) {
  const std::optional<sockaddr_un> address = AddressOf(socket_path);
  if (!address) {
    errno = ENAMETOOLONG;
    ThrowErrno("listening at " + socket_path);
  }
  UniqueFd listener(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  if (!listener || bind(listener.get(), Generic(*address), sizeof *address) != 0 ||
      listen(listener.get(), SOMAXCONN) != 0) {
    ThrowErrno("listening at " + socket_path);
  }
  return listener;
}

UniqueFd ConnectTo(const std::string& socket_path) {
  const std::optional<sockaddr_un> address = AddressOf(socket_path);
  if (!address) return UniqueFd();
  UniqueFd connection(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  if (!connection || connect(connection.get(), Generic(*address), sizeof *address) != 0) return UniqueFd();
  return connection;
}

}  // namespace rolu_sim
