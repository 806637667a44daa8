#pragma once

#include <mutex>
#include <string>
#include <string_view>

#include "simulator/devices/device.h"

namespace rolu_sim {

// A sysfs attribute: a read gives its present text, a write stores a new one as a whole. Opened for
// what its permissions do not have it answers EACCES.
class Attribute : public Device {
 public:
  std::uint32_t Mode() const final { return S_IFREG | permissions_; }
  DeviceResult Open(const OpenFlags& flags, std::unique_ptr<OpenDevice>& opened) final;

 protected:
  explicit Attribute(std::uint32_t permissions) : permissions_(permissions) {}

 private:
  class Descriptor;

  virtual std::string Show() { return {}; }
  // 0 or a negative errno. `text` comes without the line end that it may have been written with.
  virtual DeviceResult Store(std::string_view /*text*/) { return -EINVAL; }

  const std::uint32_t permissions_;
};

// An attribute that programs read and the owner sets.
class TextAttribute : public Attribute {
 public:
  explicit TextAttribute(std::string text) : Attribute(0444), text_(std::move(text)) {}

  // The text as it is read, line end included.
  void SetText(std::string text);
  void SetNumber(long number) { SetText(std::to_string(number) + '\n'); }

 private:
  std::string Show() override;

  std::mutex mutex_;
  std::string text_;
};

// The whole of `text` as the kernel reads a number, from 0 to `highest`: decimal, octal after 0,
// hexadecimal after 0x; -EINVAL when it is none.
int ParseKernelNumber(std::string_view text, int highest);

}  // namespace rolu_sim
