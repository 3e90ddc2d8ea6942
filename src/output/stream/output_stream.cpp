#include "output/stream/output_stream.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstring>

#include "output/stream/number_text.h"
#include "support/files.h"

namespace ibis {
namespace {

// Opening a pipe would wait for its reader, and the host with it. One that has a reader keeps it
// for as long as this lives.
class PipeProbe {
 public:
  explicit PipeProbe(const std::string& name) {
    struct stat status {};
    if (stat(name.c_str(), &status) != 0 || !S_ISFIFO(status.st_mode)) return;
    end_ = ::open(name.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    hasNoReader_ = end_ < 0;
  }
  ~PipeProbe() {
    if (end_ >= 0) ::close(end_);
  }
  PipeProbe(const PipeProbe&) = delete;
  PipeProbe& operator=(const PipeProbe&) = delete;

  bool hasNoReader() const { return hasNoReader_; }

 private:
  int end_ = -1;
  bool hasNoReader_ = false;
};

}  // namespace

// All memory is there before the file is opened and emptied.
std::unique_ptr<OutputStream> OutputStream::open(const std::string& name) {
  std::unique_ptr<OutputStream> stream(new OutputStream(name));
  const PipeProbe pipe(name);
  if (pipe.hasNoReader()) return nullptr;
  if (fopen_s_utf8(&stream->file_, name.c_str(), "w") != 0) return nullptr;
  // The buffer is the stream's own; a second one would hold text back from flush().
  std::setvbuf(stream->file_, nullptr, _IONBF, 0);
  return stream;
}

OutputStream::OutputStream(std::string name)
    : name_(std::move(name)), buffer_(std::make_unique_for_overwrite<char[]>(bufferSize)) {}

OutputStream::~OutputStream() { close(); }

void OutputStream::flush() {
  if (file_ == nullptr || std::fwrite(buffer_.get(), 1, used_, file_) != used_) failed_ = true;
  flushed_ += used_;
  used_ = 0;
}

char* OutputStream::room(std::size_t count) {
  if (used_ + count > bufferSize) flush();
  return buffer_.get() + used_;
}

void OutputStream::write(std::string_view text) {
  while (!text.empty()) {
    const std::size_t part = std::min(text.size(), bufferSize);
    std::memcpy(room(part), text.data(), part);
    used_ += part;
    text.remove_prefix(part);
  }
}

void OutputStream::write(char c) {
  *room(1) = c;
  ++used_;
}

void OutputStream::writeBlanks(std::int32_t count) {
  for (; count > 0; --count) write(' ');
}

void OutputStream::writeInteger(std::int64_t value) {
  char* const begin = room(longestNumberText);
  used_ +=
      static_cast<std::size_t>(std::to_chars(begin, begin + longestNumberText, value).ptr - begin);
}

void OutputStream::writeNumber(double value, int precision) {
  char* const begin = room(longestNumberText);
  used_ += static_cast<std::size_t>(writeNumberText(begin, value, precision) - begin);
}

bool OutputStream::close() {
  if (file_ == nullptr) return !failed_;
  flush();
  if (std::fclose(file_) != 0) failed_ = true;
  file_ = nullptr;
  return !failed_;
}

}  // namespace ibis
