// The rules about [Package] and about package models.

#include <algorithm>
#include <cmath>
#include <optional>

#include "checks/families.h"
#include "checks/number_word.h"
#include "ibis/ibis_string.h"

namespace ibis::checks {
namespace {

struct PackageLimit {
  std::string_view name;
  std::string_view unit;
  double least;
  double most;
  std::string_view plausible;
};

constexpr PackageLimit limits[] = {{"R_pkg", "ohm", 0.0, 10.0, "up to 10 ohm"},
                                   {"L_pkg", "H", 1e-12, 100e-9, "1 pH to 100 nH"},
                                   {"C_pkg", "F", 1e-15, 100e-12, "1 fF to 100 pF"}};

constexpr std::string_view matrixKinds[] = {"Banded_matrix", "Sparse_matrix", "Full_matrix"};
constexpr std::string_view matrixNames[] = {"Resistance Matrix", "Inductance Matrix",
                                            "Capacitance Matrix"};
constexpr std::string_view requiredKeywords[] = {"Manufacturer", "OEM", "Description",
                                                 "Number Of Pins", "Pin Numbers"};

constexpr std::int32_t hints = 20;           // hints of a file
constexpr std::int32_t searchedNames = 200;  // names that a hint is looked for among

enum class Kind : std::uint8_t { banded, sparse, full, unknown };

struct Entry {
  std::uint32_t row;
  std::uint32_t column;
  double value;
  Spot spot;
};

struct Matrix {
  const Block* block = nullptr;
  Kind kind = Kind::unknown;
  std::size_t bandwidth = 0;
  bool hasBandwidth = false;
  bool isSound = true;
  std::vector<bool> rows = {};
  std::vector<Entry> entries = {};

  std::string name() const { return std::string(block->keyword->name); }
  bool isInductance() const { return block->keyword->name == "Inductance Matrix"; }
  bool isCapacitance() const { return block->keyword->name == "Capacitance Matrix"; }
};

std::string firstThree(const std::vector<std::string>& names) {
  std::vector<std::string> first(
      names.begin(),
      names.begin() + static_cast<std::ptrdiff_t>(std::min<std::size_t>(names.size(), 3)));
  return joined(first) + (names.size() > 3 ? ", ..." : "");
}

// The index of the first row whose pivot is not positive; the count of rows if there is none.
//
// Works in the envelope of the matrix, and gives nothing for one that would cost too many steps.
std::optional<std::size_t> firstBadPivot(std::size_t count, const std::vector<Entry>& entries) {
  constexpr std::size_t mostPins = 1200;
  constexpr std::size_t mostSteps = 5'000'000;
  if (count > mostPins) return std::nullopt;
  std::vector<std::size_t> first(count);
  for (std::size_t i = 0; i < count; ++i) first[i] = i;
  double largest = 0.0;
  for (const Entry& entry : entries) {
    first[entry.column] = std::min<std::size_t>(first[entry.column], entry.row);
    if (entry.row == entry.column) largest = std::max(largest, std::abs(entry.value));
  }
  std::size_t steps = 0;
  for (std::size_t i = 0; i < count; ++i) steps += (i - first[i]) * (i - first[i]) / 2;
  if (steps > mostSteps) return std::nullopt;
  std::vector<std::vector<double>> lower(count);
  for (std::size_t i = 0; i < count; ++i) lower[i].assign(i - first[i] + 1, 0.0);
  for (const Entry& entry : entries)
    lower[entry.column][entry.row - first[entry.column]] = entry.value;
  for (std::size_t i = 0; i < count; ++i) {
    for (std::size_t j = first[i]; j <= i; ++j) {
      double sum = lower[i][j - first[i]];
      for (std::size_t k = std::max(first[i], first[j]); k < j; ++k) {
        sum -= lower[i][k - first[i]] * lower[j][k - first[j]];
      }
      if (i != j) {
        lower[i][j - first[i]] = sum / lower[j][j - first[j]];
      } else if (!(sum > 1e-9 * largest)) {
        return i;
      } else {
        lower[i][i - first[i]] = std::sqrt(sum);
      }
    }
  }
  return count;
}

// The components that name a package model.
using Users = std::vector<const ComponentView*>;

class PackageModelChecker {
 public:
  PackageModelChecker(const View& view, const Section& part, const Users* users, Findings& findings)
      : view_(view), part_(part), users_(users), findings_(findings), name_(part.name) {}

  void check() {
    checkKeywords();
    readPins();
    checkCount();
    checkComponents();
    readMatrices();
    for (Matrix& matrix : matrices_) checkMatrix(matrix);
  }

 private:
  std::size_t count() const { return pins_.size(); }

  const Block* find(std::string_view name) const {
    for (const Block& block : view_.syntax.blocksOf(part_)) {
      if (block.keyword != nullptr && block.keyword->name == name) return &block;
    }
    return nullptr;
  }

  void checkKeywords() {
    for (const std::string_view keyword : requiredKeywords) {
      if (find(keyword) != nullptr) continue;
      findings_.add(Rule::packageKeywordMissing, view_.argumentSpot(view_.block(part_.firstBlock)),
                    {name_, std::string(keyword)});
    }
  }

  // Behind a pin of a package with sections stand the sections.
  void readPins() {
    const Block* block = find("Pin Numbers");
    if (block == nullptr) return;
    const bool hasSections = find("Number Of Sections") != nullptr;
    for (const SourceLine& line : view_.syntax.linesOf(*block)) {
      auto words = view_.syntax.words(line);
      if (hasSections) words = words.first(std::min<std::size_t>(words.size(), 1));
      for (const Word& word : words) takePin(line, word, *block);
    }
  }

  void takePin(const SourceLine& line, const Word& word, const Block& block) {
    if (byName_.add(word.text, static_cast<std::uint32_t>(pins_.size()))) {
      pins_.push_back(word.text);
      return;
    }
    hasTwice_ = true;
    findings_.add(Rule::packagePinDuplicate, view_.spotOf(line, word, view_.indexOf(block)),
                  {std::string(word.text)});
  }

  void checkCount() {
    const Block* block = find("Number Of Pins");
    if (block == nullptr || find("Pin Numbers") == nullptr || hasTwice_) return;
    const double number = readNumberWord(block->argument).value;
    if (number == static_cast<double>(count())) return;
    findings_.add(Rule::packagePinCount, view_.argumentSpot(*block),
                  {std::string(block->argument), std::to_string(count())});
  }

  void checkComponents() {
    if (users_ == nullptr || pins_.empty()) return;
    for (const ComponentView* component : *users_) checkPinsOf(*component);
  }

  void checkPinsOf(const ComponentView& component) {
    std::vector<std::string> unknown;
    std::vector<std::string> unlisted;
    for (const std::string_view pin : pins_) {
      if (!component.pinByName.contains(pin)) unknown.emplace_back(pin);
    }
    for (const PinView& pin : component.pins) {
      const bool isFree = View::isReserved(pin.model) || pin.model.empty();
      if (!isFree && !byName_.contains(pin.name)) unlisted.emplace_back(pin.name);
    }
    const Spot spot = view_.spotOf(*find("Pin Numbers"));
    const std::string owner(component.name);
    if (!unknown.empty()) {
      findings_.add(Rule::packagePinUnknown, spot,
                    {countOf(unknown.size(), "pin"), name_, owner, firstThree(unknown)});
    }
    if (!unlisted.empty()) {
      findings_.add(Rule::packagePinNotListed, spot,
                    {countOf(unlisted.size(), "pin"), owner, name_, firstThree(unlisted)});
    }
  }

  // Matrices.

  void readMatrices() {
    Matrix* matrix = nullptr;
    for (const Block& block : view_.syntax.blocksOf(part_)) {
      if (block.keyword == nullptr) continue;
      const std::string_view name = block.keyword->name;
      if (std::ranges::find(matrixNames, name) != std::end(matrixNames)) {
        matrix = &matrices_.emplace_back(Matrix{.block = &block});
        matrix->rows.assign(count(), false);
        lastRow_ = 0;
        readKind(*matrix, block);
      } else if (name == "Bandwidth" && matrix != nullptr) {
        readBandwidth(*matrix, block);
      } else if (name == "Row" && matrix != nullptr) {
        readRow(*matrix, block);
      } else if (name == "End Model Data") {
        matrix = nullptr;
      }
    }
  }

  void readKind(Matrix& matrix, const Block& block) {
    for (std::size_t i = 0; i < std::size(matrixKinds); ++i) {
      if (!equalIgnoringCase(matrixKinds[i], block.argument)) continue;
      matrix.kind = static_cast<Kind>(i);
      if (block.argument == matrixKinds[i]) return;
      findings_.add(Rule::packageMatrixKind, view_.argumentSpot(block),
                    {std::string(block.keyword->name), std::string(block.argument),
                     "write '" + std::string(matrixKinds[i]) + "'"});
      return;
    }
    const std::string_view near = nearestWord(block.argument, matrixKinds);
    findings_
        .add(Rule::packageMatrixKind, view_.argumentSpot(block),
             {std::string(block.keyword->name), std::string(block.argument),
              near.empty() ? "this is no kind of a matrix"
                           : "did you mean '" + std::string(near) + "'?"})
        .diagnostic.severity = Severity::error;
  }

  void readBandwidth(Matrix& matrix, const Block& block) {
    matrix.hasBandwidth = true;
    const double number = readNumberWord(block.argument).value;
    const bool isWhole = number >= 0.0 && number == std::floor(number);
    if (isWhole && number <= static_cast<double>(count()) / 2.0) {
      matrix.bandwidth = static_cast<std::size_t>(number);
      return;
    }
    matrix.isSound = false;
    findings_.add(Rule::packageBandwidth, view_.argumentSpot(block),
                  {"[Bandwidth] '" + std::string(block.argument) +
                   "' is no whole number from 0 to " + std::to_string(count() / 2)});
  }

  void readRow(Matrix& matrix, const Block& block) {
    const std::uint32_t* row = byName_.find(block.argument);
    if (row == nullptr) {
      matrix.isSound = false;
      findings_.add(Rule::packageRowUnknown, view_.argumentSpot(block),
                    {std::string(block.argument)});
      return;
    }
    matrix.rows[*row] = true;
    if (*row < lastRow_ && matrix.kind != Kind::sparse) {
      findings_.add(Rule::packageRowOrder, view_.argumentSpot(block),
                    {matrix.name(), std::string(block.argument)});
    }
    lastRow_ = std::max(lastRow_, *row);
    if (matrix.kind == Kind::sparse) return readSparseRow(matrix, block, *row);
    if (matrix.kind != Kind::unknown) readWholeRow(matrix, block, *row);
  }

  void readSparseRow(Matrix& matrix, const Block& block, std::uint32_t row) {
    const std::uint32_t index = view_.indexOf(block);
    for (const SourceLine& line : view_.syntax.linesOf(block)) {
      const auto words = view_.syntax.words(line);
      if (words.empty()) continue;
      const std::uint32_t* column = byName_.find(words[0].text);
      if (column == nullptr) {
        matrix.isSound = false;
        findings_.addOnce(Rule::packageRowUnknown, view_.spotOf(line, words[0], index),
                          {std::string(words[0].text)});
      } else if (words.size() < 2) {
        findings_.addOnce(Rule::numericMissingValue, view_.spotOf(line, words[0], index),
                          {"[" + matrix.name() + "] row " + std::string(block.argument)});
      } else {
        addEntry(matrix, row, *column, line, words[1], index);
      }
    }
  }

  // Values from the diagonal on, over any number of lines.
  void readWholeRow(Matrix& matrix, const Block& block, std::uint32_t row) {
    const std::size_t rest = count() - row;
    const std::size_t limit =
        matrix.kind == Kind::full ? rest : std::min(rest, matrix.bandwidth + 1);
    std::size_t given = 0;
    for (const SourceLine& line : view_.syntax.linesOf(block)) {
      for (const Word& word : view_.syntax.words(line)) {
        if (given < limit) {
          addEntry(matrix, row, row + static_cast<std::uint32_t>(given), line, word,
                   view_.indexOf(block));
        }
        ++given;
      }
    }
    const std::string name(block.argument);
    if (given > limit && matrix.isSound && matrix.kind == Kind::banded) {
      findings_.add(Rule::packageBandwidth, view_.argumentSpot(block),
                    {"[" + matrix.name() + "] row " + name + " has " + countOf(given, "value") +
                     ", limit " + std::to_string(limit)});
    } else if (given > limit && matrix.isSound) {
      findings_.add(Rule::packageRowTooLong, view_.argumentSpot(block),
                    {matrix.name(), name, std::to_string(given), std::to_string(limit)});
    } else if (given < limit && matrix.kind == Kind::full) {
      findings_.add(Rule::packageRowShort, view_.argumentSpot(block),
                    {matrix.name(), name, std::to_string(given), std::to_string(limit)});
    }
  }

  void addEntry(Matrix& matrix, std::uint32_t row, std::uint32_t column, const SourceLine& line,
                const Word& word, std::uint32_t block) {
    const NumberWord read = readNumberWord(word.text);
    const Spot spot = view_.spotOf(line, word, block);
    if (std::isnan(read.value)) {
      if (read.fault == NumberFault::notAvailable) return;
      matrix.isSound = false;
      findings_.addOnce(
          Rule::numericNotANumber, spot,
          {"[" + matrix.name() + "] row " + std::string(pins_[row]), std::string(word.text), "0"});
      return;
    }
    matrix.entries.push_back({.row = std::min(row, column),
                              .column = std::max(row, column),
                              .value = read.value,
                              .spot = spot});
  }

  void checkMatrix(Matrix& matrix) {
    const Spot head = view_.spotOf(*matrix.block);
    if (matrix.kind == Kind::banded && !matrix.hasBandwidth) {
      matrix.isSound = false;
      findings_.add(Rule::packageBandwidth, head, {"[" + matrix.name() + "] has no [Bandwidth]"});
    }
    checkRows(matrix, head);
    foldTriangles(matrix);
    if (matrix.kind == Kind::unknown || !matrix.isSound) return;
    const bool isEnergy = matrix.isInductance() || matrix.isCapacitance();
    if (isEnergy && checkDiagonal(matrix, head)) checkCouplings(matrix, head);
  }

  void checkRows(const Matrix& matrix, const Spot& head) {
    if (matrix.kind == Kind::sparse || matrix.kind == Kind::unknown || !matrix.isSound) return;
    std::size_t missing = 0;
    std::string first;
    for (std::size_t i = 0; i < count(); ++i) {
      if (matrix.rows[i] || missing++ > 0) continue;
      first = std::string(pins_[i]);
    }
    if (missing == 0) return;
    const std::string more =
        missing > 1 ? " (and " + countOf(missing - 1, "more row") + ")" : std::string();
    findings_.add(Rule::packageRowMissing, head, {matrix.name(), first, more});
  }

  // A value may stand in both triangles; then both must be equal.
  void foldTriangles(Matrix& matrix) {
    std::ranges::stable_sort(matrix.entries, [](const Entry& a, const Entry& b) {
      return a.row != b.row ? a.row < b.row : a.column < b.column;
    });
    std::size_t kept = 0;
    for (std::size_t i = 0; i < matrix.entries.size(); ++i) {
      const Entry entry = matrix.entries[i];
      const bool isSecond = kept > 0 && matrix.entries[kept - 1].row == entry.row &&
                            matrix.entries[kept - 1].column == entry.column;
      if (!isSecond) {
        matrix.entries[kept++] = entry;
        continue;
      }
      const Entry& first = matrix.entries[kept - 1];
      if (first.value == entry.value) continue;
      Finding* told = findings_.addOnce(
          Rule::packageNotSymmetric, entry.spot,
          {matrix.name(), std::string(pins_[entry.row]), std::string(pins_[entry.column]),
           quantity(first.value, unitOf(matrix)), quantity(entry.value, unitOf(matrix))});
      if (told != nullptr) addNote(*told, first.spot.line, "the first one is here");
    }
    matrix.entries.resize(kept, Entry{0, 0, 0.0, {}});
  }

  static std::string_view unitOf(const Matrix& matrix) {
    return matrix.isInductance() ? "H" : matrix.isCapacitance() ? "F" : "ohm";
  }

  // A place inside of a matrix, as one of its block.
  Spot spotIn(const Matrix& matrix, Spot spot) const {
    spot.block = view_.indexOf(*matrix.block);
    return spot;
  }

  // Whether each pin has a value of its own that is above 0.
  bool checkDiagonal(const Matrix& matrix, const Spot& head) {
    diagonal_.assign(count(), notGiven);
    diagonalSpots_.assign(count(), head);
    for (const Entry& entry : matrix.entries) {
      if (entry.row != entry.column) continue;
      diagonal_[entry.row] = entry.value;
      diagonalSpots_[entry.row] = spotIn(matrix, entry.spot);
    }
    std::vector<std::string> missing;
    std::vector<std::size_t> wrong;
    for (std::size_t i = 0; i < count(); ++i) {
      if (std::isnan(diagonal_[i])) missing.emplace_back(pins_[i]);
      if (diagonal_[i] <= 0.0) wrong.push_back(i);
    }
    const auto more = [](std::size_t number) {
      return number > 1 ? " (and " + countOf(number - 1, "more pin") + ")" : std::string();
    };
    if (!missing.empty() && !findings_.wasTold(Rule::packageRowMissing, head.section)) {
      findings_.add(Rule::packageDiagonalMissing, head,
                    {matrix.name(), missing.front(), more(missing.size())});
    }
    if (!wrong.empty()) {
      findings_.add(Rule::packageDiagonalNotPositive, diagonalSpots_[wrong.front()],
                    {matrix.name(), std::string(pins_[wrong.front()]),
                     quantity(diagonal_[wrong.front()], unitOf(matrix)), more(wrong.size())});
    }
    return missing.empty() && wrong.empty() && count() > 0;
  }

  void checkCouplings(const Matrix& matrix, const Spot& head) {
    if (matrix.isInductance()) checkInductances(matrix);
    if (matrix.isCapacitance()) checkCapacitances(matrix);
    const std::optional<std::size_t> bad = firstBadPivot(count(), matrix.entries);
    if (bad == count()) return;
    if (bad) {
      findings_.add(Rule::packageNotDefinite, diagonalSpots_[*bad],
                    {matrix.name(), "positive definite (pin " + std::string(pins_[*bad]) + ")"});
      return;
    }
    Finding& told =
        findings_.add(Rule::packageNotDefinite, head,
                      {matrix.name(), "tested for being positive definite: it is too large"});
    told.diagnostic.severity = Severity::note;
    told.diagnostic.notes.clear();
  }

  void checkInductances(const Matrix& matrix) {
    const Entry* worst = nullptr;
    double most = 1.0;
    for (const Entry& entry : matrix.entries) {
      if (entry.row == entry.column) continue;
      const double coupling =
          std::abs(entry.value) / std::sqrt(diagonal_[entry.row] * diagonal_[entry.column]);
      if (coupling < most) continue;
      most = coupling;
      worst = &entry;
    }
    if (worst == nullptr) return;
    findings_.add(Rule::packageCoupling, spotIn(matrix, worst->spot),
                  {std::string(pins_[worst->row]), std::string(pins_[worst->column]),
                   quantity(worst->value, "H"), shortNumber(most, 3),
                   quantity(std::sqrt(diagonal_[worst->row] * diagonal_[worst->column]), "H")});
  }

  void checkCapacitances(const Matrix& matrix) {
    std::vector<double> sums(count(), 0.0);
    const Entry* positive = nullptr;
    std::size_t positives = 0;
    for (const Entry& entry : matrix.entries) {
      if (entry.row == entry.column) continue;
      sums[entry.row] += std::abs(entry.value);
      sums[entry.column] += std::abs(entry.value);
      if (entry.value <= 0.0) continue;
      if (positives++ == 0) positive = &entry;
    }
    if (positive != nullptr) {
      findings_.add(Rule::packageCapacitanceSign, positive->spot,
                    {std::string(pins_[positive->row]), std::string(pins_[positive->column]),
                     quantity(positive->value, "F"),
                     positives > 1 ? " (and " + std::to_string(positives - 1) + " more)" : ""});
    }
    std::size_t rows = 0;
    std::size_t worst = 0;
    for (std::size_t i = 0; i < count(); ++i) {
      if (sums[i] <= 1.0001 * diagonal_[i]) continue;
      if (rows++ == 0 || sums[i] / diagonal_[i] > sums[worst] / diagonal_[worst]) worst = i;
    }
    if (rows == 0) return;
    findings_.add(Rule::packageCapacitanceDominance, diagonalSpots_[worst],
                  {std::string(pins_[worst]), shortNumber(100.0 * sums[worst] / diagonal_[worst]),
                   rows > 1 ? " (" + std::to_string(rows) + " rows)" : ""});
  }

  const View& view_;
  const Section& part_;
  const Users* users_;
  Findings& findings_;
  std::string name_;
  std::vector<std::string_view> pins_;
  Places byName_;
  bool hasTwice_ = false;
  std::vector<Matrix> matrices_;
  std::uint32_t lastRow_ = 0;
  std::vector<double> diagonal_;
  std::vector<Spot> diagonalSpots_;  // of the matrix, so that its findings are found by it
};

class PackageChecker {
 public:
  PackageChecker(const View& view, Findings& findings) : view_(view), findings_(findings) {
    for (const Section& part : view.syntax.sections()) {
      if (part.kind == section::package && !part.isAfterEnd) names_.findOrAdd(part.name);
    }
  }

  void check() {
    for (const ComponentView& component : view_.components) {
      if (component.isAfterEnd) continue;
      users_[component.packageModel].push_back(&component);
      checkValues(component);
      checkModelName(component);
    }
    for (const Section& part : view_.syntax.sections()) {
      if (part.kind != section::package || part.isAfterEnd) continue;
      PackageModelChecker(view_, part, users_.find(part.name), findings_).check();
    }
  }

 private:
  void checkValues(const ComponentView& component) {
    const std::string name(component.name);
    if (component.package == Spot::nowhere) {
      findings_.add(Rule::packageMissing, component.spot, {name});
      return;
    }
    const Spot head = view_.spotOf(view_.block(component.package));
    const bool isWrong = findings_.hasWrongNumber(component.package) ||
                         findings_.wasTold(Rule::numericMissingValue, component.section);
    std::vector<std::string> missing;
    for (const PackageLimit& limit : limits) {
      const auto value = component.packageValues.find(limit.name);
      if (value == component.packageValues.end()) {
        missing.emplace_back(limit.name);
      } else if (!isWrong && value->second.given) {
        checkValue(limit, value->second, name);
      }
    }
    if (!missing.empty() && !isWrong) {
      findings_.add(Rule::packageRlcMissing, head, {name, joined(missing)});
    }
  }

  void checkValue(const PackageLimit& limit, const Triple& value, const std::string& owner) {
    const std::string label(limit.name);
    for (std::size_t c = 0; c < corners; ++c) {
      const double each = value.at[c];
      if (each < 0.0) {
        findings_.add(Rule::packageNegative, value.spots[c], {label, quantity(each, limit.unit)});
        return;
      }
      const bool isSmall = each < limit.least && each != 0.0;
      if (!(each > limit.most) && !isSmall) continue;
      findings_.add(Rule::packageImplausible, value.spots[c],
                    {label, quantity(each, limit.unit), std::string(limit.plausible)});
      return;
    }
    const double low = value.at[min];
    const double high = value.at[max];
    if (std::isnan(low) || std::isnan(high) || std::isnan(value.at[typ])) return;
    if (value.at[typ] < std::min(low, high) || value.at[typ] > std::max(low, high)) {
      findings_.add(Rule::packageTypOutside, value.spot,
                    {label, quantity(value.at[typ], limit.unit), quantity(low, limit.unit),
                     quantity(high, limit.unit)});
    } else if (low > high) {
      findings_.add(Rule::modelMinAboveMax, value.spots[min],
                    {label, owner, quantity(low, limit.unit), quantity(high, limit.unit)});
    }
  }

  void checkModelName(const ComponentView& component) {
    const std::string_view name = component.packageModel;
    if (name.empty() || names_.contains(name)) return;
    std::vector<std::string_view> first;
    const std::int32_t count = ++asked_ > hints ? 0 : std::min(names_.size(), searchedNames);
    for (std::int32_t i = 0; i < count; ++i) first.push_back(names_.name(i));
    const bool isBeside = std::ranges::find(view_.packageModels, name) != view_.packageModels.end();
    Finding& told =
        findings_.add(Rule::packageModelUndefined, component.packageModelSpot,
                      {std::string(name), isBeside ? " here; the .pkg file beside this one has it"
                                                   : didYouMean(nearestWord(name, first))});
    if (isBeside) told.diagnostic.severity = Severity::note;
  }

  const View& view_;
  Findings& findings_;
  NameIndex<ExactCase> names_;
  NameMap<ExactCase, Users> users_;
  std::int32_t asked_ = 0;
};

}  // namespace

void checkPackages(const View& view, Findings& findings) { PackageChecker(view, findings).check(); }

}  // namespace ibis::checks
