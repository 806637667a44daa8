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

// No descriptor when nobody listens at the path of a stream socket.
UniqueFd ConnectTo(const std::string& path);

// Listens at a path and serves who connects, all on one thread. What the connections need must outlive it.
class SocketServer {
 public:
  // One that connected. Its socket does not block.
  class Connection {
   public:
    explicit Connection(UniqueFd socket) : socket_(std::move(socket)) {}
    virtual ~Connection() = default;
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    int socket() const { return socket_.get(); }
    // What the server is to wait for. Called again after each event, also one that is not of this connection.
    virtual short Events() { return POLLIN; }
    // False when the connection is at its end.
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

  // Makes the server ask its connections for their events. May live longer than the server.
  const std::shared_ptr<WakeupEvent>& wakeup() const { return wakeup_; }

 private:
  void Run();
  // False when the system refuses another descriptor.
  bool Accept();

  const Connect connect_;
  const UniqueFd listener_;
  const std::shared_ptr<WakeupEvent> wakeup_ = std::make_shared<WakeupEvent>();
  std::atomic<bool> stopping_{false};
  std::list<std::unique_ptr<Connection>> connections_;  // of the server's thread
  std::thread thread_;
};

}  // namespace rolu_sim
