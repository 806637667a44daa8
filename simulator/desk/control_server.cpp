#include "simulator/desk/control_server.h"

#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "simulator/desk/control_socket.h"
#include "simulator/desk/json.h"
#include "simulator/desk/readings.h"

namespace rolu_sim {
namespace {

// Only a scenario comes near this length.
constexpr std::size_t kLongestRequest = 4U << 20U;

// When this much is unsent, a follower gets no more records until it reads. It misses the records that the
// trace drops meanwhile.
constexpr std::size_t kEnoughUnsent = 1U << 16U;
constexpr std::size_t kRecordsAtOnce = 256;

Json AcceptRequest() {
  return {{"ok", true}};
}

Json RefuseRequest(const std::string& error, const char* kind) {
  return {{"ok", false}, {"error", error}, {"kind", kind}};
}

// Runs the verb of "do" and gives the answer. Throws what the verb throws.
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

class ControlServer::Connection : public SocketServer::Connection {
 public:
  Connection(ControlServer& server, UniqueFd socket)
      : SocketServer::Connection(std::move(socket)), server_(server) {}
  // A client that waits for an answer gets it before the board is gone.
  ~Connection() override { Send(); }

  short Events() override {
    if (next_record_) FollowTrace();
    return !unsent_.empty() || ends_when_sent_ ? POLLIN | POLLOUT : POLLIN;
  }

  bool Serve(short events) override {
    if ((events & (POLLIN | POLLHUP | POLLERR)) != 0 && !Receive()) return false;
    return Send();
  }

 private:
  // False at the end of the connection.
  bool Receive();
  bool Send();
  void Answer(const std::string& line);
  Json AnswerTo(const Json& request);
  Json AnswerTrace(const Json& extent);
  Json AnswerPlay(const Json& scenario);
  void FollowTrace();

  ControlServer& server_;
  std::string received_;
  std::string unsent_;
  bool ends_when_sent_ = false;
  std::optional<std::uint64_t> next_record_;   // the next record to send to a follower of the trace
  std::optional<std::uint64_t> end_of_trace_;  // the record at which sending stops
};

ControlServer::ControlServer(Desk& desk, ScenarioPlayer& player, std::function<void()> on_stop)
    : desk_(desk),
      player_(player),
      on_stop_(std::move(on_stop)),
      sockets_(ControlSocketPath(desk.board().root().path()), SOCK_STREAM,
               [this](UniqueFd socket) { return std::make_unique<Connection>(*this, std::move(socket)); }) {
  // The trace may call this listener for as long as the desk lives, so the listener keeps the wake-up alive.
  desk_.trace().AddListener(
      [wakeup = sockets_.wakeup()](const TraceRecord& /*record*/) { wakeup->Signal(); });
  sockets_.wakeup()->Signal();
}

bool ControlServer::Connection::Receive() {
  std::array<char, 4096> buffer{};
  const ssize_t length = recv(socket(), buffer.data(), buffer.size(), 0);
  if (length < 0) return errno == EAGAIN || errno == EINTR;
  if (length == 0) return false;
  received_.append(buffer.data(), static_cast<std::size_t>(length));
  std::size_t end = 0;
  while ((end = received_.find('\n')) != std::string::npos) {
    Answer(received_.substr(0, end));
    received_.erase(0, end + 1);
  }
  return received_.size() <= kLongestRequest;
}

bool ControlServer::Connection::Send() {
  while (!unsent_.empty()) {
    const ssize_t sent = send(socket(), unsent_.data(), unsent_.size(), MSG_NOSIGNAL);
    if (sent < 0) return errno == EAGAIN || errno == EINTR;
    unsent_.erase(0, static_cast<std::size_t>(sent));
  }
  return !ends_when_sent_;
}

// When the system refuses a request, only this request fails: the board stays up for the other clients.
void ControlServer::Connection::Answer(const std::string& line) {
  Json answer;
  try {
    answer = AnswerTo(Json::parse(line, nullptr, false));
  } catch (const std::exception& problem) {
    answer = RefuseRequest(problem.what(), "refused");
  }
  // A client whose text is not UTF-8 gets replacement characters; no other client sees them.
  unsent_ += answer.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n';
}

Json ControlServer::Connection::AnswerTo(const Json& request) {
  if (!request.is_object()) return RefuseRequest("a request is an object in one line of JSON", "usage");
  if (request.contains("do")) return AnswerDo(server_.desk_, request);
  if (request.contains("get")) return AnswerGet(server_.desk_, request["get"]);
  if (request.contains("trace")) return AnswerTrace(request["trace"]);
  if (request.contains("play")) return AnswerPlay(request["play"]);
  if (!request.contains("stop")) {
    return RefuseRequest(R"(a request has "do", "get", "trace", "play" or "stop")", "usage");
  }
  server_.on_stop_();
  return AcceptRequest();
}

Json ControlServer::Connection::AnswerPlay(const Json& scenario) {
  if (!scenario.is_object() || !scenario.contains("name") || !scenario.contains("text") ||
      !scenario["name"].is_string() || !scenario["text"].is_string()) {
    return RefuseRequest(R"("play" is an object with "name" and "text")", "usage");
  }
  try {
    server_.player_.Play(
        ParseScenario(scenario["text"].get<std::string>(), scenario["name"].get<std::string>()));
    return AcceptRequest();
  } catch (const ScenarioError& problem) {
    return RefuseRequest(problem.what(), "usage");
  }
}

Json ControlServer::Connection::AnswerTrace(const Json& extent) {
  if (extent != "past" && extent != "follow" && extent != "next") {
    return RefuseRequest(R"("trace" is "past", "follow" or "next")", "usage");
  }
  const std::uint64_t count = server_.desk_.trace().Count();
  next_record_ = extent == "next" ? count : 0;
  if (extent == "past") end_of_trace_ = count;
  return AcceptRequest();
}

void ControlServer::Connection::FollowTrace() {
  while (unsent_.size() < kEnoughUnsent && !ends_when_sent_) {
    const Trace::Excerpt excerpt = server_.desk_.trace().From(*next_record_, kRecordsAtOnce);
    next_record_ = excerpt.first;
    for (const TraceRecord& record : excerpt.records) {
      if (end_of_trace_ && *next_record_ >= *end_of_trace_) break;
      unsent_ += ToJson(record).dump() + '\n';
      ++*next_record_;
    }
    ends_when_sent_ = end_of_trace_ && *next_record_ >= *end_of_trace_;
    if (excerpt.records.empty()) return;
  }
}

}  // namespace rolu_sim
