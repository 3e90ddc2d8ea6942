#include <algorithm>
#include <cmath>

#include "checks/row_reader.h"
#include "checks/section_readers.h"
#include "ibis/ibis_string.h"
#include "reader/vocabulary.h"

namespace ibis::checks {
namespace {

constexpr std::string_view singleWords[] = {"Vinl", "Vinh", "Vmeas", "Cref", "Rref", "Vref"};
constexpr std::string_view tripleWords[] = {"Rref_diff", "Cref_diff"};
constexpr std::string_view textWords[] = {"Model_type", "Polarity", "Enable"};
constexpr std::string_view tripleKeywords[] = {"Temperature Range",
                                               "Voltage Range",
                                               "Pullup Reference",
                                               "Pulldown Reference",
                                               "POWER Clamp Reference",
                                               "GND Clamp Reference",
                                               "Rgnd",
                                               "Rpower",
                                               "Rac",
                                               "Cac"};

// word, what of a waveform it sets
struct FixtureWord {
  std::string_view name;
  Single Waveform::*value;
};

constexpr FixtureWord fixtureWords[] = {
    {"R_fixture", &Waveform::rFixture},
    {"V_fixture", &Waveform::vFixture},
    {"V_fixture_min", &Waveform::vFixtureMin},
    {"V_fixture_max", &Waveform::vFixtureMax},
    {"C_fixture", &Waveform::cFixture},
    {"L_fixture", &Waveform::lFixture},
    {"R_dut", &Waveform::rDut},
    {"L_dut", &Waveform::lDut},
    {"C_dut", &Waveform::cDut},
};

class ModelReader : private ValueReader {
 public:
  ModelReader(View& view, Findings& findings, std::uint32_t section)
      : ValueReader(view, findings, section), rows_(view, findings, section) {}

  void read(const Section& part) {
    ModelView& model = view_.models.emplace_back();
    model.section = section_;
    model.name = part.name;
    model.isAfterEnd = part.isAfterEnd;
    model.spot = view_.argumentSpot(view_.block(part.firstBlock));
    for (const Block& block : view_.syntax.blocksOf(part)) {
      if (block.keyword != nullptr) readModelBlock(model, block);
    }
  }

 private:
  void readModelBlock(ModelView& model, const Block& block) {
    const std::string_view name = block.keyword->name;
    for (std::size_t i = 0; i < tables; ++i) {
      if (name == tableNames[i]) return readTable(model, i, block);
    }
    if (std::ranges::find(tripleKeywords, name) != std::end(tripleKeywords))
      return readKeywordTriple(model, block);
    if (name == "Model") readParameters(model, block);
    if (name == "Model Spec") readSpec(model, block);
    if (name == "Ramp") readRamp(view_, findings_, section_, block);
    if (name == "Rising Waveform" || name == "Falling Waveform") readWaveform(model, block);
    if (name == "Series Current") rows_.readRows(block);
    if (name == "External Model") model.hasExternalModel = true;
    if (name == "Driver Schedule") model.hasSchedule = true;
    if (name == "Add Submodel") readSubmodels(model, block);
    if (name == "Receiver Thresholds") model.hasThresholds = true;
    if (name == "C Comp Corner" || name == "C Comp Model") model.hasCCompCorner = true;
    if (name.find("Series") != name.npos) model.hasSeriesPart = true;
  }

  void readSubmodels(ModelView& model, const Block& block) {
    model.hasSubmodel = true;
    for (const SourceLine& line : view_.syntax.linesOf(block)) {
      const Words words = view_.syntax.words(line);
      if (words.size() > 1 && words[1].text != "Non-Driving") model.drivesSubmodel = true;
    }
  }

  void readKeywordTriple(ModelView& model, const Block& block) {
    const SourceLine& line = view_.syntax.headOf(block);
    const std::string label = "[" + std::string(block.keyword->name) + "]";
    const Triple value =
        triple(line, view_.syntax.words(line), view_.indexOf(block), label, " would be read as 0");
    checkTyp(value, label);
    model.triples.insert_or_assign(block.keyword->name, value);
  }

  void readParameters(ModelView& model, const Block& block) {
    const std::uint32_t index = view_.indexOf(block);
    for (const SourceLine& line : view_.syntax.linesOf(block)) {
      const Words words = view_.syntax.words(line);
      if (!words.empty()) readParameter(model, line, words, index);
    }
  }

  void readParameter(ModelView& model, const SourceLine& line, Words words, std::uint32_t block) {
    const Words values = words.subspan(1);
    if (std::string_view name = knownWord(line, words, cComps, block); !name.empty()) {
      noteDuplicate(model.triples.contains(name), name, model, line, block);
      const Triple value = triple(line, values, block, std::string(name), " would be read as 0");
      checkTyp(value, std::string(name));
      model.triples.insert_or_assign(name, value);
      return;
    }
    if (std::string_view name = knownWord(line, words, singleWords, block); !name.empty()) {
      noteDuplicate(model.singles.contains(name), name, model, line, block);
      model.singles.insert_or_assign(name, single(line, values, block, std::string(name)));
      return;
    }
    if (std::string_view name = knownWord(line, words, textWords, block); !name.empty()) {
      noteDuplicate(model.singles.contains(name), name, model, line, block);
      readText(model, name, line, values, block);
      return;
    }
    if (!knownWord(line, words, tripleWords, block).empty() || !isCounted()) return;
    std::vector<std::string_view> known(std::begin(cComps), std::end(cComps));
    known.insert(known.end(), std::begin(singleWords), std::end(singleWords));
    known.insert(known.end(), std::begin(textWords), std::end(textWords));
    tellUnknownParameter(line, words[0], block, known);
  }

  void noteDuplicate(bool isSecond, std::string_view name, const ModelView& model,
                     const SourceLine& line, std::uint32_t block) {
    if (!isSecond || !isCounted()) return;
    const Words words = view_.syntax.words(line);
    const auto first = model.singles.find(name);
    const auto firstTriple = model.triples.find(name);
    const bool isSingle = first != model.singles.end();
    const std::int32_t firstLine =
        isSingle ? first->second.spot.line : firstTriple->second.spot.line;
    const std::string old =
        isSingle ? std::string(first->second.word) : shortNumber(firstTriple->second.at[typ]);
    Finding& told =
        findings_.add(Rule::modelDuplicateParameter, view_.spotOf(line, words[0], block),
                      {std::string(name), std::string(model.name),
                       words.size() > 1 ? std::string(words[1].text) : std::string(), old});
    addNote(told, firstLine, "the first one is here");
  }

  void readText(ModelView& model, std::string_view name, const SourceLine& line, Words values,
                std::uint32_t block) {
    if (values.empty()) return tellMissingValue(line, block, std::string(name));
    const Single value{.given = true,
                       .value = notGiven,
                       .word = values[0].text,
                       .spot = view_.spotOf(line, values[0], block)};
    model.singles.insert_or_assign(name, value);
    if (name != "Model_type") return;
    bool isSupported = false;
    model.typeWord = value.word;
    model.typeSpot = value.spot;
    model.type = modelTypeFromWord(value.word, isSupported);
  }

  void readSpec(ModelView& model, const Block& block) {
    const std::uint32_t index = view_.indexOf(block);
    for (const SourceLine& line : view_.syntax.linesOf(block)) {
      const Words words = view_.syntax.words(line);
      if (words.empty()) continue;
      const std::string label = std::string(words[0].text) + " of [Model Spec]";
      const Triple value = triple(line, words.subspan(1), index, label, " would be read as 0");
      checkTyp(value, label);
      model.spec.insert_or_assign(words[0].text, value);
    }
  }

  void readTable(ModelView& model, std::size_t place, const Block& block) {
    Rows rows = rows_.readRows(block);
    if (!model.table[place].given()) model.table[place] = std::move(rows);
  }

  void readWaveform(ModelView& model, const Block& block) {
    Waveform& waveform = model.waveforms.emplace_back();
    waveform.rises = block.keyword->name == "Rising Waveform";
    waveform.rows.block = view_.indexOf(block);
    RowReader::reserve(waveform.rows, block.lineCount);
    for (const SourceLine& line : view_.syntax.linesOf(block)) {
      const Words words = view_.syntax.words(line);
      if (waveform.rows.x.empty() && !words.empty() && !startsAsValue(words[0].text)) {
        readFixture(waveform, line, words);
      } else {
        rows_.readRow(waveform.rows, line);
      }
    }
    rows_.tellMilli(waveform.rows);
  }

  void readFixture(Waveform& waveform, const SourceLine& line, Words words) {
    std::vector<std::string_view> names;
    for (const FixtureWord& row : fixtureWords) names.push_back(row.name);
    const std::uint32_t block = waveform.rows.block;
    const std::string_view name = knownWord(line, words, names, block);
    if (!name.empty()) {
      const auto* row = std::ranges::find(fixtureWords, name, &FixtureWord::name);
      waveform.*row->value = single(line, words.subspan(1), block, std::string(name));
    } else if (isCounted()) {
      const Block& head = view_.block(block);
      findings_.add(Rule::waveformUnknownParameter, view_.spotOf(line, words[0], block),
                    {std::string(head.keyword->name), std::string(view_.models.back().name),
                     std::string(words[0].text), didYouMean(nearestWord(words[0].text, names))});
    }
  }

  RowReader rows_;
};

}  // namespace

void readModel(View& view, Findings& findings, std::uint32_t section) {
  ModelReader(view, findings, section).read(view.syntax.sections()[section]);
}

}  // namespace ibis::checks
