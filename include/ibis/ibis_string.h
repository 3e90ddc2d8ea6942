#pragma once

#include <memory>
#include <memory_resource>
#include <string>
#include <string_view>

#include "ibis/api.h"

namespace ibis {

/// Returns "NC", "NA", "GND" or "POWER" for these words in any case, and any other text as it is.
IBIS_API std::string_view foldReservedName(std::string_view text);

/// A view of a text, with reserved words folded to upper case; it owns nothing.
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

  /// A copy that ends in a NUL, as printf needs it.
  std::string str() const { return std::string(text_); }

  friend bool operator==(IBISString a, IBISString b) { return a.text_ == b.text_; }
  friend bool operator==(IBISString a, std::string_view b) { return a.text_ == b; }
  friend bool operator==(IBISString a, const char* b) { return a.text_ == b; }

 private:
  std::string_view text_;
};

/// Keeps copies of texts until it dies; a stored text never moves.
class StringPool {
 public:
  /// A copy of the text that lives as long as the pool.
  IBIS_API std::string_view store(std::string_view text);

 private:
  std::unique_ptr<std::pmr::monotonic_buffer_resource> memory_;
};

/// Whether two texts are equal, apart from the case of ASCII letters.
IBIS_API bool equalIgnoringCase(std::string_view a, std::string_view b);

/// An ASCII letter in upper case; any other character as it is.
constexpr char upperCase(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

}  // namespace ibis
