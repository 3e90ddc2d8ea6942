#include "output/stream/output_stream.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

#include "output/stream/number_text.h"

namespace ibis {
// Allocates all memory before the sink begins the output.
std::unique_ptr<OutputStream> OutputStream::open(Sink& sink, const std::string& name) {
  std::unique_ptr<OutputStream> stream(new OutputStream(name));
  stream->target_ = sink.open(name);
  return stream->target_ ? std::move(stream) : nullptr;
}

OutputStream::OutputStream(std::string name)
    : name_(std::move(name)), buffer_(std::make_unique_for_overwrite<char[]>(bufferSize)) {}

void OutputStream::flush() {
  if (!target_ || !target_->write({buffer_.get(), used_})) failed_ = true;
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
  char* const begin = room(maxNumberText);
  used_ += static_cast<std::size_t>(std::to_chars(begin, begin + maxNumberText, value).ptr - begin);
}

void OutputStream::writeNumber(double value, int precision) {
  if (!std::isfinite(value)) hasNonFinite_ = true;
  char* const begin = room(maxNumberText);
  used_ += static_cast<std::size_t>(writeNumberText(begin, value, precision) - begin);
}

bool OutputStream::close() {
  if (!target_) return !failed_;
  flush();
  if (!target_->close()) failed_ = true;
  target_.reset();
  return !failed_;
}

}  // namespace ibis
