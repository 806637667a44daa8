#include "simulator/desk/control_server.h"

#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <iterator>
#include <utility>
#include <vector>

#include "simulator/blocked_signals.h"
#include "simulator/desk/control_socket.h"
#include "simulator/desk/readings.h"

namespace rolu_sim {
namespace {

// No request comes near but a scenario.
constexpr std::size_t kLongestRequest = 4U << 20U;

// A follower that does not read gets its records later, or misses those that are no longer kept.
constexpr std::size_t kEnoughUnsent = 1U << 16U;
constexpr std::size_t kRecordsAtOnce = 256;

Json AcceptRequest() {
  return {{"ok", true}};
}

Json RefuseRequest(const std::string& error, const char* kind) {
  return {{"ok", false}, {"error", error}, {"kind", kind}};
}

// Gives the answer to "do"; throws what the verb throws.
Json AnswerDo(Desk& desk, const Json& request) {
  Action action;
  try {
    if (!request["do"].is_string()) throw UsageError("\"do\" is a verb");
    const std::string name = request["do"].get<std::string>();
    action.verb = FindVerb(name);
    if (action.verb == nullptr) throw UsageError(UnknownVerb(name));
    action.arguments = CheckArguments(*action.verb, request, {"do"});
  } catch (const UsageError& problem) {
    return RefuseRequest(problem.what(), "usage");
  }
  Json answer = AcceptRequest();
  const std::string remark = desk.Apply(action);
  if (!remark.empty()) answer["remark"] = remark;
  return answer;
}

Json AnswerGet(Desk& desk, const Json& names) {
  std::vector<std::string> wanted;
  try {
    wanted = names.get<std::vector<std::string>>();
    for (const std::string& name : wanted) CheckReading(name);
  } catch (const Json::type_error&) {
    return RefuseRequest("\"get\" is a list of names", "usage");
  } catch (const UsageError& problem) {
    return RefuseRequest(problem.what(), "usage");
  }
  Json answer = AcceptRequest();
  answer["board"] = desk.Locked([&] { return ReadBoard(desk, wanted); });
  return answer;
}

}  // namespace

struct ControlServer::Connection {
  UniqueFd socket;
  std::string received;
  std::string unsent;
  bool ends_when_sent = false;
  std::optional<std::uint64_t> next_record;   // of the trace, for one that follows it
  std::optional<std::uint64_t> end_of_trace;  // and where it stops
};

ControlServer::ControlServer(Desk& desk, std::function<void()> on_stop)
    : desk_(desk),
      on_stop_(std::move(on_stop)),
      listener_(ListenAt(ControlSocketPath(desk.board().root().path()))),
      wakeup_(std::make_shared<WakeupEvent>()) {
  desk_.trace().AddListener([wakeup = wakeup_](const TraceRecord& /*record*/) { wakeup->Signal(); });
  const BlockedSignals blocked;
  thread_ = std::thread([this] { Run(); });
}

ControlServer::~ControlServer() {
  stopping_ = true;
  wakeup_->Signal();
  thread_.join();
}

void ControlServer::Play(Scenario scenario) {
  const std::lock_guard<std::mutex> lock(player_mutex_);
  player_.reset();
  player_.emplace(desk_, std::move(scenario));
}

void ControlServer::Run() {
  std::vector<pollfd> sources;
  while (!stopping_) {
    sources = {{wakeup_->fd(), POLLIN, 0}, {listener_.get(), POLLIN, 0}};
    for (Connection& connection : connections_) {
      if (connection.next_record) FollowTrace(connection);
      const bool is_to_send = !connection.unsent.empty() || connection.ends_when_sent;
      sources.push_back(
          {connection.socket.get(), static_cast<short>(is_to_send ? POLLIN | POLLOUT : POLLIN), 0});
    }
    poll(sources.data(), sources.size(), -1);
    wakeup_->Take();
    auto source = sources.begin() + 2;
    for (auto connection = connections_.begin(); connection != connections_.end(); ++source) {
      const bool ended = source->revents != 0 && !Serve(*connection, source->revents);
      connection = ended ? connections_.erase(connection) : std::next(connection);
    }
    if (sources[1].revents != 0) Accept();
  }
  // Those who wait for an answer have it before the board is gone.
  for (Connection& connection : connections_) Send(connection);
}

void ControlServer::Accept() {
  UniqueFd socket(accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
  if (!socket) return;
  connections_.emplace_back();
  connections_.back().socket = std::move(socket);
}

bool ControlServer::Serve(Connection& connection, short events) {
  if ((events & (POLLIN | POLLHUP | POLLERR)) != 0 && !Receive(connection)) return false;
  return Send(connection);
}

bool ControlServer::Receive(Connection& connection) {
  std::array<char, 4096> buffer{};
  const ssize_t length = recv(connection.socket.get(), buffer.data(), buffer.size(), 0);
  if (length < 0) return errno == EAGAIN || errno == EINTR;
  if (length == 0) return false;
  connection.received.append(buffer.data(), static_cast<std::size_t>(length));
  std::size_t end = 0;
  while ((end = connection.received.find('\n')) != std::string::npos) {
    Answer(connection, connection.received.substr(0, end));
    connection.received.erase(0, end + 1);
  }
  return connection.received.size() <= kLongestRequest;
}

bool ControlServer::Send(Connection& connection) {
  while (!connection.unsent.empty()) {
    const ssize_t sent =
        send(connection.socket.get(), connection.unsent.data(), connection.unsent.size(), MSG_NOSIGNAL);
    if (sent < 0) return errno == EAGAIN || errno == EINTR;
    connection.unsent.erase(0, static_cast<std::size_t>(sent));
  }
  return !connection.ends_when_sent;
}

// What the system refuses to one who asks is no reason for the others to lose their board.
void ControlServer::Answer(Connection& connection, const std::string& line) {
  Json answer;
  try {
    answer = AnswerTo(connection, Json::parse(line, nullptr, false));
  } catch (const std::exception& problem) {
    answer = RefuseRequest(problem.what(), "refused");
  }
  // Nobody but a client that writes no UTF-8 sees a replacement.
  connection.unsent += answer.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n';
}

Json ControlServer::AnswerTo(Connection& connection, const Json& request) {
  if (!request.is_object()) return RefuseRequest("a request is an object in one line of JSON", "usage");
  if (request.contains("do")) return AnswerDo(desk_, request);
  if (request.contains("get")) return AnswerGet(desk_, request["get"]);
  if (request.contains("trace")) return AnswerTrace(connection, request["trace"]);
  if (request.contains("play")) return AnswerPlay(request["play"]);
  if (!request.contains("stop")) {
    return RefuseRequest(R"(a request has "do", "get", "trace", "play" or "stop")", "usage");
  }
  on_stop_();
  return AcceptRequest();
}

Json ControlServer::AnswerPlay(const Json& scenario) {
  if (!scenario.is_object() || !scenario.contains("name") || !scenario.contains("text") ||
      !scenario["name"].is_string() || !scenario["text"].is_string()) {
    return RefuseRequest(R"("play" is an object with "name" and "text")", "usage");
  }
  try {
    Play(ParseScenario(scenario["text"].get<std::string>(), scenario["name"].get<std::string>()));
    return AcceptRequest();
  } catch (const ScenarioError& problem) {
    return RefuseRequest(problem.what(), "usage");
  }
}

Json ControlServer::AnswerTrace(Connection& connection, const Json& extent) {
  if (extent != "past" && extent != "follow") {
    return RefuseRequest(R"("trace" is "past" or "follow")", "usage");
  }
  connection.next_record = 0;
  if (extent == "past") connection.end_of_trace = desk_.trace().Count();
  return AcceptRequest();
}

void ControlServer::FollowTrace(Connection& connection) {
  while (connection.unsent.size() < kEnoughUnsent && !connection.ends_when_sent) {
    const Trace::Excerpt excerpt = desk_.trace().From(*connection.next_record, kRecordsAtOnce);
    connection.next_record = excerpt.first;
    for (const TraceRecord& record : excerpt.records) {
      if (connection.end_of_trace && *connection.next_record >= *connection.end_of_trace) break;
      connection.unsent += ToJson(record).dump() + '\n';
      ++*connection.next_record;
    }
    connection.ends_when_sent =
        connection.end_of_trace && *connection.next_record >= *connection.end_of_trace;
    if (excerpt.records.empty()) return;
  }
}

}  // namespace rolu_sim
