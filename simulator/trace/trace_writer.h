#pragma once

#include <string>

#include "simulator/trace/trace_record.h"
#include "simulator/unique_fd.h"

namespace rolu_sim {

enum class TraceFormat { kText, kJson };

// One record as a line, with its line end.
std::string FormatLine(const TraceRecord& record, TraceFormat format);

// Writes records to a file or to standard error, each at once and as one write: the program under
// test may write there as well.
class TraceWriter {
 public:
  // "-" is standard error. Throws std::system_error when the file cannot be written.
  TraceWriter(const std::string& path, TraceFormat format);

  // After a write that fails, says so once on standard error and writes no more.
  void Write(const TraceRecord& record);

 private:
  const std::string path_;
  const TraceFormat format_;
  UniqueFd file_;
  bool failed_ = false;
};

}  // namespace rolu_sim
