#include "soak/call_book.h"

#include <gtest/gtest.h>

#include <thread>

namespace rolu_soak {
namespace {

Operation Promising(int own_ms, std::size_t lane) {
  return {"X", kWatchdog, lane, {"a promise", own_ms}, nullptr};
}

void SleepFor(std::chrono::milliseconds time) {
  std::this_thread::sleep_for(time);
}

constexpr std::chrono::milliseconds kOver = kSchedulingSlack + std::chrono::milliseconds(20);

TEST(CallBook, CallThatOutlastsItsPromiseIsTold) {
  CallBook book;
  const Operation operation = Promising(10, 0);
  book.Begin(0, operation);
  SleepFor(kOver);
  EXPECT_NE(book.End(0, ROLU_STATUS_SUCCESS, true).excess, "");
  EXPECT_EQ(book.durations().at("a promise").calls, 1U);
  EXPECT_GE(book.durations().at("a promise").longest_alone, kOver);
}

TEST(CallBook, CallsOfOthersAccountForWhatTheyPromiseOnly) {
  CallBook book;
  const Operation first = Promising(0, 0);
  const Operation second = Promising(5000, 1);
  const Operation third = Promising(0, 2);
  book.Begin(0, first);
  book.Begin(1, second);
  SleepFor(kOver);
  EXPECT_EQ(book.End(0, ROLU_STATUS_SUCCESS, false).excess, "") << "the second may hold the line that long";
  book.End(1, ROLU_STATUS_SUCCESS, false);
  book.Begin(0, first);
  book.Begin(2, third);
  SleepFor(kOver);
  EXPECT_NE(book.End(0, ROLU_STATUS_SUCCESS, false).excess, "") << "the third may not";
}

TEST(CallBook, ThereIsNoPromiseWithoutALimit) {
  CallBook book;
  const Operation operation = Promising(kNoLimit, 0);
  book.Begin(0, operation);
  EXPECT_EQ(book.Unfinished(), "X for 0 s");
  SleepFor(kOver);
  EXPECT_EQ(book.End(0, ROLU_STATUS_SUCCESS, false).excess, "");
  EXPECT_EQ(book.Unfinished(), "");
}

}  // namespace
}  // namespace rolu_soak
