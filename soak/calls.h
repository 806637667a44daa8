// Calls of the usual forms, as operations of the soak.
#ifndef SOAK_CALLS_H
#define SOAK_CALLS_H

#include <fmt/format.h>
#include <pthread.h>

#include <cmath>
#include <cstdint>
#include <functional>

#include "soak/operations.h"

namespace rolu_soak {

using Call = std::function<Outcome(Lane&)>;

// `same` compares what the caller got with the number that the MCU answered.
template <typename Value, typename Same>
inline Call Reads(ROLU_STATUS (*get)(Value*), const char* code, Same same) {
  return [=](Lane& lane) {
    Value value{};
    const ROLU_STATUS status = get(&value);
    return Outcome{status, status == ROLU_STATUS_SUCCESS && same(value, lane.Number(code))};
  };
}

template <typename Value>
inline Call ReadsWord(ROLU_STATUS (*get)(Value*), const char* code) {
  return Reads(get, code,
               [](Value value, std::uint64_t number) { return static_cast<std::uint64_t>(value) == number; });
}

inline Call ReadsBit(ROLU_STATUS (*get)(char*), const char* code, unsigned int bit = 0) {
  return Reads(get, code, [bit](char value, std::uint64_t number) {
    return static_cast<std::uint64_t>(value) == (number >> bit & 1U);
  });
}

// A float that stands for whole units.
inline Call ReadsUnits(ROLU_STATUS (*get)(float*), const char* code, double unit, double zero = 0.0) {
  return Reads(get, code, [unit, zero](float value, std::uint64_t number) {
    return std::llround((static_cast<double>(value) + zero) / unit) == static_cast<long long>(number);
  });
}

// An order whose text at the MCU is `pattern` with the value in it.
template <typename Parameter>
inline Call Orders(ROLU_STATUS (*set)(Parameter), std::uint32_t first, std::uint32_t count,
                   const char* pattern) {
  return [=](Lane& lane) {
    const std::uint32_t value = first + lane.Draw(count);
    const ROLU_STATUS status = set(static_cast<Parameter>(value));
    return Outcome{status, lane.LastCommand() == fmt::format(fmt::runtime(pattern), value)};
  };
}

inline Call Order(ROLU_STATUS (*order)(), const char* text) {
  return [=](Lane& lane) {
    const ROLU_STATUS status = order();
    return Outcome{status, lane.LastCommand() == text};
  };
}

inline Call Plain(ROLU_STATUS (*function)()) {
  return [=](Lane&) { return Outcome{function(), true}; };
}

inline Call Registers(ROLU_STATUS (*set)(void*), pthread_cond_t& event) {
  return [set, &event](Lane&) { return Outcome{set(&event), true}; };
}

}  // namespace rolu_soak

#endif  // SOAK_CALLS_H
