#include "simulator/board.h"

#include <stdlib.h>

#include <utility>

#include "simulator/environment.h"

namespace rolu_sim {
namespace {

constexpr char kIndoorLight[] = "350\n";

}  // namespace

Board::Board(BoardOptions options)
    : root_(options.root_directory),
      event_listener_(std::move(options.serial.event_listener)),
      mcu_(WithOwnListener(std::move(options.serial))),
      reset_controller_(std::make_shared<ResetController>(
          [this] { mcu_.WithModel([](McuModel& mcu) { mcu.ResetComputer(); }); })),
      register_device_(std::make_shared<I2cRegisterDevice>()),
      i2c_(std::make_shared<I2cBus>()),
      backlight_(std::make_shared<Backlight>()),
      light_sensor_(std::make_shared<TextAttribute>(kIndoorLight)),
      wireless_(root_),
      port_conflict_listener_(std::move(options.port_conflict_listener)),
      devices_(root_, std::move(options.kernel), [this](pid_t process) { FollowOpening(process); }),
      gpio_(devices_) {
  i2c_->Attach(ResetController::kAddress, reset_controller_);
  i2c_->Attach(kRegisterDeviceAddress, register_device_);
  devices_.AddNode(kI2cBusPath, i2c_);
  devices_.AddNode(kBacklightPath, backlight_);
  devices_.AddNode(kLuxPath, light_sensor_);
  RestoreSerialDevice();
}

// The MCU may call back only once a program has used the board, so all parts exist by then.
McuSerialOptions Board::WithOwnListener(McuSerialOptions options) {
  options.event_listener = [this](const McuEvent& event) { Hear(event); };
  return options;
}

// What the kernel knows goes with the power; what is outside and in the MCU stays.
void Board::Hear(const McuEvent& event) {
  if (ends_) return;
  const bool starts = event.ends_programs || event.kind == McuEventKind::kPowerOn;
  if (starts) devices_.SetPower(false);
  if (event_listener_) event_listener_(event);
  if (!starts) return;
  gpio_.Restart();
  backlight_->SetLevel(Backlight::kHighestLevel);
  wireless_.Set(false);
  devices_.SetPower(event.kind != McuEventKind::kPowerCut);
}

// The devices use the MCU, so they are gone before it is.
Board::~Board() {
  mcu_.WithModel([this](McuModel&) { ends_ = true; });
  const char* const attached = getenv(kRootVariable);
  if (attached != nullptr && root_.path() == attached) unsetenv(kRootVariable);
  RemoveCommandDirectory(root_.CommandDirectory());
}

void Board::AttachThisProcess() {
  SetEnvironment(kRootVariable, root_.path());
  AddCommandDirectory(root_.CommandDirectory());
}

void Board::FollowOpening(pid_t process) {
  mcu_.FollowPrograms();
  for (const std::string& words :
       port_holders_.NoteOpening(process, mcu_.DevicePath(), mcu_.IsOpenByHost())) {
    if (port_conflict_listener_) port_conflict_listener_(words);
  }
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
