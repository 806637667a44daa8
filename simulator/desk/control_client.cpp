#include "simulator/desk/control_client.h"

#include <fmt/format.h>
#include <poll.h>
#include <pwd.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>
#include <thread>
#include <utility>

#include "simulator/desk/control_socket.h"
#include "simulator/system/socket_server.h"

namespace rolu_sim {
namespace {

std::string OwnerOf(const std::string& directory) {
  struct stat status {};
  if (stat(directory.c_str(), &status) != 0) return "another user";
  std::array<char, 1024> texts{};
  passwd user{};
  passwd* found = nullptr;
  getpwuid_r(status.st_uid, &user, texts.data(), texts.size(), &found);
  return found == nullptr ? fmt::format("user {}", status.st_uid) : found->pw_name;
}

}  // namespace

ControlClient::ControlClient(std::string board_directory, std::chrono::milliseconds patience)
    : directory_(std::move(board_directory)) {
  // The socket is the last thing that a starting board makes.
  constexpr std::chrono::milliseconds kBetweenTries(20);
  const TimePoint deadline = std::chrono::steady_clock::now() + patience;
  while (!(socket_ = ConnectTo(ControlSocketPath(directory_)))) {
    if (errno == EACCES) {
      throw NoBoardError(
          fmt::format("permission denied: the board at {} is {}'s; run this as that user or as root",
                      directory_, OwnerOf(directory_)));
    }
    if (std::chrono::steady_clock::now() >= deadline) {
      throw NoBoardError(fmt::format("no board answers at {}", directory_));
    }
    std::this_thread::sleep_for(kBetweenTries);
  }
}

Json ControlClient::Ask(const Json& request) {
  const std::string line = request.dump() + '\n';
  std::string_view rest = line;
  while (!rest.empty()) {
    const ssize_t sent = send(socket_.get(), rest.data(), rest.size(), MSG_NOSIGNAL);
    if (sent < 0 && errno == EINTR) continue;
    if (sent < 0) throw NoBoardError(fmt::format("the board at {} went away", directory_));
    rest.remove_prefix(static_cast<std::size_t>(sent));
  }
  const std::optional<std::string> answer = ReadLine();
  if (!answer) throw NoBoardError(fmt::format("the board at {} went away", directory_));
  return Json::parse(*answer);
}

std::optional<std::string> ControlClient::ReadLine(std::optional<TimePoint> deadline) {
  std::size_t end = 0;
  while ((end = received_.find('\n')) == std::string::npos) {
    pollfd source{socket_.get(), POLLIN, 0};
    int wait_ms = -1;
    if (deadline) {
      const auto left =
          std::chrono::ceil<std::chrono::milliseconds>(*deadline - std::chrono::steady_clock::now());
      wait_ms = static_cast<int>(std::max<std::chrono::milliseconds::rep>(left.count(), 0));
    }
    const int ready = poll(&source, 1, wait_ms);
    timed_out_ = ready == 0;
    if (timed_out_) return std::nullopt;
    std::array<char, 65536> buffer{};
    const ssize_t length = ready < 0 ? ready : recv(socket_.get(), buffer.data(), buffer.size(), 0);
    if (length < 0 && errno == EINTR) continue;
    if (length <= 0) return std::nullopt;
    received_.append(buffer.data(), static_cast<std::size_t>(length));
  }
  std::string line = received_.substr(0, end);
  received_.erase(0, end + 1);
  return line;
}

}  // namespace rolu_sim
