#include "simulator/system/socket_server.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <cerrno>
#include <vector>

#include "simulator/system/background_thread.h"
#include "simulator/system/system_error.h"

namespace rolu_sim {
namespace {

// While this process has no free descriptor, the listener stays readable, so the server must not poll it for
// a while.
constexpr int kRetryAcceptMs = 10;

// Calls bind or connect. Returns false with errno on failure.
bool CallWithAddress(int (*call)(int, const sockaddr*, socklen_t), const UniqueFd& socket,
                     const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) {
    errno = ENAMETOOLONG;
    return false;
  }
  path.copy(address.sun_path, path.size());
  // POSIX uses the generic socket address as a base class.
  return socket && call(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

UniqueFd ListenAt(const std::string& path, int type) {
  UniqueFd listener(socket(AF_UNIX, type | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  if (!CallWithAddress(bind, listener, path) || listen(listener.get(), SOMAXCONN) != 0) {
    ThrowErrno("listening at " + path);
  }
  return listener;
}

}  // namespace

UniqueFd ConnectTo(const std::string& path) {
  UniqueFd connection(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  return CallWithAddress(connect, connection, path) ? std::move(connection) : UniqueFd();
}

SocketServer::SocketServer(const std::string& path, int type, Connect connect)
    : connect_(std::move(connect)), listener_(ListenAt(path, type)) {
  const BlockedSignals blocked;
  thread_ = std::thread([this] { Run(); });
}

SocketServer::~SocketServer() {
  stopping_ = true;
  wakeup_->Signal();
  thread_.join();
}

void SocketServer::Run() {
  bool can_accept = true;
  std::vector<pollfd> sources;
  while (!stopping_) {
    const short listens = can_accept ? POLLIN : 0;
    sources = {{wakeup_->fd(), POLLIN, 0}, {listener_.get(), listens, 0}};
    for (const auto& connection : connections_)
      sources.push_back({connection->socket(), connection->Events(), 0});
    poll(sources.data(), sources.size(), can_accept ? -1 : kRetryAcceptMs);
    wakeup_->Take();
    auto source = sources.begin() + 2;
    connections_.remove_if([&](const auto& connection) {
      const short events = (source++)->revents;
      return events != 0 && !connection->Serve(events);
    });
    can_accept = Accept();
  }
}

bool SocketServer::Accept() {
  while (true) {
    UniqueFd socket(accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (!socket) return errno == EAGAIN || errno == EINTR || errno == ECONNABORTED;
    std::unique_ptr<Connection> connection = connect_(std::move(socket));
    // Most new connections already hold a request.
    if (connection->Serve(POLLIN)) connections_.push_back(std::move(connection));
  }
}

}  // namespace rolu_sim
