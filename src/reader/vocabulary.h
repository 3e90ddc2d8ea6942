#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "ibis/ibis_string.h"
#include "ibis/model_type.h"

namespace ibis {

/// Ids of the bracketed keywords, as records have them.
namespace keyword {
inline constexpr std::int32_t dataLine = 0;
inline constexpr std::int32_t none = 1;
#define IBIS_KEYWORD(id, identifier, name, flags, inComponent) \
  inline constexpr std::int32_t identifier = id;
#include "reader/keywords.def"
#undef IBIS_KEYWORD
inline constexpr std::int32_t rcSeries = 94;  ///< [Rc Series], which the table of a load lacks.
}  // namespace keyword

/// Ids of the sub-parameters; `none` stands for a word that is not a sub-parameter.
namespace subparameter {
#define IBIS_SUB_PARAMETER(id, identifier, name) inline constexpr std::int32_t identifier = id;
#include "reader/sub_parameters.def"
#undef IBIS_SUB_PARAMETER
inline constexpr std::int32_t firstReserved = 28;
inline constexpr std::int32_t lastReserved = 35;
inline constexpr std::int32_t none = 45;
}  // namespace subparameter

/// A version of the standard; `supported` is whether its files are read.
struct VersionRow {
  std::int32_t id;
  const char* text;
  bool supported;
};

/// What a keyword is inside a [Component]; see keywords.def.
enum class InComponent : std::uint8_t {
  own,
  ends,
  ofHeader,
  ofModel,
  ofSubmodel,
  ofPackage,
  ofCircuit,
  passed,
};

/// A bracketed keyword without its brackets.
struct KeywordRow {
  std::int32_t id;
  std::string_view name;
  std::int32_t flags;
  InComponent inComponent;
};

/// A bracketed keyword that came after version 4.2; see later_keywords.def.
struct LaterKeywordRow {
  std::string_view name;
  std::string_view last;
};

/// A word that may begin a line of a model or a waveform.
struct SubParameterRow {
  std::int32_t id;
  std::string_view name;
};

/// A model type by the word of the standard.
struct ModelTypeRow {
  ModelType id;
  const char* name;
  bool supported;
};

std::span<const VersionRow> versionTable();            ///< Oldest first, "Unknown" last.
std::span<const LaterKeywordRow> laterKeywordTable();  ///< Oldest first.
std::span<const KeywordRow> keywordTable();            ///< In the order of look-up.
std::span<const SubParameterRow> subParameterTable();  ///< In the order of look-up.
std::span<const ModelTypeRow> modelTypeTable();        ///< In the order of look-up.

/// The row of a keyword's id, or null.
const KeywordRow* findKeyword(std::int32_t id);

/// The keyword's name without brackets, empty for an id that no row has.
IBISString keywordName(std::int32_t id);

/// The id of a keyword's name in any case, or `keyword::none`.
std::int32_t keywordId(std::string_view name);

/// The id of a keyword of series elements that a load passes over, or `keyword::none`.
///
/// Its own words for them are slips that its outputs rely on: another [Rl Series] and a [C Series]
/// that no file can hold.
std::int32_t seriesKeywordId(std::string_view name);

/// The row of a later keyword's name in any case, or null.
const LaterKeywordRow* findLaterKeyword(std::string_view name);

/// Whether a keyword ends a section, since it begins one of its own or ends the file.
bool endsSection(std::int32_t id);

/// The text of a version's id, "invalid" for an id that no row has.
IBISString versionText(std::int32_t id);

/// The row of a version's text, compared exactly, or null.
const VersionRow* findVersion(std::string_view text);

/// The id of a sub-parameter's word, compared exactly, or `subparameter::none`.
std::int32_t subParameterId(std::string_view word);

/// The type that a word names, `unknown` for a word that names none.
///
/// The "sink" words are other names of the "drain" types. `supported` is set from the row found
/// and stays as it was if there is none.
ModelType modelTypeFromWord(std::string_view word, bool& supported);

/// The row of a model type; every type has one.
const ModelTypeRow& modelTypeRow(ModelType type);

}  // namespace ibis
