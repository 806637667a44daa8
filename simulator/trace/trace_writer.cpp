#include "simulator/trace/trace_writer.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <iostream>
#include <string_view>

#include "simulator/system_error.h"

namespace rolu_sim {
namespace {

UniqueFd OpenForWriting(const std::string& path) {
  UniqueFd file(path == "-" ? fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0)
                            : open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
  if (!file) ThrowErrno("writing the trace to " + path);
  return file;
}

bool WriteAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(fd, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

}  // namespace

std::string FormatLine(const TraceRecord& record, TraceFormat format) {
  return (format == TraceFormat::kJson ? ToJson(record).dump() : ToText(record)) + '\n';
}

TraceWriter::TraceWriter(const std::string& path, TraceFormat format)
    : path_(path), format_(format), file_(OpenForWriting(path)) {}

void TraceWriter::Write(const TraceRecord& record) {
  if (failed_ || WriteAll(file_.get(), FormatLine(record, format_))) return;
  failed_ = true;
  std::cerr << "rolu-sim: writing the trace to " << path_ << ": " << std::strerror(errno)
            << "; it ends here\n";
}

}  // namespace rolu_sim
