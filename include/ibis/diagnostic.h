#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ibis {

/// How much a diagnostic weighs: an error keeps output files from being written.
enum class Severity : std::uint8_t { warning, error };

/// What a diagnostic adds: a remedy, or another place that it speaks of.
struct Note {
  std::int32_t line = 0;  ///< Line of the IBIS file, from 1; 0 for none.
  std::string text;
};

/// One thing that was found wrong with a file.
struct Diagnostic {
  std::string_view id;      ///< The message's name in lower case with hyphens; never changes.
  std::string text;         ///< For a person: without place, severity and line end.
  std::vector<Note> notes;  ///< In the order in which they should be read.
  std::int32_t line = 0;    ///< Line of the IBIS file, from 1; 0 for none.
  std::int32_t column = 0;  ///< First character that is meant, from 1; 0 for the whole line.
  std::int32_t length = 0;  ///< Characters that are meant; 0 where the column is.
  Severity severity = Severity::error;
};

}  // namespace ibis
