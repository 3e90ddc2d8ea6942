#include "package/package_reader.h"

#include "host/diagnostics/messages.h"
#include "model/numbers/numbers.h"
#include "reader/text/name_index.h"

namespace ibis {
namespace {

bool endsMatrix(std::int32_t id) {
  return id == keyword::endModelData || id == keyword::resistanceMatrix ||
         id == keyword::inductanceMatrix || id == keyword::capacitanceMatrix;
}

// The pins that a matrix may name, numbered from 1 in file order.
struct PinNumbers {
  NameIndex<ExactCase> names;
  std::int32_t count = 0;  // [Number Of Pins], named or not

  bool isPin(std::int32_t number) const { return number >= 1 && number <= count; }
};

// Reads the rows of one matrix after its keyword.
class MatrixReader {
 public:
  MatrixReader(std::vector<IBISMatrixEntry>& entries, const PinNumbers& pins, IBISRecords records,
               std::int32_t& index, IBISErrorHandler& errors)
      : entries_(entries), pins_(pins), records_(records), index_(index), errors_(errors) {}

  // Passes over the rows, so that the next matrix is read normally.
  void readFull() {
    errors_.error(message::fullMatrixNotSupported, record().line);
    readRecords([this] {
      const std::int32_t id = record().keyword;
      return id == keyword::dataLine || id == keyword::row;
    });
  }

  // Reads the main diagonal, the only one that a banded matrix keeps.
  void readBanded() {
    readRecords([this] {
      switch (record().keyword) {
        case keyword::dataLine:
          readDiagonalLine();
          return true;
        case keyword::row:
          readRow();
          return true;
        case keyword::bandwidth:
          readBandwidth();
          return true;
        default:
          return false;
      }
    });
  }

  void readSparse() {
    readRecords([this] {
      switch (record().keyword) {
        case keyword::dataLine:
          readSparseLine();
          return true;
        case keyword::row:
          readRow();
          return true;
        default:
          return false;
      }
    });
  }

 private:
  const IBISRecord& record() const { return recordAt(records_, index_); }

  // Takes records as long as take() knows them.
  template <class Take>
  void readRecords(Take take) {
    const auto count = static_cast<std::int32_t>(records_.size());
    for (++index_; index_ < count; ++index_) {
      if (endsMatrix(record().keyword)) {
        --index_;
        return;
      }
      if (take()) continue;
      errors_.error(message::unexpectedMatrixKeyword, record().line, record().keyword);
      return;
    }
  }

  void readDiagonalLine() {
    if (row_ == 0) return;
    add(row_, row_, keywordText(record()));
  }

  void readBandwidth() {
    if (parseInteger(keywordText(record())) == 0) return;
    errors_.error(message::bandwidthNotSupported, record().line);
  }

  // An unknown name leaves the row as it was.
  void readRow() {
    const std::int32_t number = findPin(keywordText(record()));
    if (number > 0) row_ = number;
    if (!pins_.isPin(row_)) errors_.error(message::unexpectedRow, record().line, row_);
  }

  // The number of a pin from 1; 0 with a message for an unknown one.
  std::int32_t findPin(IBISString name) const {
    const std::int32_t index = pins_.names.find(name);
    if (index != pins_.names.absent) return index + 1;
    errors_.error(message::unknownPackagePin, record().line, name.str().c_str());
    return 0;
  }

  // The file has one triangle of a symmetric matrix; this adds the other.
  void readSparseLine() {
    if (!pins_.isPin(row_)) return;
    Fields fields;
    splitFields(keywordText(record()), fields, 2);
    const std::int32_t column = findPin(fields.at(0));
    if (column == 0) return;
    if (!pins_.isPin(column)) {
      errors_.error(message::unexpectedColumn, record().line, column);
    } else if (fields.at(1).empty()) {
      errors_.error(message::missingValue, record().line);
    } else {
      add(row_, column, fields.at(1));
      if (column != row_) add(column, row_, fields.at(1));
    }
  }

  void add(std::int32_t row, std::int32_t column, std::string_view text) {
    entries_.push_back({.row = row,
                        .column = column,
                        .value = parseNumber(text, 0.0),
                        .isNA = text == notAvailable});
  }

  std::vector<IBISMatrixEntry>& entries_;
  const PinNumbers& pins_;
  IBISRecords records_;
  std::int32_t& index_;
  IBISErrorHandler& errors_;
  std::int32_t row_ = 0;
};

// Walks the keywords of one section and fills the model from them.
class SectionReader {
 public:
  SectionReader(IBISPackageModel& model, IBISRecords records, std::int32_t& index,
                IBISErrorHandler& errors)
      : model_(model), records_(records), index_(index), errors_(errors) {}

  void read() {
    model_.line = record().line;
    model_.name = keywordText(record());
    for (++index_; index_ < count(); ++index_) {
      if (record().keyword == keyword::endPackageModel) return;
      if (endsSection(record().keyword)) {
        --index_;
        return;
      }
      readKeyword();
    }
  }

 private:
  const IBISRecord& record() const { return recordAt(records_, index_); }
  std::int32_t count() const { return static_cast<std::int32_t>(records_.size()); }

  void readKeyword() {
    switch (record().keyword) {
      case keyword::manufacturer:
        model_.manufacturer = keywordText(record());
        break;
      case keyword::oem:
        model_.oem = keywordText(record());
        break;
      case keyword::description:
        model_.description = keywordText(record());
        break;
      case keyword::numberOfPins:
        readNumberOfPins();
        break;
      case keyword::pinNumbers:
        readPinNumbers();
        break;
      case keyword::modelData:
        readModelData();
        break;
      default:
        break;
    }
  }

  // The netlist has a line for each pin of the number, whether the pin is named or not.
  void readNumberOfPins() {
    const std::int32_t number = parseInteger(record().text());
    if (number > IBISPackageModel::maxPins) {
      errors_.error(message::tooManyPackagePins, record().line, number, IBISPackageModel::maxPins);
    } else {
      model_.numberOfPins = pins_.count = number;
    }
  }

  void readPinNumbers() {
    Fields tokens;
    std::string_view line;
    while (nextDataLine(records_, index_, line)) {
      tokens.clear();
      splitFields(line, tokens);
      takePinNames(tokens);
    }
  }

  void takePinNames(const Fields& tokens) {
    for (const std::string_view token : tokens) {
      if (pins_.names.size() >= model_.numberOfPins) return;
      const IBISString name = token;
      if (pins_.names.contains(name)) {
        errors_.error(message::duplicatePackagePin, record().line, name.str().c_str());
      } else {
        pins_.names.add(name);
        model_.pinNames.push_back(name);
      }
    }
  }

  void readModelData() {
    for (++index_; index_ < count(); ++index_) {
      if (record().keyword == keyword::endModelData) return;
      std::vector<IBISMatrixEntry>* matrix = matrixOf(record().keyword);
      if (matrix != nullptr && readMatrix(*matrix)) continue;
      if (matrix == nullptr) {
        errors_.error(message::unexpectedDataKeyword, keywordName(record().keyword).str().c_str(),
                      record().line);
      }
      skipModelData();
      return;
    }
  }

  std::vector<IBISMatrixEntry>* matrixOf(std::int32_t id) {
    switch (id) {
      case keyword::resistanceMatrix:
        return &model_.resistance;
      case keyword::inductanceMatrix:
        return &model_.inductance;
      case keyword::capacitanceMatrix:
        return &model_.capacitance;
      default:
        return nullptr;
    }
  }

  // False with a message for an unknown form.
  bool readMatrix(std::vector<IBISMatrixEntry>& matrix) {
    const IBISString form = keywordText(record());
    MatrixReader reader(matrix, pins_, records_, index_, errors_);
    if (form == "Full_matrix") {
      reader.readFull();
    } else if (form == "Banded_matrix") {
      reader.readBanded();
    } else if (form == "Sparse_matrix") {
      reader.readSparse();
    } else {
      errors_.error(message::unknownMatrixType, form.str().c_str(), record().line);
      return false;
    }
    return true;
  }

  void skipModelData() {
    while (index_ < count() && record().keyword != keyword::endModelData) ++index_;
  }

  IBISPackageModel& model_;
  IBISRecords records_;
  std::int32_t& index_;
  IBISErrorHandler& errors_;
  PinNumbers pins_;
};

}  // namespace

bool readPackageModel(IBISPackageModel& model, IBISRecords records, std::int32_t& index,
                      IBISErrorHandler& errors) {
  SectionReader(model, records, index, errors).read();
  return true;
}

}  // namespace ibis
