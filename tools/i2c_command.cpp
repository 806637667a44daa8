#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <optional>

#include "tools/command.h"
#include "tools/interrupt.h"
#include "tools/report.h"
#include "tools/status_words.h"

namespace rolu {
namespace {

using Bytes = std::vector<unsigned char>;

constexpr unsigned kFirstAddress = 0x03;
constexpr unsigned kLastAddress = 0x7F;  // the board's reset controller sits beyond the usual 0x77
constexpr unsigned kRowLength = 16;
constexpr unsigned kRegisters = 256;

struct I2cOptions {
  std::string address;
  std::string register_number;
  unsigned count = 1;
  std::vector<std::string> bytes;
};

// Reads the whole of `text` as a number: decimal, or hexadecimal with 0x.
unsigned ParseByte(const std::string& text, const char* what, unsigned lowest, unsigned highest) {
  const bool is_hex = text.starts_with("0x") || text.starts_with("0X");
  const char* const begin = text.data() + (is_hex ? 2 : 0);
  const char* const end = text.data() + text.size();
  unsigned number = 0;
  const auto [stop, error] = std::from_chars(begin, end, number, is_hex ? 16 : 10);
  if (error == std::errc() && stop == end && number >= lowest && number <= highest) return number;
  throw CommandError(kWrongUse,
                     fmt::format("{} must be from 0x{:02x} to 0x{:02x} (decimal, or hexadecimal with "
                                 "0x), not \"{}\"",
                                 what, lowest, highest, text));
}

unsigned ParseAddress(const std::string& text) {
  return ParseByte(text, "the 7-bit address", kFirstAddress, kLastAddress);
}

ROLU_IIC_TRANSFER TransferWith(unsigned address, Bytes& data) {
  ROLU_IIC_TRANSFER transfer{};
  transfer.slave_address = static_cast<std::uint8_t>(address << 1U);
  transfer.data = data.data();
  transfer.data_length = static_cast<std::uint32_t>(data.size());
  return transfer;
}

Bytes ReadBytes(unsigned address, unsigned count) {
  Bytes data(count);
  ROLU_IIC_TRANSFER transfer = TransferWith(address, data);
  ThrowUnlessDone(KAVO_ROLU_IIC_Read(&transfer), fmt::format("read from address 0x{:02x}", address));
  return data;
}

Bytes ReadRegisters(unsigned address, unsigned first, unsigned count) {
  Bytes number = {static_cast<unsigned char>(first)};
  Bytes data(count);
  ROLU_IIC_TRANSFER transfer = TransferWith(address, number);
  transfer.read_data = data.data();
  transfer.read_length = count;
  ThrowUnlessDone(KAVO_ROLU_IIC_WriteReadCombine(&transfer),
                  fmt::format("read register 0x{:02x} of address 0x{:02x}", first, address));
  return data;
}

std::string Hex(const Bytes& bytes) {
  std::string text;
  for (const unsigned char byte : bytes) text += fmt::format("{}{:02x}", text.empty() ? "" : " ", byte);
  return text;
}

ExitStatus RunRead(const I2cOptions& options, const CommonOptions& common) {
  const unsigned address = ParseAddress(options.address);
  std::optional<unsigned> first;
  if (!options.register_number.empty()) first = ParseByte(options.register_number, "the register", 0, 0xFF);
  const Bytes data =
      first ? ReadRegisters(address, *first, options.count) : ReadBytes(address, options.count);
  if (common.json) {
    Document document = {{"address", address}, {"bytes", data}};
    if (first) document["register"] = *first;
    PrintJson(document);
  } else {
    Out(Hex(data) + "\n");
  }
  return kDone;
}

ExitStatus RunWrite(const I2cOptions& options, const CommonOptions& common) {
  const unsigned address = ParseAddress(options.address);
  Bytes data;
  for (const std::string& text : options.bytes) {
    data.push_back(static_cast<unsigned char>(ParseByte(text, "a byte", 0, 0xFF)));
  }
  Confirm(common, {fmt::format("writes {} to the device at address 0x{:02x}, whatever that does to it",
                               Hex(data), address)});
  ROLU_IIC_TRANSFER transfer = TransferWith(address, data);
  ThrowUnlessDone(KAVO_ROLU_IIC_Write(&transfer), fmt::format("write to address 0x{:02x}", address));
  if (common.json) PrintJson({{"address", address}, {"written", data}});
  return kDone;
}

void PrintRow(unsigned first, const Bytes& row) {
  std::string characters;
  for (const unsigned char byte : row)
    characters += byte >= ' ' && byte <= '~' ? static_cast<char>(byte) : '.';
  OutNow(fmt::format("{:02x}: {}  {}\n", first, Hex(row), characters));
}

// Each row takes 100 ms, in which the slave prepares its answer.
ExitStatus RunDump(const I2cOptions& options, const CommonOptions& common) {
  const unsigned address = ParseAddress(options.address);
  Bytes all;
  for (unsigned first = 0; first < kRegisters; first += kRowLength) {
    interrupt::ThrowIfRequested();
    const Bytes row = ReadRegisters(address, first, kRowLength);
    if (!common.json) PrintRow(first, row);
    all.insert(all.end(), row.begin(), row.end());
  }
  if (common.json) PrintJson({{"address", address}, {"first", 0}, {"bytes", all}});
  return kDone;
}

// The addresses that devices may have; the others are reserved. The board's reset controller is not among
// them.
constexpr unsigned kFirstScanned = 0x08;
constexpr unsigned kLastScanned = 0x77;

// Whether something answers when it is asked for a byte. Throws CommandError when the bus cannot be used.
bool Answers(unsigned address) {
  Bytes data(1);
  ROLU_IIC_TRANSFER transfer = TransferWith(address, data);
  const ROLU_STATUS status = KAVO_ROLU_IIC_Read(&transfer);
  if (status != ROLU_STATUS_DEVICE_IO_FAILED) ThrowUnlessDone(status, "scan the bus");
  return status == ROLU_STATUS_SUCCESS;
}

void PrintMap(const std::vector<unsigned>& found) {
  Out("     0  1  2  3  4  5  6  7  8  9  a  b  c  d  e  f\n");
  for (unsigned row = 0; row <= kLastScanned; row += kRowLength) {
    std::string line = fmt::format("{:02x}:", row);
    for (unsigned address = row; address < row + kRowLength && address <= kLastScanned; ++address) {
      const bool is_found = std::ranges::find(found, address) != found.end();
      line += address < kFirstScanned ? "   " : is_found ? fmt::format(" {:02x}", address) : " --";
    }
    Out(line + "\n");
  }
}

ExitStatus RunDetect(const CommonOptions& common) {
  std::vector<unsigned> found;
  for (unsigned address = kFirstScanned; address <= kLastScanned; ++address) {
    interrupt::ThrowIfRequested();
    if (Answers(address)) found.push_back(address);
  }
  if (common.json) {
    PrintJson({{"first", kFirstScanned}, {"last", kLastScanned}, {"addresses", found}});
    return kDone;
  }
  PrintMap(found);
  Out(fmt::format("found {}; 0x78, the board's reset controller, was not asked\n", found.size()));
  return kDone;
}

void AddAddress(CLI::App* command, I2cOptions& options) {
  command->add_option("ADDRESS", options.address, "The device's 7-bit address, like 0x48")->required();
}

}  // namespace

void AddI2cCommand(CLI::App& app, Invocation& invocation) {
  auto options = std::make_shared<I2cOptions>();
  CLI::App* const i2c = NewCommand(app, "i2c", "Read from and write to devices on the I2C bus",
                                   "  rolu i2c detect\n  rolu i2c read 0x48 --register 0x00 --count 2\n"
                                   "  rolu i2c write 0x48 0x01 0x60\n  rolu i2c dump 0x48\n"
                                   "rolu uses a device even if a kernel driver has it.");
  i2c->require_subcommand(1);

  OnRun(NewCommand(*i2c, "detect", "Look which addresses answer; asks each from 0x08 to 0x77 for one byte",
                   "  rolu i2c detect"),
        invocation, RunDetect);

  CLI::App* const read =
      NewCommand(*i2c, "read", "Read bytes", "  rolu i2c read 0x48 --register 0x00 --count 2");
  AddAddress(read, *options);
  read->add_option("--register", options->register_number, "Name this register first");
  read->add_option("--count", options->count, "How many bytes")
      ->check(CLI::Range(1, 256))
      ->capture_default_str();
  OnRun(read, invocation, RunRead, options);

  CLI::App* const write =
      NewCommand(*i2c, "write", "Write bytes; asks first", "  rolu i2c write 0x48 0x01 0x60");
  AddAddress(write, *options);
  write->add_option("BYTE", options->bytes, "0 to 255, or 0x00 to 0xff")->required();
  OnRun(write, invocation, RunWrite, options);

  CLI::App* const dump = NewCommand(*i2c, "dump", "Read all 256 registers", "  rolu i2c dump 0x48");
  AddAddress(dump, *options);
  OnRun(dump, invocation, RunDump, options);
}

}  // namespace rolu
