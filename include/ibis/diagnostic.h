#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ibis {

/// The weight of a diagnostic: an error keeps output files from being written.
///
/// A note is a matter of style or quality that only a check tells.
enum class Severity : std::uint8_t { warning, error, note };

/// An addition to a diagnostic: a remedy, or a further line that it speaks of.
struct Note {
  std::int32_t line = 0;  ///< Line of the IBIS file, from 1; 0 for none.
  std::string text;       ///< For a person, without the line and a line end.
};

/// One fault that was found in a file.
struct Diagnostic {
  std::string_view id;      ///< The message's name in lower case with hyphens; never changes.
  std::string text;         ///< For a person, without line, severity and line end.
  std::vector<Note> notes;  ///< In the order in which they should be read.
  std::int32_t line = 0;    ///< Line of the IBIS file, from 1; 0 for none.
  std::int32_t column = 0;  ///< First character that is meant, from 1; 0 for the whole line.
  std::int32_t length = 0;  ///< How many characters are meant; 0 for the whole line.
  Severity severity = Severity::error;
};

}  // namespace ibis
