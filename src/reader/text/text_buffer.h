#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "reader/text/open_file.h"

namespace ibis {

/// One text in memory with a reading position: an IBIS file, or a template.
class TextBuffer {
 public:
  TextBuffer() = default;
  explicit TextBuffer(std::string_view text) { assign(text); }

  /// Replaces the text by a copy of another and goes to its start.
  void assign(std::string_view text);

  /// Reads a file and turns lone carriage returns into line feeds.
  ///
  /// What stands far behind the first NUL is left out, since no reader goes beyond a NUL.
  /// False for a file that cannot be opened, is not a regular file, holds 2^31 - 1 bytes or more,
  /// or yields fewer bytes than its size; the buffer is then empty. The name is UTF-8.
  bool loadFile(const std::string& name, OpenFunction open = openFile);

  /// Turns lone carriage returns into line feeds, as loadFile() does.
  void convertLineEnds();

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

  /// The character that read() would return, without moving.
  char peek() const {
    std::int32_t index = position_;
    while (index < size_ && bytes_[static_cast<std::size_t>(index)] == '\r') ++index;
    return index < size_ ? bytes_[static_cast<std::size_t>(index)] : '\0';
  }

  /// Moves the position, kept between 0 and the size.
  void seek(std::int32_t index);

 private:
  char current() const { return bytes_ ? bytes_[static_cast<std::size_t>(position_)] : '\0'; }

  std::unique_ptr<char[]> bytes_;  // size_ characters and a NUL
  std::int32_t size_ = 0;
  std::int32_t position_ = 0;
};

}  // namespace ibis
