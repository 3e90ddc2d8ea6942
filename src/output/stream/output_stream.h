#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace ibis {

/// One open output file; writing never fails visibly until close() tells.
class OutputStream {
 public:
  /// Opens the file for writing, name in UTF-8; null if that fails or would wait for a reader.
  static std::unique_ptr<OutputStream> open(const std::string& name);

  ~OutputStream();
  OutputStream(const OutputStream&) = delete;
  OutputStream& operator=(const OutputStream&) = delete;

  void write(std::string_view text);
  void write(char c);
  void writeBlanks(std::int32_t count);
  void writeInteger(std::int64_t value);

  /// As printf's %.{precision}g in the "C" locale; a not-a-number has no sign.
  void writeNumber(double value, int precision);

  /// Hands what was written to the operating system.
  void flush();

  /// Closes the file; false if anything could not be written.
  bool close();

  /// How many characters were written so far.
  std::uint64_t position() const { return flushed_ + used_; }

  const std::string& name() const { return name_; }

 private:
  explicit OutputStream(std::string name);
  char* room(std::size_t count);

  static constexpr std::size_t bufferSize = 1 << 16;

  std::FILE* file_ = nullptr;
  std::string name_;
  std::unique_ptr<char[]> buffer_;
  std::size_t used_ = 0;
  std::uint64_t flushed_ = 0;
  bool failed_ = false;
};

}  // namespace ibis
