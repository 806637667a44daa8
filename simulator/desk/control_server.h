#pragma once

#include <functional>

#include "simulator/desk/desk.h"
#include "simulator/desk/scenario_player.h"
#include "simulator/system/socket_server.h"

namespace rolu_sim {

// Lets other processes steer and watch a desk through the socket of control_socket.h. The desk and the player
// of its scenarios must outlive this object.
class ControlServer {
 public:
  // The server calls `on_stop` on its thread when a client asks the board to go down.
  ControlServer(Desk& desk, ScenarioPlayer& player, std::function<void()> on_stop);

 private:
  class Connection;

  Desk& desk_;
  ScenarioPlayer& player_;
  const std::function<void()> on_stop_;
  SocketServer sockets_;
};

}  // namespace rolu_sim
