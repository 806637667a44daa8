#include "simulator/devices/attribute.h"

#include <charconv>
#include <optional>
#include <system_error>

namespace rolu_sim {
namespace {

constexpr std::uint32_t kReadBits = 0444;
constexpr std::uint32_t kWriteBits = 0222;

}  // namespace

// A descriptor's text is the one of its first read.
class Attribute::Descriptor : public OpenDevice {
 public:
  explicit Descriptor(Attribute& attribute) : attribute_(attribute) {}

  DeviceResult Read(std::string& bytes, std::size_t capacity) override {
    if (!unread_) unread_ = attribute_.Show();
    bytes = unread_->substr(0, capacity);
    unread_->erase(0, bytes.size());
    return static_cast<DeviceResult>(bytes.size());
  }

  DeviceResult Write(std::string_view bytes) override {
    std::string_view text = bytes;
    if (!text.empty() && text.back() == '\n') text.remove_suffix(1);
    const DeviceResult result = attribute_.Store(text);
    return result < 0 ? result : static_cast<DeviceResult>(bytes.size());
  }

 private:
  Attribute& attribute_;
  std::optional<std::string> unread_;
};

DeviceResult Attribute::Open(const OpenFlags& flags, std::unique_ptr<OpenDevice>& opened) {
  if (flags.read && (permissions_ & kReadBits) == 0) return -EACCES;
  if (flags.write && (permissions_ & kWriteBits) == 0) return -EACCES;
  opened = std::make_unique<Descriptor>(*this);
  return 0;
}

void TextAttribute::SetText(std::string text) {
  const std::lock_guard<std::mutex> lock(mutex_);
  text_ = std::move(text);
}

std::string TextAttribute::Show() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return text_;
}

int ParseDecimal(std::string_view text, int highest) {
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{} || end != text.data() + text.size()) return -EINVAL;
  return number < 0 || number > highest ? -EINVAL : number;
}

}  // namespace rolu_sim
