#include "soak/call_book.h"

#include <gtest/gtest.h>

#include <thread>

namespace rolu_soak {
namespace {

using std::chrono::milliseconds;

Operation Promising(int own_ms, size_t lane, bool takes_turns = true) {
  return {"X", kWatchdog, lane, {"a promise", own_ms, takes_turns}, nullptr};
}

void SleepFor(milliseconds time) {
  std::this_thread::sleep_for(time);
}

constexpr milliseconds kMore{20};
constexpr milliseconds kOverAlone = kSlackAlone + kMore;
constexpr milliseconds kOver = kSlackBeside + kMore;

TEST(CallBook, CallThatOutlastsItsPromiseIsTold) {
  CallBook book;
  const Operation operation = Promising(10, 0);
  book.Begin(0, operation);
  SleepFor(milliseconds(10) + kOverAlone);
  const CallBook::Duration duration = book.End(0, ROLU_STATUS_SUCCESS, true);
  EXPECT_NE(duration.fault.text, "");
  EXPECT_EQ(duration.fault.explained_by, duration.took - milliseconds(10) - kSlackAlone) << "and by no less";
}

TEST(CallBook, CallsOfOthersAccountForWhatTheyPromiseOnly) {
  const struct {
    const char* what;
    int promised_ms;
    bool takes_turns;
    int other_promised_ms;
    bool alone;
    bool is_fault;
  } rows[] = {
      {"the other may hold the line that long", 0, true, 5000, false, false},
      {"the other may not", 0, true, 0, false, true},
      {"alone it has its promise and the slack only", 0, true, 5000, true, true},
      {"without turns it waits for nobody", 0, false, 5000, false, true},
      {"there is no promise without a limit", kNoLimit, true, 0, false, false},
  };
  for (const auto& row : rows) {
    CallBook book;
    const Operation operation = Promising(row.promised_ms, 0, row.takes_turns);
    const Operation other = Promising(row.other_promised_ms, 1);
    book.Begin(0, operation);
    EXPECT_EQ(book.Unfinished(), "X for 0 s");
    book.Begin(1, other);
    SleepFor(kOver);
    EXPECT_EQ(book.End(0, ROLU_STATUS_SUCCESS, row.alone).fault.text.empty(), !row.is_fault) << row.what;
    book.End(1, ROLU_STATUS_SUCCESS, false);
    EXPECT_EQ(book.Unfinished(), "");
  }
}

TEST(CallBook, OthersThatRunAtOnceHoldTheLineOnce) {
  CallBook book;
  const Operation first = Promising(0, 0);
  const Operation second = Promising(5000, 1);
  const Operation third = Promising(5000, 2);
  book.Begin(0, first);
  book.Begin(1, second);
  book.Begin(2, third);
  SleepFor(milliseconds(30));
  book.End(1, ROLU_STATUS_SUCCESS, false);
  book.End(2, ROLU_STATUS_SUCCESS, false);
  SleepFor(kOver);
  EXPECT_NE(book.End(0, ROLU_STATUS_SUCCESS, false).fault.text, "");
  EXPECT_GE(book.durations().at("a promise").longest_less_others, kOver);
}

TEST(CallBook, CallsAloneAreCountedApart) {
  CallBook book;
  const Operation operation = Promising(5000, 0);
  book.Begin(0, operation);
  SleepFor(kMore);
  book.End(0, ROLU_STATUS_SUCCESS, false);
  EXPECT_EQ(book.durations().at("a promise").calls_alone, 0U);
  book.Begin(0, operation);
  book.End(0, ROLU_STATUS_SUCCESS, true);
  const DurationFigures figures = book.durations().at("a promise");
  EXPECT_EQ(figures.calls, 2U);
  EXPECT_EQ(figures.calls_alone, 1U);
  EXPECT_GE(figures.longest_less_others, kMore);
  EXPECT_EQ(figures.longest_beside, figures.longest_less_others);
}

}  // namespace
}  // namespace rolu_soak
