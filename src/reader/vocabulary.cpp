#include "reader/vocabulary.h"

#include <algorithm>
#include <array>

namespace ibis {
namespace {

// id, text in the file, whether such files are read
constexpr VersionRow versions[] = {
    {1, "1.0", true},   {2, "1.1", true},      {3, "2.0", true},   {4, "2.1", true},
    {5, "3.0", true},   {6, "3.1", true},      {7, "3.2", true},   {8, "4.0", true},
    {9, "4.1", true},   {10, "4.2", true},     {11, "5.0", false}, {12, "5.1", false},
    {13, "6.0", false}, {14, "6.1", false},    {15, "7.0", false}, {16, "7.1", false},
    {17, "7.2", false}, {0, "Unknown", false},
};

constexpr KeywordRow keywords[] = {
#define IBIS_KEYWORD(id, identifier, name, flags, inComponent) \
  {id, name, flags, InComponent::inComponent},
#include "reader/keywords.def"
#undef IBIS_KEYWORD
};

constexpr LaterKeywordRow laterKeywords[] = {
#define IBIS_LATER_KEYWORD(name, last) {name, last},
#include "reader/later_keywords.def"
#undef IBIS_LATER_KEYWORD
};

// name in the file, id
struct SeriesKeywordRow {
  std::string_view name;
  std::int32_t id;
};

constexpr SeriesKeywordRow seriesKeywords[] = {
    {"Rl Series", keyword::r1Series},
    {"C Series", keyword::cSeries},
    {"Rc Series", keyword::rcSeries},
};

constexpr std::size_t keywordIds = 1 + [] {
  std::int32_t largest = 0;
  for (const KeywordRow& row : keywords) largest = std::max(largest, row.id);
  return static_cast<std::size_t>(largest);
}();
static_assert(keywordIds == keyword::rcSeries, "its number follows the table's");
static_assert(keyword::rcSeries < 256, "scanned records keep an id in eight bits");

// Rows by id; null for an id that no row has.
constexpr auto keywordsById = [] {
  std::array<const KeywordRow*, keywordIds> byId{};
  for (const KeywordRow& row : keywords) byId[static_cast<std::size_t>(row.id)] = &row;
  return byId;
}();

constexpr SubParameterRow subParameters[] = {
#define IBIS_SUB_PARAMETER(id, identifier, name) {id, name},
#include "reader/sub_parameters.def"
#undef IBIS_SUB_PARAMETER
};

// type, word in the file, whether the simulator has a device for it
constexpr ModelTypeRow modelTypes[] = {
    {ModelType::input, "Input", true},
    {ModelType::output, "Output", true},
    {ModelType::inputOutput, "I/O", true},
    {ModelType::threeState, "3-state", true},
    {ModelType::openSource, "Open_source", true},
    {ModelType::inputOutputOpenSource, "I/O_open_source", true},
    {ModelType::openDrain, "Open_drain", true},
    {ModelType::inputOutputOpenDrain, "I/O_open_drain", true},
    {ModelType::terminator, "Terminator", true},
    {ModelType::inputEcl, "Input_ECL", false},
    {ModelType::outputEcl, "Output_ECL", false},
    {ModelType::inputOutputEcl, "I/O_ECL", false},
    {ModelType::threeStateEcl, "3-state_ECL", false},
    {ModelType::series, "Series", false},
    {ModelType::seriesSwitch, "Series_switch", false},
    {ModelType::inputDiff, "Input_diff", false},
    {ModelType::outputDiff, "Output_diff", false},
    {ModelType::inputOutputDiff, "I/O_diff", false},
    {ModelType::threeStateDiff, "3-state_diff", false},
    {ModelType::gnd, "GND", true},
    {ModelType::power, "POWER", true},
    {ModelType::nc, "NC", true},
    {ModelType::unknown, "unknown", false},
};

constexpr std::size_t modelTypeCount = std::size(modelTypes);

constexpr auto modelTypesById = [] {
  std::array<ModelTypeRow, modelTypeCount> byId{};
  for (const ModelTypeRow& row : modelTypes) byId[static_cast<std::size_t>(row.id)] = row;
  return byId;
}();

std::string_view standardWord(std::string_view word) {
  if (word == "Open_sink") return "Open_drain";
  if (word == "I/O_open_sink") return "I/O_open_drain";
  return word;
}

}  // namespace

std::span<const VersionRow> versionTable() { return versions; }
std::span<const KeywordRow> keywordTable() { return keywords; }
std::span<const LaterKeywordRow> laterKeywordTable() { return laterKeywords; }
std::span<const SubParameterRow> subParameterTable() { return subParameters; }
std::span<const ModelTypeRow> modelTypeTable() { return modelTypes; }

const KeywordRow* findKeyword(std::int32_t id) {
  const auto index = static_cast<std::size_t>(id);
  return index < keywordsById.size() ? keywordsById[index] : nullptr;
}

IBISString keywordName(std::int32_t id) {
  if (const KeywordRow* row = findKeyword(id)) return IBISString(row->name);
  const auto* row = std::ranges::find(seriesKeywords, id, &SeriesKeywordRow::id);
  return row == std::end(seriesKeywords) ? IBISString() : IBISString(row->name);
}

std::int32_t keywordId(std::string_view name) {
  for (const KeywordRow& row : keywords) {
    if (equalIgnoringCase(row.name, name)) return row.id;
  }
  return keyword::none;
}

std::int32_t seriesKeywordId(std::string_view name) {
  for (const SeriesKeywordRow& row : seriesKeywords) {
    if (equalIgnoringCase(row.name, name)) return row.id;
  }
  return keyword::none;
}

const LaterKeywordRow* findLaterKeyword(std::string_view name) {
  for (const LaterKeywordRow& row : laterKeywords) {
    if (equalIgnoringCase(row.name, name)) return &row;
  }
  return nullptr;
}

bool endsSection(std::int32_t id) {
  const KeywordRow* row = findKeyword(id);
  return row != nullptr && row->inComponent == InComponent::ends;
}

IBISString versionText(std::int32_t id) {
  const auto* row = std::ranges::find(versions, id, &VersionRow::id);
  return row == std::end(versions) ? "invalid" : row->text;
}

const VersionRow* findVersion(std::string_view text) {
  for (const VersionRow& row : versions) {
    if (text == row.text) return &row;
  }
  return nullptr;
}

std::int32_t subParameterId(std::string_view word) {
  for (const SubParameterRow& row : subParameters) {
    if (word == row.name) return row.id;
  }
  return subparameter::none;
}

ModelType modelTypeFromWord(std::string_view word, bool& supported) {
  for (const ModelTypeRow& row : modelTypes) {
    if (standardWord(word) != row.name) continue;
    supported = row.supported;
    return row.id;
  }
  return ModelType::unknown;
}

const ModelTypeRow& modelTypeRow(ModelType type) {
  return modelTypesById[static_cast<std::size_t>(type)];
}

}  // namespace ibis
