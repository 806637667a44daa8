#pragma once

#include <sys/stat.h>

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>

namespace rolu_sim {

// Results are those of a driver: 0 or a count, or a negative errno.
using DeviceResult = std::int32_t;

struct OpenFlags {
  bool read = false;
  bool write = false;
};

// One open descriptor of a device; destroyed when the descriptor is closed.
class OpenDevice {
 public:
  virtual ~OpenDevice() = default;
  // Puts at most `capacity` bytes into `bytes`, which is empty at the call, and returns their count.
  // `offset` is the position in the text of an attribute.
  virtual DeviceResult Read(std::string& /*bytes*/, std::size_t /*capacity*/, std::uint64_t /*offset*/) {
    return -EINVAL;
  }
  virtual DeviceResult Write(std::string_view /*bytes*/) { return -EINVAL; }
  // `whence` and `offset` are those of lseek. Sets the position if it succeeds.
  virtual DeviceResult Seek(std::uint32_t /*whence*/, std::int64_t /*offset*/, std::uint64_t& /*position*/) {
    return -ESPIPE;
  }
  // A request whose argument is a number.
  virtual DeviceResult Ioctl(std::uint32_t /*request*/, std::uint64_t /*argument*/) { return -ENOTTY; }
  // A request whose argument is a pointer. What the program has there comes as `sent`; it finds `answer`
  // there (device_protocol.h).
  virtual DeviceResult Exchange(std::uint32_t /*request*/, std::string_view /*sent*/,
                                std::string& /*answer*/) {
    return -ENOTTY;
  }
};

// A device node. The server calls a device only on the server's thread, one call at a time. A device must
// itself guard what it shows to its owner.
class Device {
 public:
  virtual ~Device() = default;
  // What stat reports: kind and permissions.
  virtual std::uint32_t Mode() const { return S_IFREG | 0644; }
  virtual DeviceResult Open(const OpenFlags& flags, std::unique_ptr<OpenDevice>& opened) = 0;
};

// A sysfs attribute: a read gives its present text, a write stores a new text as a whole. An open that asks
// for more than the permissions allow fails with EACCES.
class Attribute : public Device {
 public:
  using Show = std::function<std::string()>;
  // Returns 0 or a negative errno. `text` comes without a line end, even if it was written with one.
  using Store = std::function<DeviceResult(std::string_view text)>;

  // The attribute may be read if there is a `show`, and written if there is a `store`.
  Attribute(Show show, Store store) : show_(std::move(show)), store_(std::move(store)) {}

  std::uint32_t Mode() const final { return S_IFREG | (show_ ? 0444U : 0) | (store_ ? 0200U : 0); }
  DeviceResult Open(const OpenFlags& flags, std::unique_ptr<OpenDevice>& opened) final;

 private:
  class Descriptor;

  const Show show_;
  const Store store_;
};

// An attribute that programs read and the owner sets.
class TextAttribute : public Attribute {
 public:
  explicit TextAttribute(std::string text);

  // The text as it is read, line end included.
  void SetText(std::string text);
  void SetNumber(long number) { SetText(std::to_string(number) + '\n'); }

 private:
  std::mutex mutex_;
  std::string text_;
};

// Reads the whole of `text` as the kernel reads a number from 0 to `highest`: decimal, octal after 0,
// hexadecimal after 0x. Returns -EINVAL for any other text.
int ParseKernelNumber(std::string_view text, int highest);

// The brightness of the display's backlight. It refuses any text that is not a level with EINVAL.
class Backlight : public Attribute {
 public:
  static constexpr int kHighestLevel = 10;

  Backlight();

  int level() const { return level_; }
  void SetLevel(int level) { level_ = level; }

 private:
  std::atomic<int> level_{kHighestLevel};
};

}  // namespace rolu_sim
