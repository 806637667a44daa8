#include "simulator/devices/device.h"

#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <optional>
#include <system_error>

#include "simulator/devices/device_protocol.h"

namespace rolu_sim {

// A read from the beginning makes the text, and so does the first read after a write. Later reads continue in
// that text.
class Attribute::Descriptor : public OpenDevice {
 public:
  explicit Descriptor(Attribute& attribute) : attribute_(attribute) {}

  DeviceResult Read(std::string& bytes, std::size_t capacity, std::uint64_t offset) override {
    if (!text_ || offset == 0) text_ = attribute_.show_();
    if (offset < text_->size()) bytes = text_->substr(static_cast<std::size_t>(offset), capacity);
    return static_cast<DeviceResult>(bytes.size());
  }

  DeviceResult Write(std::string_view bytes) override {
    text_.reset();
    std::string_view text = bytes;
    if (!text.empty() && text.back() == '\n') text.remove_suffix(1);
    const DeviceResult result = attribute_.store_(text);
    return result < 0 ? result : static_cast<DeviceResult>(bytes.size());
  }

  // Seeks as in a file of an attribute's size that has no holes.
  DeviceResult Seek(std::uint32_t whence, std::int64_t offset, std::uint64_t& position) override {
    switch (whence) {
      case SEEK_SET:
        break;
      case SEEK_CUR:
        offset += static_cast<std::int64_t>(position);
        break;
      case SEEK_END:
        offset += kAttributeSize;
        break;
      case SEEK_DATA:
      case SEEK_HOLE:
        if (offset < 0 || offset >= kAttributeSize) return -ENXIO;
        if (whence == SEEK_HOLE) offset = kAttributeSize;
        break;
      default:
        return -EINVAL;
    }
    if (offset < 0) return -EINVAL;
    position = static_cast<std::uint64_t>(offset);
    return 0;
  }

 private:
  Attribute& attribute_;
  std::optional<std::string> text_;
};

DeviceResult Attribute::Open(const OpenFlags& flags, std::unique_ptr<OpenDevice>& opened) {
  if ((flags.read && !show_) || (flags.write && !store_)) return -EACCES;
  opened = std::make_unique<Descriptor>(*this);
  return 0;
}

TextAttribute::TextAttribute(std::string text)
    : Attribute(
          [this] {
            const std::lock_guard<std::mutex> lock(mutex_);
            return text_;
          },
          nullptr),
      text_(std::move(text)) {}

void TextAttribute::SetText(std::string text) {
  const std::lock_guard<std::mutex> lock(mutex_);
  text_ = std::move(text);
}

Backlight::Backlight()
    : Attribute([this] { return std::to_string(level_) + '\n'; },
                [this](std::string_view text) {
                  const int level = ParseKernelNumber(text, kHighestLevel);
                  if (level >= 0) level_ = level;
                  return std::min(level, 0);
                }) {}

int ParseKernelNumber(std::string_view text, int highest) {
  if (text.starts_with('+')) text.remove_prefix(1);
  int base = text.starts_with('0') ? 8 : 10;
  if (text.starts_with("0x") || text.starts_with("0X")) {
    text.remove_prefix(2);
    base = 16;
  }
  unsigned number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
  if (error != std::errc{} || end != text.data() + text.size()) return -EINVAL;
  return number > static_cast<unsigned>(highest) ? -EINVAL : static_cast<int>(number);
}

}  // namespace rolu_sim
