#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "simulator/desk/desk.h"
#include "simulator/desk/scenario.h"
#include "simulator/json.h"
#include "simulator/unique_fd.h"
#include "simulator/wakeup_event.h"

namespace rolu_sim {

// Lets other processes steer and watch a desk, through the socket of control_socket.h, and plays its
// scenario. The desk must outlive it.
class ControlServer {
 public:
  // `on_stop` is called, on the server's thread, when somebody asks the board to go down.
  ControlServer(Desk& desk, std::function<void()> on_stop);
  ~ControlServer();
  ControlServer(const ControlServer&) = delete;
  ControlServer& operator=(const ControlServer&) = delete;

  // From now on; a scenario that is played ends. Any thread may call it.
  void Play(Scenario scenario);

 private:
  struct Connection;

  void Run();
  void Accept();
  // False when the connection is at its end.
  bool Serve(Connection& connection, short events);
  bool Receive(Connection& connection);
  bool Send(Connection& connection);
  void Answer(Connection& connection, const std::string& line);
  Json AnswerTo(Connection& connection, const Json& request);
  Json AnswerPlay(const Json& scenario);
  Json AnswerTrace(Connection& connection, const Json& extent);
  void FollowTrace(Connection& connection);

  Desk& desk_;
  const std::function<void()> on_stop_;
  UniqueFd listener_;
  // The desk's trace signals it as long as there is a desk.
  std::shared_ptr<WakeupEvent> wakeup_;
  std::atomic<bool> stopping_{false};
  std::list<Connection> connections_;  // of the server's thread
  std::mutex player_mutex_;
  std::optional<ScenarioPlayer> player_;
  std::thread thread_;
};

}  // namespace rolu_sim
