#include <algorithm>
#include <cmath>
#include <functional>

#include "checks/number_word.h"
#include "checks/view.h"
#include "ibis/ibis_string.h"
#include "model/numbers/numbers.h"
#include "reader/vocabulary.h"

namespace ibis::checks {
namespace {

constexpr std::string_view cComps[] = {"C_comp", "C_comp_pullup", "C_comp_pulldown",
                                       "C_comp_power_clamp", "C_comp_gnd_clamp"};
constexpr std::string_view singleWords[] = {"Vinl", "Vinh", "Vmeas", "Cref", "Rref", "Vref"};
constexpr std::string_view tripleWords[] = {"Rref_diff", "Cref_diff"};
constexpr std::string_view textWords[] = {"Model_type", "Polarity", "Enable"};
constexpr std::string_view packageWords[] = {"R_pkg", "L_pkg", "C_pkg"};
constexpr std::string_view rampWords[] = {"dV/dt_r", "dV/dt_f", "R_load"};
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

template <class Words>
bool contains(const Words& words, std::string_view word) {
  return std::ranges::find(words, word) != std::end(words);
}

template <class Words>
std::string_view equalButForCase(const Words& words, std::string_view word) {
  for (const std::string_view each : words) {
    if (equalIgnoringCase(each, word)) return each;
  }
  return {};
}

bool startsAsValue(std::string_view word) {
  return word.find_first_of("+-.0123456789") == 0 || equalIgnoringCase(word, "NA");
}

class ValueReader {
 public:
  ValueReader(View& view, Findings& findings) : view_(view), findings_(findings) {}

  void read() {
    const Syntax& syntax = view_.syntax;
    for (const Section& part : syntax.sections()) {
      section_ = static_cast<std::uint32_t>(&part - syntax.sections().data());
      if (part.kind == section::header) readHeader(part);
      if (part.kind == section::component) readComponent(part);
      if (part.kind == section::selector) readSelector(part);
      if (part.kind == section::model) readModel(part);
    }
    indexNames();
  }

 private:
  using Words = std::span<const Word>;

  bool isCounted() const { return !view_.syntax.sections()[section_].isAfterEnd; }

  // A number of a word; faults are told with what the number is called.
  double number(const SourceLine& line, const Word& word, std::uint32_t block,
                const std::function<std::string()>& label) {
    const NumberWord read = readNumberWord(word.text);
    if (read.fault > NumberFault::notAvailable) {
      tellFault(read, view_.spotOf(line, word, block), word.text, label(), {});
    }
    return read.value;
  }

  void tellFault(const NumberWord& read, const Spot& spot, std::string_view word,
                 const std::string& label, const std::string& around) {
    if (!isCounted()) return;
    const std::string text(word);
    const std::string tail(read.tail);
    const std::string value = readValue(read);
    switch (read.fault) {
      case NumberFault::decimalComma: {
        std::string expected = text;
        expected[text.size() - tail.size()] = '.';
        findings_.addOnce(Rule::numericDecimalComma, spot, {label, text, value, expected});
        return;
      }
      case NumberFault::suffixCase: {
        std::string expected = text;
        char& letter = expected[text.size() - tail.size()];
        letter = static_cast<char>(letter - 'A' + 'a');
        findings_.addOnce(Rule::numericSuffixCase, spot,
                          {label, text, value, tail.substr(0, 1), "no scale letter", expected});
        return;
      }
      case NumberFault::notANumber:
        findings_.addOnce(Rule::numericNotANumber, spot,
                          {label, text, shortNumber(parseNumber(word, 0.0), 6)});
        return;
      default: {
        Finding* told =
            findings_.addOnce(Rule::numericUnknownSuffix, spot, {label, text, value, tail, around});
        const bool hasDigit = read.fault == NumberFault::digitInSuffix;
        if (told != nullptr && hasDigit) told->diagnostic.severity = Severity::error;
        return;
      }
    }
  }

  // A unit behind the last value shifts nothing.
  void tellDetached(const SourceLine& line, std::size_t index, Words words, std::uint32_t block,
                    const std::string& label, std::span<const std::string_view> columns) {
    if (!isCounted()) return;
    const Word& word = words[index];
    const bool isLast = index >= columns.size();
    const auto begin = static_cast<std::size_t>(words.front().column) - 1;
    const std::size_t end =
        static_cast<std::size_t>(words.back().column) - 1 + words.back().text.size();
    Finding* told = findings_.addOnce(
        Rule::numericDetachedUnit, view_.spotOf(line, word, block),
        {label, std::string(line.whole.substr(begin, end - begin)),
         isLast ? std::string() : "; it is read as " + readingOf(words, columns)});
    if (told != nullptr && isLast) told->diagnostic.severity = Severity::note;
  }

  // What a reader that counts words takes for each column.
  static std::string readingOf(Words words, std::span<const std::string_view> columns) {
    std::vector<std::string> parts;
    for (std::size_t i = 0; i < std::min(words.size(), columns.size()); ++i) {
      const double value = readNumberWord(words[i].text).value;
      parts.push_back(std::string(columns[i]) + " " +
                      (std::isnan(value) ? "no number" : shortNumber(value, 6)));
    }
    return joined(parts);
  }

  // typ, min and max from a line; units that stand by themselves are passed over.
  Triple triple(const SourceLine& line, Words words, std::uint32_t block, const std::string& label,
                std::string_view absentMeans) {
    Triple triple{.given = true, .spot = view_.spotOf(line, block)};
    std::size_t count = 0;
    bool hasDetached = false;
    const auto capital = milliInCapitals(words);
    for (const Word& word : words) {
      if (count > 0 && isUnitWord(word.text)) {
        tellDetached(line, static_cast<std::size_t>(&word - words.data()), words, block, label,
                     cornerNames);
        hasDetached = true;
        continue;
      }
      if (count == corners) break;
      if (count == 0) triple.spot = view_.spotOf(line, word, block);
      if (&word == capital) {
        tellCapital(line, word, block, label);
      }
      triple.spots[count] = view_.spotOf(line, word, block);
      triple.at[count++] = number(line, word, block, [&] { return label; });
    }
    if (count == 0) {
      tellMissingValue(line, block, label);
      triple.given = false;
    } else if (count < corners && !hasDetached && isCounted()) {
      const bool hasMin = count == 2;
      findings_
          .add(Rule::numericMissingColumn, view_.spotOf(line, block),
               {label, std::to_string(count), "3",
                std::string(hasMin ? "max" : "min and max").append(std::string(absentMeans))})
          .diagnostic.severity = Severity::warning;
    }
    return triple;
  }

  void tellMissingValue(const SourceLine& line, std::uint32_t block, const std::string& label) {
    if (isCounted()) findings_.add(Rule::numericMissingValue, view_.spotOf(line, block), {label});
  }

  // A word with a capital M among words with the small letter, or null.
  const Word* milliInCapitals(Words words) const {
    const Word* capital = nullptr;
    bool hasSmall = false;
    for (const Word& word : words) {
      const NumberWord read = readNumberWord(word.text);
      if (read.tail.starts_with('m')) hasSmall = true;
      if (maySayMilli(read.tail) && capital == nullptr) capital = &word;
    }
    return hasSmall ? capital : nullptr;
  }

  void tellCapital(const SourceLine& line, const Word& word, std::uint32_t block,
                   const std::string& label) {
    if (!isCounted()) return;
    const NumberWord read = readNumberWord(word.text);
    std::string expected(word.text);
    expected[word.text.size() - read.tail.size()] = 'm';
    findings_.addOnce(Rule::numericSuffixCase, view_.spotOf(line, word, block),
                      {label, std::string(word.text), readValue(read), "M", "mega", expected});
  }

  Single single(const SourceLine& line, Words words, std::uint32_t block,
                const std::string& label) {
    if (words.empty()) {
      tellMissingValue(line, block, label);
      return {};
    }
    Single value{.given = true, .word = words[0].text, .spot = view_.spotOf(line, words[0], block)};
    value.value = number(line, words[0], block, [&] { return label; });
    if (words.size() > 1 && isUnitWord(words[1].text)) {
      tellDetached(line, 1, words, block, label, std::span(cornerNames).first(1));
    }
    return value;
  }

  void checkTyp(const Triple& triple, const std::string& label, Rule rule = Rule::numericTypNa) {
    const bool isNA = triple.given && std::isnan(triple.at[typ]);
    if (!isNA || !isCounted() || findings_.hasWrongNumber(triple.spot.block)) return;
    findings_.add(rule, triple.spot, {label});
  }

  // The header.

  void readHeader(const Section& part) {
    for (const Block& block : view_.syntax.blocksOf(part)) {
      if (block.keyword == nullptr || block.keyword->name != "IBIS Ver") continue;
      view_.version = versionNumber(block.argument.substr(0, 3));
      return;
    }
  }

  // Components.

  void readComponent(const Section& part) {
    ComponentView& component = view_.components.emplace_back();
    component.section = section_;
    component.name = part.name;
    component.isAfterEnd = part.isAfterEnd;
    component.spot = view_.argumentSpot(view_.block(part.firstBlock));
    for (const Block& block : view_.syntax.blocksOf(part)) {
      if (block.keyword == nullptr) continue;
      const std::string_view name = block.keyword->name;
      if (name == "Package") readPackage(component, block);
      if (name == "Pin") readPins(component, block);
      if (name == "Diff Pin") readDiffPins(component, block);
      if (name == "Package Model") {
        component.packageModel = block.argument;
        component.packageModelSpot = view_.argumentSpot(block);
      }
    }
  }

  void readPackage(ComponentView& component, const Block& block) {
    const std::uint32_t index = component.package = view_.indexOf(block);
    for (const SourceLine& line : view_.syntax.linesOf(block)) {
      const Words words = view_.syntax.words(line);
      const std::string_view name = knownWord(line, words, packageWords, index);
      if (name.empty()) continue;
      const Triple value =
          triple(line, words.subspan(1), index, std::string(name), " would be taken from typ");
      checkTyp(value, std::string(name), Rule::packageTypNa);
      component.packageValues.insert_or_assign(name, value);
    }
  }

  // The standard's word that a line begins with; one in another case is told and taken.
  template <class Known>
  std::string_view knownWord(const SourceLine& line, Words words, const Known& known,
                             std::uint32_t block) {
    if (words.empty()) return {};
    if (contains(known, words[0].text)) return words[0].text;
    const std::string_view meant = equalButForCase(known, words[0].text);
    if (!meant.empty() && isCounted()) {
      findings_.add(Rule::syntaxWordCase, view_.spotOf(line, words[0], block),
                    {std::string(words[0].text), std::string(meant)});
    }
    return meant;
  }

  void readPins(ComponentView& component, const Block& block) {
    const std::uint32_t index = view_.indexOf(block);
    readColumns(component, view_.syntax.words(view_.syntax.headOf(block)));
    for (const SourceLine& line : view_.syntax.linesOf(block)) {
      const Words words = view_.syntax.words(line);
      if (words.empty()) continue;
      PinView pin{.name = words[0].text, .spot = view_.spotOf(line, words[0], index)};
      pin.line = static_cast<std::uint32_t>(&line - view_.syntax.lines().data());
      if (words.size() > component.signalColumn) pin.signal = words[component.signalColumn].text;
      if (words.size() > component.modelColumn) {
        const Word& model = words[component.modelColumn];
        pin.model = model.text;
        pin.modelSpot = view_.spotOf(line, model, index);
      }
      component.pinByName.add(pin.name, static_cast<std::uint32_t>(component.pins.size()));
      component.pins.push_back(pin);
    }
  }

  // A load goes by the names of the columns, in whatever order they stand.
  static void readColumns(ComponentView& component, Words words) {
    const auto columnOf = [&](std::string_view name) {
      const auto found = std::ranges::find_if(
          words, [&](const Word& word) { return equalIgnoringCase(word.text, name); });
      return static_cast<std::size_t>(found - words.begin()) + 1;
    };
    const std::size_t signal = columnOf("signal_name");
    const std::size_t model = columnOf("model_name");
    component.hasKnownColumns = signal <= words.size() && model <= words.size();
    if (!component.hasKnownColumns) return;
    component.signalColumn = signal;
    component.modelColumn = model;
  }

  void readDiffPins(ComponentView& component, const Block& block) {
    for (const SourceLine& line : view_.syntax.linesOf(block)) {
      const Words words = view_.syntax.words(line);
      if (words.size() < 2) continue;
      component.diffPins.push_back(
          {.pin = words[0].text,
           .inverted = words[1].text,
           .line = static_cast<std::uint32_t>(&line - view_.syntax.lines().data())});
    }
  }

  // Selectors.

  void readSelector(const Section& part) {
    SelectorView& selector = view_.selectors.emplace_back();
    const Block& head = view_.block(part.firstBlock);
    selector.section = section_;
    selector.name = part.name;
    selector.isAfterEnd = part.isAfterEnd;
    selector.spot = view_.argumentSpot(head);
    for (const SourceLine& line : view_.syntax.linesOf(head)) {
      const Words words = view_.syntax.words(line);
      if (words.empty()) continue;
      std::string_view rest;
      if (words.size() > 1) {
        const std::size_t begin = static_cast<std::size_t>(words[1].column) - 1;
        const std::size_t end =
            static_cast<std::size_t>(words.back().column) - 1 + words.back().text.size();
        rest = line.whole.substr(begin, end - begin);
      }
      selector.rows.push_back({.model = words[0].text,
                               .description = rest,
                               .spot = view_.spotOf(line, words[0], part.firstBlock)});
    }
  }

  // Models.

  void readModel(const Section& part) {
    ModelView& model = view_.models.emplace_back();
    model.section = section_;
    model.name = part.name;
    model.isAfterEnd = part.isAfterEnd;
    model.spot = view_.argumentSpot(view_.block(part.firstBlock));
    for (const Block& block : view_.syntax.blocksOf(part)) {
      if (block.keyword != nullptr) readModelBlock(model, block);
    }
  }

  void readModelBlock(ModelView& model, const Block& block) {
    const std::string_view name = block.keyword->name;
    for (std::size_t i = 0; i < tables; ++i) {
      if (name == tableNames[i]) return readTable(model, i, block);
    }
    if (contains(tripleKeywords, name)) return readKeywordTriple(model, block);
    if (name == "Model") readParameters(model, block);
    if (name == "Model Spec") readSpec(model, block);
    if (name == "Ramp") readRamp(model, block);
    if (name == "Rising Waveform" || name == "Falling Waveform") readWaveform(model, block);
    if (name == "Series Current") readRows(block);
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

  void tellUnknownParameter(const SourceLine& line, const Word& word, std::uint32_t block,
                            std::span<const std::string_view> known) {
    if (startsAsValue(word.text)) {
      findings_.addOnce(Rule::syntaxStrayText, view_.spotOf(line, block),
                        {std::string(line.text.substr(0, line.text.find_last_not_of(" \t\r") + 1)),
                         std::string(view_.block(block).keyword->name), "rows"});
      return;
    }
    const std::string_view near = nearestWord(word.text, known);
    Finding& told = findings_.add(Rule::modelUnknownParameter, view_.spotOf(line, word, block),
                                  {std::string(word.text), didYouMean(near)});
    if (!near.empty()) told.diagnostic.severity = Severity::error;
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

  // [Ramp]

  void readRamp(ModelView& model, const Block& block) {
    model.ramp = view_.indexOf(block);
    for (const SourceLine& line : view_.syntax.linesOf(block)) {
      const Words words = view_.syntax.words(line);
      const std::string_view name = knownWord(line, words, rampWords, model.ramp);
      if (name == "R_load") {
        model.rLoad = single(line, words.subspan(1), model.ramp, "R_load");
      } else if (!name.empty()) {
        readEdge(model.edges[name == "dV/dt_r" ? 0 : 1], name, line, words.subspan(1), model.ramp);
      } else if (!words.empty() && isCounted()) {
        tellUnknownParameter(line, words[0], model.ramp, rampWords);
      }
    }
  }

  void readEdge(RampEdge& edge, std::string_view name, const SourceLine& line, Words values,
                std::uint32_t block) {
    edge.given = true;
    const std::string label(name);
    if (values.empty()) return tellMissingValue(line, block, label);
    for (std::size_t c = 0; c < corners && c < values.size(); ++c) {
      edge.words[c] = values[c].text;
      edge.spots[c] = view_.spotOf(line, values[c], block);
      readRatio(edge, c, label, line, values[c], block);
    }
    if (values.size() < corners && isCounted()) {
      findings_
          .add(Rule::numericMissingColumn, view_.spotOf(line, block),
               {label, std::to_string(values.size()), "3",
                std::string(values.size() == 2 ? "max" : "min and max") +
                    " would be taken from typ"})
          .diagnostic.severity = Severity::warning;
    }
  }

  void readRatio(RampEdge& edge, std::size_t c, const std::string& label, const SourceLine& line,
                 const Word& word, std::uint32_t block) {
    const std::size_t slash = word.text.find('/');
    const bool isNA = equalIgnoringCase(word.text, "NA");
    if (isNA && c != typ) return;
    const std::string_view second = slash == word.text.npos ? "" : word.text.substr(slash + 1);
    const NumberWord dv = readNumberWord(word.text.substr(0, slash));
    const NumberWord dt = readNumberWord(second);
    if (isNA || std::isnan(dv.value) || std::isnan(dt.value)) {
      if (isCounted()) {
        findings_.addOnce(Rule::modelRampForm, view_.spotOf(line, word, block),
                          {label, std::string(word.text)});
      }
      return;
    }
    for (const NumberWord& part : {dv, dt}) {
      if (part.fault > NumberFault::notAvailable) {
        tellFault(part, view_.spotOf(line, word, block), &part == &dv ? word.text : second, label,
                  {});
      }
    }
    edge.dv[c] = dv.value;
    edge.dt[c] = dt.value;
  }

  // Tables and waveforms.

  void readTable(ModelView& model, std::size_t place, const Block& block) {
    Rows rows = readRows(block);
    if (!model.table[place].given()) model.table[place] = std::move(rows);
  }

  Rows readRows(const Block& block) {
    Rows rows{.block = view_.indexOf(block)};
    reserve(rows, block.lineCount);
    for (const SourceLine& line : view_.syntax.linesOf(block)) readRow(rows, line);
    tellMilli(rows);
    rows.isSound = rows.isSound && !findings_.hasWrongNumber(rows.block);
    return rows;
  }

  static void reserve(Rows& rows, std::size_t count) {
    rows.x.reserve(count);
    rows.lines.reserve(count);
    for (auto& column : rows.y) column.reserve(count);
  }

  static void skipBlanks(std::string_view& text) {
    while (!text.empty() && (text[0] == ' ' || text[0] == '\t' || text[0] == '\r')) {
      text.remove_prefix(1);
    }
  }

  void readRow(Rows& rows, const SourceLine& line) {
    double values[1 + corners] = {notGiven, notGiven, notGiven, notGiven};
    readCells(rows, line, values);
    rows.lines.push_back(static_cast<std::uint32_t>(&line - view_.syntax.lines().data()));
    const bool isFirst = rows.x.empty();
    rows.rises = rows.rises && (isFirst ? !std::isnan(values[0]) : values[0] > rows.x.back());
    rows.falls = rows.falls && (isFirst ? !std::isnan(values[0]) : values[0] < rows.x.back());
    rows.x.push_back(values[0]);
    for (std::size_t c = 0; c < corners; ++c) {
      rows.y[c].push_back(values[1 + c]);
      rows.isWhole[c] = rows.isWhole[c] && std::isfinite(values[1 + c]);
    }
  }

  // Nearly every word is a plain number, which has nothing to tell of.
  void readCells(Rows& rows, const SourceLine& line, double (&values)[1 + corners]) {
    bool hasDetached = false;
    std::size_t count = 0;
    std::size_t index = 0;
    std::string_view rest = line.text;
    for (skipBlanks(rest); count < 1 + corners && !rest.empty(); skipBlanks(rest)) {
      std::size_t length = plainNumber(rest, values[count]);
      if (length > 0) {
        rest.remove_prefix(length);
        ++index;
        ++count;
        continue;
      }
      const NumberWord read = takeNumberWord(rest, length);
      const auto column = static_cast<std::int32_t>(rest.data() - line.whole.data()) + 1;
      const Word word{.text = rest.substr(0, length), .column = column};
      rest.remove_prefix(length);
      ++index;
      if (read.fault > NumberFault::notAvailable) {
        if (count > 0 && isUnitWord(word.text)) {
          tellDetached(line, index - 1, splitRow(line), rows.block,
                       view_.nameOf(view_.block(rows.block)), columnNames(rows));
          rows.isSound = false;
          hasDetached = true;
          continue;
        }
        tellCell(rows, read, line, word, count);
      }
      if (!read.tail.empty()) noteMilli(line, word, read.tail, count);
      values[count++] = read.value;
    }
    if (count < 1 + corners && !hasDetached) tellShortRow(rows, line, count);
  }

  void tellCell(Rows& rows, const NumberWord& read, const SourceLine& line, const Word& word,
                std::size_t column) {
    rows.isSound = false;
    tellFault(read, view_.spotOf(line, word, rows.block), word.text, cellLabel(rows, column),
              around(rows, line, column));
  }

  std::span<const std::string_view> columnNames(const Rows& rows) const {
    static constexpr std::string_view table[] = {"voltage", "I(typ)", "I(min)", "I(max)"};
    static constexpr std::string_view waveform[] = {"time", "V(typ)", "V(min)", "V(max)"};
    const bool isTable = view_.block(rows.block).keyword->content == Content::table;
    return isTable ? table : waveform;
  }

  std::string cellLabel(const Rows& rows, std::size_t column) const {
    return view_.nameOf(view_.block(rows.block)) + ", column " + std::to_string(column + 1) + " (" +
           std::string(columnNames(rows)[column]) + ")";
  }

  // A scale letter M counts as a slip only beside the small one, so it is told at the end.
  void noteMilli(const SourceLine& line, const Word& word, std::string_view tail,
                 std::size_t column) {
    if (tail[0] == 'm') hasMilli_ = true;
    if (tail[0] != 'M' || capital_.line != nullptr || !maySayMilli(tail)) return;
    capital_ = {.line = &line, .word = word, .column = column};
  }

  void tellMilli(Rows& rows) {
    if (hasMilli_ && capital_.line != nullptr) {
      tellCapital(*capital_.line, capital_.word, rows.block, cellLabel(rows, capital_.column));
      rows.isSound = false;
    }
    hasMilli_ = false;
    capital_ = {};
  }

  // What stands in the rows above and below.
  std::string around(const Rows& rows, const SourceLine& line, std::size_t column) const {
    if (rows.x.empty()) return {};
    const double above = column == 0 ? rows.x.back() : rows.y[column - 1].back();
    const SourceLine* const next = &line + 1;
    if (next == view_.syntax.lines().data() + view_.syntax.lines().size()) return {};
    const std::vector<Word> words = splitRow(*next);
    if (column >= words.size()) return {};
    const double below = readNumberWord(words[column].text).value;
    if (std::isnan(above) || std::isnan(below)) return {};
    return "; the rows around hold " + shortNumber(above, 6) + " and " + shortNumber(below, 6);
  }

  void tellShortRow(Rows& rows, const SourceLine& line, std::size_t count) {
    if (!isCounted()) return;
    const Block& block = view_.block(rows.block);
    const bool isTable = block.keyword->content == Content::table;
    const std::string_view columns[] = {"", "typ, min and max", "min and max", "max"};
    std::string text(columns[count]);
    text.append(isTable && count > 1 ? " would be taken from typ" : " would be read as 0");
    Finding* told =
        findings_.addOnce(Rule::numericMissingColumn, view_.spotOf(line, rows.block),
                          {view_.nameOf(block), "row has " + std::to_string(count), "4", text});
    if (told != nullptr && count > 1) told->diagnostic.severity = Severity::warning;
  }

  void readWaveform(ModelView& model, const Block& block) {
    Waveform& waveform = model.waveforms.emplace_back();
    waveform.rises = block.keyword->name == "Rising Waveform";
    waveform.rows.block = view_.indexOf(block);
    reserve(waveform.rows, block.lineCount);
    for (const SourceLine& line : view_.syntax.linesOf(block)) {
      const Words words = view_.syntax.words(line);
      if (waveform.rows.x.empty() && !words.empty() && !startsAsValue(words[0].text)) {
        readFixture(waveform, line, words);
      } else {
        readRow(waveform.rows, line);
      }
    }
    tellMilli(waveform.rows);
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
                    {std::string(head.keyword->name), std::string(model().name),
                     std::string(words[0].text), didYouMean(nearestWord(words[0].text, names))});
    }
  }

  const ModelView& model() const { return view_.models.back(); }

  void indexNames() {
    for (std::uint32_t i = 0; i < view_.models.size(); ++i) {
      if (!view_.models[i].isAfterEnd) view_.modelByName.add(view_.models[i].name, i);
    }
    for (std::uint32_t i = 0; i < view_.selectors.size(); ++i) {
      if (!view_.selectors[i].isAfterEnd) view_.selectorByName.add(view_.selectors[i].name, i);
    }
    markedSelectors_.assign(view_.selectors.size(), false);
    for (const ComponentView& component : view_.components) markPairs(component);
  }

  void markPairs(const ComponentView& component) {
    for (const DiffPinView& pair : component.diffPins) {
      for (const std::string_view name : {pair.pin, pair.inverted}) {
        const std::uint32_t* pin = component.pinByName.find(name);
        if (pin != nullptr) markPair(component.pins[*pin].model);
      }
    }
  }

  void markPair(std::string_view name) {
    markModel(name);
    const std::uint32_t* place = view_.selectorByName.find(name);
    if (place == nullptr || markedSelectors_[*place]) return;
    markedSelectors_[*place] = true;
    for (const SelectorRow& row : view_.selectors[*place].rows) markModel(row.model);
  }

  void markModel(std::string_view name) {
    if (const std::uint32_t* place = view_.modelByName.find(name)) {
      view_.models[*place].isInPair = true;
    }
  }

  struct Cell {
    const SourceLine* line = nullptr;
    Word word = {};
    std::size_t column = 0;
  };

  View& view_;
  Findings& findings_;
  std::uint32_t section_ = 0;
  Cell capital_;           // the first with a scale letter M that may say milli
  bool hasMilli_ = false;  // whether a small m stands in the same table
  std::vector<bool> markedSelectors_;
};

}  // namespace

void readValues(View& view, Findings& findings) { ValueReader(view, findings).read(); }

}  // namespace ibis::checks
