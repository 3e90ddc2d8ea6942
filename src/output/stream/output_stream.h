#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "output/stream/sink.h"

namespace ibis {

/// One open output; only close() reports a failed write.
class OutputStream {
 public:
  /// Begins the output of a name in a sink, which must live longer; null if the sink refuses.
  static std::unique_ptr<OutputStream> open(Sink& sink, const std::string& name);

  OutputStream(const OutputStream&) = delete;
  OutputStream& operator=(const OutputStream&) = delete;

  void write(std::string_view text);
  void write(char c);
  void writeBlanks(std::int32_t count);
  void writeInteger(std::int64_t value);

  /// Writes as printf's %.{precision}g does in the "C" locale; a not-a-number has no sign.
  void writeNumber(double value, int precision);

  /// Hands what was written to the sink.
  void flush();

  /// Ends the output; false if anything could not be written.
  bool close();

  /// Whether a number was written that is not finite.
  bool hasNonFinite() const { return hasNonFinite_; }

  /// How many characters were written so far.
  std::uint64_t position() const { return flushed_ + used_; }

  const std::string& name() const { return name_; }

 private:
  explicit OutputStream(std::string name);
  char* room(std::size_t count);

  static constexpr std::size_t bufferSize = 1 << 16;

  std::unique_ptr<SinkTarget> target_;
  std::string name_;
  std::unique_ptr<char[]> buffer_;
  std::size_t used_ = 0;
  std::uint64_t flushed_ = 0;
  bool failed_ = false;
  bool hasNonFinite_ = false;
};

}  // namespace ibis
