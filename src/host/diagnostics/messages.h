#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

namespace ibis {

/// Which argument of a message is the line that it speaks of; see messages.def.
enum class LinePlace : std::uint8_t { none, shown, silent, second };

// How a row's format begins, by its place.
#define IBIS_LEAD_none ""
#define IBIS_LEAD_shown "Line %d: "
#define IBIS_LEAD_silent "Line %d: "
#define IBIS_LEAD_second ""

namespace message {

/// The texts of all messages, each a printf format with the name of its row.
#define IBIS_MESSAGE(identifier, place, text) \
  inline constexpr char identifier[] = IBIS_LEAD_##place text;
#include "host/diagnostics/messages.def"
#undef IBIS_MESSAGE

}  // namespace message

/// An identifier in lower case with hyphens, as diagnostics have it.
class MessageId {
 public:
  constexpr explicit MessageId(std::string_view identifier) {
    for (const char c : identifier) {
      const bool isCapital = c >= 'A' && c <= 'Z';
      if (isCapital) text_.at(size_++) = '-';
      text_.at(size_++) = isCapital ? static_cast<char>(c - 'A' + 'a') : c;
    }
  }

  constexpr std::string_view view() const { return {text_.data(), size_}; }

 private:
  std::array<char, 48> text_{};
  std::size_t size_ = 0;
};

/// One row of the message table.
struct MessageRow {
  MessageId id;
  LinePlace place;
  const char* format;  ///< Begins with the line where that is shown or silent.
};

/// The message table in its own order.
std::span<const MessageRow> messageTable();

/// The row of a format, compared by address, or null for a format that is not in the table.
const MessageRow* findMessage(const char* format);

/// The row of a diagnostic's id, compared by address, or null.
const MessageRow* findMessageById(std::string_view id);

}  // namespace ibis
