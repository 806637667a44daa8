#ifndef TESTS_SUPPORT_TEXT_NODE_H
#define TESTS_SUPPORT_TEXT_NODE_H

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "simulator/devices/device.h"

namespace rolu_test {

// A node that shows any text, and discards what is written to it. A read after the text finds the end of the
// file, or fails with `end_errno`. Each read, write and ioctl calls `on_use`.
class TextNode : public rolu_sim::Device {
 public:
  explicit TextNode(
      std::string text, int end_errno = 0, std::function<void()> on_use = [] {})
      : text_(std::move(text)), end_errno_(end_errno), on_use_(std::move(on_use)) {}
  rolu_sim::DeviceResult Open(const rolu_sim::OpenFlags&,
                              std::unique_ptr<rolu_sim::OpenDevice>& opened) override {
    opened = std::make_unique<Descriptor>(*this);
    return 0;
  }

 private:
  class Descriptor : public rolu_sim::OpenDevice {
   public:
    explicit Descriptor(const TextNode& node) : node_(node), rest_(node.text_) {}
    rolu_sim::DeviceResult Read(std::string& bytes, size_t capacity, uint64_t /*offset*/) override {
      node_.on_use_();
      if (rest_.empty()) return -node_.end_errno_;
      bytes = rest_.substr(0, capacity);
      rest_.erase(0, bytes.size());
      return static_cast<rolu_sim::DeviceResult>(bytes.size());
    }
    rolu_sim::DeviceResult Write(std::string_view bytes) override {
      node_.on_use_();
      return static_cast<rolu_sim::DeviceResult>(bytes.size());
    }
    rolu_sim::DeviceResult Ioctl(uint32_t, uint64_t) override {
      node_.on_use_();
      return 0;
    }

   private:
    const TextNode& node_;
    std::string rest_;
  };
  const std::string text_;
  const int end_errno_;
  const std::function<void()> on_use_;
};

}  // namespace rolu_test

#endif  // TESTS_SUPPORT_TEXT_NODE_H
