#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "checks/findings.h"
#include "checks/syntax/syntax.h"
#include "ibis/model_type.h"
#include "reader/text/name_index.h"

namespace ibis::checks {

/// Names with the index of what they name.
using Places = NameMap<ExactCase, std::uint32_t>;

/// What a file does not give.
inline constexpr double notGiven = std::numeric_limits<double>::quiet_NaN();

/// Corners in the order of the columns.
inline constexpr std::size_t typ = 0, min = 1, max = 2, corners = 3;
inline constexpr std::string_view cornerNames[corners] = {"typ", "min", "max"};

/// A value of three corners with its place.
struct Triple {
  bool given = false;
  double at[corners] = {notGiven, notGiven, notGiven};
  Spot spot = {};            ///< Of the first value.
  Spot spots[corners] = {};  ///< Of each value.

  /// The corner's value, or typ where it has none.
  double corner(std::size_t c) const { return at[c] == at[c] ? at[c] : at[typ]; }
};

/// A single value with its place.
struct Single {
  bool given = false;
  double value = notGiven;
  std::string_view word = {};
  Spot spot = {};
};

/// The rows of an I-V table or a waveform; cells that are not given are not numbers.
struct Rows {
  std::uint32_t block = Spot::nowhere;
  std::vector<double> x = {};
  std::vector<double> y[corners] = {};
  std::vector<std::uint32_t> lines = {};       ///< Index of each row's line.
  bool isSound = true;                         ///< Whether each number could be read.
  bool rises = true;                           ///< Whether x is given and strictly rises.
  bool falls = true;                           ///< Whether x is given and strictly falls.
  bool isWhole[corners] = {true, true, true};  ///< Whether each cell of a column is given.

  bool given() const { return block != Spot::nowhere; }
  std::size_t size() const { return x.size(); }
  bool hasCorner(std::size_t c) const;
};

struct Waveform {
  bool rises = true;
  Single rFixture, vFixture, vFixtureMin, vFixtureMax, cFixture, lFixture, rDut, lDut, cDut;
  Rows rows;
};

/// dV/dt of one edge.
struct RampEdge {
  bool given = false;
  std::string_view words[corners] = {};
  double dv[corners] = {notGiven, notGiven, notGiven};
  double dt[corners] = {notGiven, notGiven, notGiven};
  Spot spots[corners] = {};
};

/// The tables of a model by index.
inline constexpr std::size_t pulldown = 0, pullup = 1, gndClamp = 2, powerClamp = 3, tables = 4;
inline constexpr std::string_view tableNames[tables] = {"Pulldown", "Pullup", "GND Clamp",
                                                        "POWER Clamp"};

/// A [Model] with what the rules ask for.
struct ModelView {
  std::uint32_t section = 0;
  std::string_view name;
  Spot spot;  ///< Of its name.
  std::string_view typeWord;
  Spot typeSpot;
  ModelType type = ModelType::unknown;
  bool isAfterEnd = false;
  std::map<std::string_view, Triple> triples;  ///< C_comp*, [Voltage Range] and so on.
  std::map<std::string_view, Single> singles;  ///< Vinl, Vmeas and so on.
  std::map<std::string_view, Triple> spec;     ///< Of [Model Spec].
  Rows table[tables];
  std::vector<Waveform> waveforms;
  std::uint32_t ramp = Spot::nowhere;
  RampEdge edges[2];  ///< Rising, falling.
  Single rLoad;
  bool hasExternalModel = false, hasSchedule = false, hasSubmodel = false, hasSeriesPart = false;
  bool drivesSubmodel = false;  ///< A submodel adds to it while it drives.
  bool hasThresholds = false;   ///< [Receiver Thresholds]
  bool hasCCompCorner = false;
  bool isInPair = false;  ///< A pin of [Diff Pin] has it.

  const Triple& triple(std::string_view name_) const;
  const Single& single(std::string_view name_) const;
  const Triple& specTriple(std::string_view name_) const;

  bool isDriver() const;
  bool isInput() const;
  bool isSeries() const;
  bool isEcl() const;
  bool isDiff() const;
  bool isOpenDrain() const;
  bool isOpenSource() const;
  bool isPushPull() const { return isDriver() && !isOpenDrain() && !isOpenSource(); }

  /// Whether the rules of currents hold for it: not for series elements, pairs and circuits.
  bool isElectrical() const;

  double pullupReference(std::size_t c) const;
  double pulldownReference(std::size_t c) const;
  double powerClampReference(std::size_t c) const;
  double gndClampReference(std::size_t c) const;
  double supply() const;  ///< Between the typ references.
};

struct PinView {
  std::string_view name = {}, signal = {}, model = {};
  Spot spot = {};       ///< Of the name.
  Spot modelSpot = {};  ///< Of the model's word.
  std::uint32_t line = 0;
};

struct DiffPinView {
  std::string_view pin, inverted;
  std::uint32_t line = 0;
};

struct ComponentView {
  std::uint32_t section = 0;
  std::string_view name;
  Spot spot;
  std::size_t signalColumn = 1, modelColumn = 2;  ///< Words of a row, as the header tells.
  bool hasKnownColumns = true;                    ///< Whether the header names both.
  std::vector<PinView> pins;
  Places pinByName;
  std::vector<DiffPinView> diffPins;
  std::uint32_t package = Spot::nowhere;  ///< Block of [Package].
  std::map<std::string_view, Triple> packageValues;
  std::string_view packageModel;
  Spot packageModelSpot;
  bool isAfterEnd = false;
};

struct SelectorRow {
  std::string_view model, description;
  Spot spot;
};

struct SelectorView {
  std::uint32_t section = 0;
  std::string_view name;
  Spot spot;
  std::vector<SelectorRow> rows;
  bool isAfterEnd = false;
};

/// What the rules read: the syntax, and values that were taken from it once.
struct View {
  explicit View(const Syntax& text) : syntax(text) {}

  const Syntax& syntax;
  std::string fileName;
  std::vector<std::string> packageModels;  ///< Of the .pkg file beside it.
  int version = 0;                         ///< 42 for 4.2; 0 for none.
  std::vector<ComponentView> components;
  std::vector<SelectorView> selectors;
  std::vector<ModelView> models;
  Places modelByName;     ///< In front of [End].
  Places selectorByName;  ///< In front of [End].

  /// The place of a word.
  Spot spotOf(const SourceLine& line, const Word& word, std::uint32_t block) const;

  /// The place of a line from its first to its last word.
  Spot spotOf(const SourceLine& line, std::uint32_t block) const;

  /// The place of a keyword's bracket and name.
  Spot spotOf(const Block& block) const;

  /// The place of what stands behind a keyword.
  Spot argumentSpot(const Block& block) const;

  std::uint32_t indexOf(const Block& block) const {
    return static_cast<std::uint32_t>(&block - syntax.blocks().data());
  }
  const Block& block(std::uint32_t index) const { return syntax.blocks()[index]; }

  /// The first block of a keyword in a section, or null.
  const Block* find(std::uint32_t section, std::string_view keyword) const;

  /// The model that a pin names, or null.
  const ModelView* modelOf(const PinView& pin) const;

  /// What a block is called, such as "[Pulldown] of 'x'".
  std::string nameOf(const Block& block) const;

  /// Whether a name is reserved: NC, NA, GND, POWER in any case.
  static bool isReserved(std::string_view name);
};

/// Reads all values of a file; the rules of numbers are told on the way.
void readValues(View& view, Findings& findings);

}  // namespace ibis::checks
