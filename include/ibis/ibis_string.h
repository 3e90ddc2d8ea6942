#pragma once

#include <memory>
#include <memory_resource>
#include <string>
#include <string_view>

namespace ibis {

/// Gives "NC", "NA", "GND" or "POWER" in upper case for these words in any case, else the text.
std::string_view foldReservedName(std::string_view text);

/// A text of the reader with reserved words folded; a view that owns nothing.
///
/// It points into the file's text, a StringPool or a literal. All of them live as long as the
/// IBISFile, and so may every IBISString in its records.
class IBISString {
 public:
  constexpr IBISString() = default;
  IBISString(std::string_view text) : text_(foldReservedName(text)) {}
  IBISString(const char* text) : IBISString(std::string_view(text)) {}
  IBISString(std::string&&) = delete;

  std::string_view view() const { return text_; }
  operator std::string_view() const { return text_; }
  bool empty() const { return text_.empty(); }

  /// A copy that ends in a NUL, for printf's sake.
  std::string str() const { return std::string(text_); }

  friend bool operator==(IBISString a, IBISString b) { return a.text_ == b.text_; }
  friend bool operator==(IBISString a, std::string_view b) { return a.text_ == b; }
  friend bool operator==(IBISString a, const char* b) { return a.text_ == b; }

 private:
  std::string_view text_;
};

/// Keeps copies of texts until it dies; what it gave out never moves.
class StringPool {
 public:
  /// A copy of the text that lives as long as the pool.
  std::string_view store(std::string_view text);

 private:
  std::unique_ptr<std::pmr::monotonic_buffer_resource> memory_;
};

/// Whether two texts are equal but for the case of ASCII letters.
bool equalIgnoringCase(std::string_view a, std::string_view b);

/// An ASCII letter in upper case; any other character as it is.
constexpr char upperCase(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

}  // namespace ibis
