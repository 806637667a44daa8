#pragma once

#include <functional>
#include <mutex>
#include <optional>

#include "simulator/desk/desk.h"
#include "simulator/desk/scenario.h"
#include "simulator/system/socket_server.h"

namespace rolu_sim {

// Lets other processes steer and watch a desk through the socket of control_socket.h, and plays the desk's
// scenario. The desk must outlive this object.
class ControlServer {
 public:
  // The server calls `on_stop` on its thread when a client asks the board to go down.
  ControlServer(Desk& desk, std::function<void()> on_stop);

  // Plays a scenario from now on and ends the one that is playing. Any thread may call it.
  void Play(Scenario scenario);

 private:
  class Connection;

  Desk& desk_;
  const std::function<void()> on_stop_;
  std::mutex player_mutex_;
  std::optional<ScenarioPlayer> player_;
  SocketServer sockets_;
};

}  // namespace rolu_sim
