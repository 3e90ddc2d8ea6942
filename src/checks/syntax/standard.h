#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace ibis::checks {

/// Sections of a file, as bits, so that a keyword may name several.
namespace section {
inline constexpr std::uint16_t none = 0;
inline constexpr std::uint16_t header = 1;
inline constexpr std::uint16_t component = 2;
inline constexpr std::uint16_t selector = 4;
inline constexpr std::uint16_t model = 8;
inline constexpr std::uint16_t submodel = 16;
inline constexpr std::uint16_t testData = 32;
inline constexpr std::uint16_t testLoad = 64;
inline constexpr std::uint16_t circuit = 128;
inline constexpr std::uint16_t package = 256;
inline constexpr std::uint16_t board = 512;
inline constexpr std::uint16_t file = 1024;  ///< Behind [End].
inline constexpr std::uint16_t anywhere = 2047;
}  // namespace section

/// What the lines below a keyword hold.
enum class Content : std::uint8_t { nothing, text, parameters, table, waveform, rows };

/// Whether a keyword may stand more than once in its section.
enum class Count : std::uint8_t { once, multiple };

/// A bracketed keyword of any version; see standard_keywords.def.
struct StandardKeyword {
  std::string_view name;
  std::string_view version;
  std::uint16_t places;
  Content content;
  std::uint16_t opens;
  Count count;
  std::string_view last;
};

/// Every bracketed keyword of the versions 1.0 to 7.2.
std::span<const StandardKeyword> standardKeywords();

/// A name in upper case with blanks for underscores, none doubled and none around it.
std::string foldedName(std::string_view name);

/// The keyword of a name, spelled with blanks or underscores in any case, or null.
const StandardKeyword* findStandardKeyword(std::string_view name);

/// Whether a name is one that ends what a keyword began, as [End External Model] does.
bool isClosingName(std::string_view name);

/// The keyword that a misspelled name may mean, or null; one that fits the section goes first.
const StandardKeyword* nearestKeyword(std::string_view name, std::uint16_t place);

/// What a section is called in a message, such as "a [Model]".
std::string_view sectionName(std::uint16_t kind);

/// A version as a number that can be compared, 42 for "4.2"; 0 for what is no version.
int versionNumber(std::string_view text);

/// The words of a list that are near to a misspelled one; the nearest, or empty.
std::string_view nearestWord(std::string_view word, std::span<const std::string_view> words);

/// Edits that turn one text into the other, exchanged neighbours counting once; stops at a limit.
std::size_t editDistance(std::string_view a, std::string_view b, std::size_t limit);

/// How many edits of a word still leave it known.
std::size_t editLimit(std::size_t length);

}  // namespace ibis::checks
