#include "simulator/devices/device.h"

namespace rolu_sim {

DeviceResult OpenDevice::Read(std::string& /*bytes*/, std::size_t /*capacity*/, std::uint64_t /*offset*/) {
  return -EINVAL;
}

DeviceResult OpenDevice::Write(std::string_view /*bytes*/) {
  return -EINVAL;
}

DeviceResult OpenDevice::Seek(std::uint32_t /*whence*/, std::int64_t /*offset*/,
                              std::uint64_t& /*position*/) {
  return -ESPIPE;
}

DeviceResult OpenDevice::Ioctl(std::uint32_t /*request*/, std::uint64_t /*argument*/) {
  return -ENOTTY;
}

}  // namespace rolu_sim
