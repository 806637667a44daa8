#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace rolu_bench {

// One way to ask the MCU for a number, with the port open.
class Peer {
 public:
  virtual ~Peer() = default;
  // Throws std::runtime_error when the answer is missing or wrong.
  virtual void Ask() = 0;
};

// A way that an application developer could take.
struct PeerKind {
  std::string name;
  // Opens the port: the device itself, or for this library the board's port. Throws.
  std::function<std::unique_ptr<Peer>(const std::string& device_path)> open;
  // A function of the shared object that the peer uses; null when it uses only the C library.
  const void* function_inside;
};

const std::vector<PeerKind>& PeerKinds();

}  // namespace rolu_bench
