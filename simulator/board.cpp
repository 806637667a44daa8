#include "simulator/board.h"

#include <stdlib.h>

#include <string_view>
#include <utility>

#include "simulator/preloaded.h"
#include "simulator/system_error.h"

namespace rolu_sim {

Board::Board(BoardOptions options)
    : root_(options.root_directory),
      mcu_(std::move(options.serial)),
      reset_controller_(std::make_shared<ResetController>()),
      i2c_(std::make_shared<I2cBus>()),
      devices_(root_.DeviceSocketPath(), std::move(options.kernel)) {
  i2c_->Attach(ResetController::kAddress, reset_controller_);
  devices_.AddNode(kI2cBusPath, i2c_);
  RestoreSerialDevice();
}

Board::~Board() {
  const char* const attached = getenv(kRootVariable);
  if (attached != nullptr && root_.path() == attached) unsetenv(kRootVariable);
}

void Board::AttachThisProcess() {
  if (setenv(kRootVariable, root_.path().c_str(), 1) != 0) ThrowErrno("setting the environment");
}

void Board::RemoveSerialDevice() {
  root_.UnlinkSerialPort();
}

void Board::RestoreSerialDevice() {
  root_.LinkSerialPort(mcu_.DevicePath());
}

void Board::ReplugSerialPort() {
  mcu_.Reopen();
  RestoreSerialDevice();
}

}  // namespace rolu_sim
