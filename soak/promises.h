// The longest times that the calls of the interface promise, as its header states them. A test compares
// the two.
#ifndef SOAK_PROMISES_H
#define SOAK_PROMISES_H

namespace rolu_soak {

// `statement` is the header's, after "Blocks: ". `own_ms` leaves out the turns: what the commands of
// other threads take meanwhile comes on top, for a call that takes turns with them.
struct Promise {
  const char* statement;
  int own_ms;
  bool takes_turns = true;
};

inline constexpr int kNoLimit = -1;

inline constexpr int kCommandMs = 3000;
inline constexpr int kLinkMs = 2000;
inline constexpr int kClosingMs = 3000;

inline constexpr Promise kNothing{"Does not block", 0, false};
inline constexpr Promise kInnerLock{"the inner lock", 0, false};
inline constexpr Promise kInnerLockInTime{"the inner lock, at most 1000 ms", 1000, false};
inline constexpr Promise kCommand{"1 command", kCommandMs};
inline constexpr Promise kCommand50{"1 command with a post-delay of 50 ms", kCommandMs + 50};
inline constexpr Promise kCommand150{"1 command with a post-delay of 150 ms", kCommandMs + 150};
inline constexpr Promise kCommand500{"1 command with a post-delay of 500 ms", kCommandMs + 500};
inline constexpr Promise kCommand1250{"1 command with a post-delay of 1250 ms", kCommandMs + 1250};
inline constexpr Promise kTwoCommands{"2 commands", 2 * kCommandMs};
inline constexpr Promise kTwoCommands50{"2 commands, the second with a post-delay of 50 ms",
                                        2 * kCommandMs + 50};
inline constexpr Promise kTwoCommands100{"2 commands, each with a post-delay of 50 ms", 2 * kCommandMs + 100};
inline constexpr Promise kClockSetting{"1 command with 2 answer lines and a post-delay of 50 ms",
                                       2 * kCommandMs + 50};
inline constexpr Promise kLinkAndCommand{"the link, then 1 command", kLinkMs + kCommandMs};
inline constexpr Promise kLinkAndTwoCommands{"the link, then 2 commands", kLinkMs + 2 * kCommandMs};
inline constexpr Promise kLinkAndSixCommands{"the link, then 6 commands, then a closing",
                                             kLinkMs + 6 * kCommandMs + kClosingMs};
inline constexpr Promise kClosing{"a closing", kClosingMs, false};
inline constexpr Promise kTwoCommandsAndClosing{"2 commands, then a closing", 2 * kCommandMs + kClosingMs};
inline constexpr Promise kDevice{"device files", 0, false};
inline constexpr Promise kShellCommand{"the shell command, without a limit", kNoLimit, false};

}  // namespace rolu_soak

#endif  // SOAK_PROMISES_H
