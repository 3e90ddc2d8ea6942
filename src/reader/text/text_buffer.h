#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace ibis {

/// One text in memory with a reading position: an IBIS file, or a template.
class TextBuffer {
 public:
  TextBuffer() = default;
  explicit TextBuffer(std::string_view text) { assign(text); }

  /// Replaces the text by a copy of this one and goes back to its start.
  void assign(std::string_view text);

  /// Reads a file whole and turns lone carriage returns into line feeds.
  ///
  /// False for a file that cannot be opened, is no regular file, holds 2^31 - 1 bytes or more, or
  /// yields fewer bytes than its size; the buffer is then empty. The name is UTF-8.
  bool loadFile(const std::string& name);

  /// Frees the text.
  void clear();

  bool empty() const { return size_ == 0; }
  std::int32_t size() const { return size_; }
  std::int32_t position() const { return position_; }
  std::string_view text() const { return {bytes_.get(), static_cast<std::size_t>(size_)}; }

  /// The next character without carriage returns; a NUL or a byte above 0x7f is not consumed.
  char read() {
    const char c = peek();
    while (current() == '\r') ++position_;
    if (static_cast<signed char>(c) > 0) ++position_;
    return c;
  }

  /// The character that read() would give, without moving.
  char peek() const {
    std::int32_t place = position_;
    while (place < size_ && bytes_[static_cast<std::size_t>(place)] == '\r') ++place;
    return place < size_ ? bytes_[static_cast<std::size_t>(place)] : '\0';
  }

  /// The characters up to the next blank, tab, line end, percent sign, NUL or byte above 0x7f.
  std::string_view readPlain() {
    const std::int32_t begin = position_;
    while (isPlain(current())) ++position_;
    return {bytes_.get() + begin, static_cast<std::size_t>(position_ - begin)};
  }

  /// Moves the position, kept between 0 and the size.
  void seek(std::int32_t index);

 private:
  static bool isPlain(char c) { return static_cast<signed char>(c) > ' ' && c != '%'; }
  char current() const { return bytes_ ? bytes_[static_cast<std::size_t>(position_)] : '\0'; }

  std::unique_ptr<char[]> bytes_;  // size_ characters and a NUL
  std::int32_t size_ = 0;
  std::int32_t position_ = 0;
};

}  // namespace ibis
