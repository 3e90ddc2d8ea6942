#pragma once

#include <array>
#include <initializer_list>
#include <string>
#include <string_view>

#include "generate.h"
#include "number_styles.h"

namespace ibis::bench {

/// The parts of a file that grow side by side, in file order.
enum class Part {
  header,
  component,
  pins,
  diffPins,
  selectors,
  models,
  packageModel,
  pinNumbers,
  resistance,
  inductance,
  capacitance,
  end,
  count,
};

/// What a table's or waveform's numbers look like.
struct Columns {
  NumberStyle style = NumberStyle::plain;
  bool onlyTyp = false;      ///< The other two columns say NA.
  bool hasComments = false;  ///< Now and then a comment stands behind a row.
};

/// What a model needs of its type to be counted.
struct ModelShape {
  std::string_view type;
  bool drives = false;   ///< Has [Pulldown], [Ramp] and waveforms.
  bool pullsUp = false;  ///< Has [Pullup], and two waveforms for each edge instead of one.
  bool listens = false;  ///< Has thresholds, which are given.
  bool hasEnable = false;
};

/// Writes the lines of a file and counts what a load must make of them.
class FileWriter {
 public:
  explicit FileWriter(Amount wanted);

  /// The amount that was asked for.
  const Amount& wanted() const { return wanted_; }
  std::size_t itemsWritten() const { return items_; }
  bool isFull() const;
  void countItem() { ++items_; }

  void keyword(Part part, std::string_view name, std::string_view argument = {});
  void data(Part part, std::initializer_list<std::string_view> words);
  void comment(Part part, std::string_view text);
  void blank(Part part);

  /// The lines that every file begins with.
  void beginFile();

  void pin(std::string_view name, std::string_view signal, std::string_view model);
  void pinWithValues(std::string_view name, std::string_view signal, std::string_view model);

  /// A model up to its tables; the numbers that each model prints are counted.
  void beginModel(std::string_view name, const ModelShape& shape);
  void table(std::string_view name, int rows, double current, Columns columns);
  void waveforms(const ModelShape& shape, int rows, Columns columns);

  /// The whole file; the writer is empty afterwards.
  GeneratedFile finish();

  Counts& counts() { return file_.counts; }
  GeneratedFile& file() { return file_; }
  Dice& dice() { return dice_; }

 private:
  std::string& text(Part part) { return parts_[static_cast<std::size_t>(part)]; }
  void endLine(Part part, bool isRecord);
  void corners(double typ, std::string_view unit, Columns columns);
  void waveform(std::string_view edge, int rows, double fixtureVoltage, Columns columns);

  Amount wanted_;
  std::size_t items_ = 0;
  std::size_t bytes_ = 0;
  std::array<std::string, static_cast<std::size_t>(Part::count)> parts_;
  GeneratedFile file_;
  Dice dice_;
};

}  // namespace ibis::bench
