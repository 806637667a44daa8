#pragma once

#include <poll.h>

#include <atomic>
#include <functional>
#include <list>
#include <memory>
#include <string>
#include <thread>
#include <utility>

#include "simulator/system/background_thread.h"
#include "simulator/system/unique_fd.h"

namespace rolu_sim {

// Connects to a stream socket. Gives no descriptor when nobody listens at the path.
UniqueFd ConnectTo(const std::string& path);

// Listens at a path and serves all its connections on one thread. What the connections use must outlive the
// server.
class SocketServer {
 public:
  // One client's connection. Its socket does not block.
  class Connection {
   public:
    explicit Connection(UniqueFd socket) : socket_(std::move(socket)) {}
    virtual ~Connection() = default;
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    int socket() const { return socket_.get(); }
    // The events that the server waits for. The server asks again after each event, even an event of another
    // connection.
    virtual short Events() { return POLLIN; }
    // Returns false at the end of the connection.
    virtual bool Serve(short events) = 0;

   private:
    const UniqueFd socket_;
  };
  using Connect = std::function<std::unique_ptr<Connection>(UniqueFd socket)>;

  // `type` is SOCK_STREAM or SOCK_SEQPACKET. Throws std::system_error.
  SocketServer(const std::string& path, int type, Connect connect);
  ~SocketServer();
  SocketServer(const SocketServer&) = delete;
  SocketServer& operator=(const SocketServer&) = delete;

  // Signal this to make the server ask its connections for their events again. It may outlive the server.
  const std::shared_ptr<WakeupEvent>& wakeup() const { return wakeup_; }

 private:
  void Run();
  // Returns false when the system has no descriptor left.
  bool Accept();

  const Connect connect_;
  const UniqueFd listener_;
  const std::shared_ptr<WakeupEvent> wakeup_ = std::make_shared<WakeupEvent>();
  std::atomic<bool> stopping_{false};
  std::list<std::unique_ptr<Connection>> connections_;  // only the server's thread uses it
  std::thread thread_;
};

}  // namespace rolu_sim
