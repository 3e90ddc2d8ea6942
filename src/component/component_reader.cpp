#include "component/component_reader.h"

#include "component/names/name_table.h"
#include "component/pin_reader.h"
#include "component/pin_tables.h"
#include "host/diagnostics/messages.h"
#include "model/numbers/numbers.h"

namespace ibis {
namespace {

// One component's walk over its records.
class ComponentReader {
 public:
  ComponentReader(IBISComponent& component, IBISRecords records, std::int32_t& index,
                  IBISErrorHandler& errors)
      : component_(component), records_(records), index_(index), errors_(errors) {}

  void readHead(IBISNameTable& nameTable) {
    component_.name = keywordText(record());
    nameTable.registerName(component_.name);
    component_.spiceName = nameTable.spiceName(component_.name);
    Fields fields;
    std::string_view text;
    while (nextDataLine(records_, index_, text)) {
      fields.clear();
      splitFields(text, fields);
      readLocation(fields);
    }
  }

  bool readSections() {
    const auto count = static_cast<std::int32_t>(records_.size());
    for (++index_; index_ < count; ++index_) {
      if (endsSection(record().keyword)) {
        --index_;
        return true;
      }
      readKeyword();
    }
    return false;
  }

 private:
  const IBISRecord& record() const { return recordAt(records_, index_); }

  void readLocation(Fields& fields) {
    std::int32_t* location = nullptr;
    if (fields.at(0) == "Si_location") location = &component_.siLocation;
    if (fields.at(0) == "Timing_location") location = &component_.timingLocation;
    if (location == nullptr) return;
    const std::string name(fields.at(1));
    if (name == "Pin") {
      *location = location::pin;
    } else if (name == "Die") {
      *location = location::die;
    } else {
      errors_.error(message::unexpectedLocation, record().line, name.c_str());
    }
  }

  void readPackage() {
    IBISPackage& package = component_.package;
    Fields fields;
    std::string_view text;
    while (nextDataLine(records_, index_, text)) {
      fields.clear();
      splitFields(text, fields);
      const std::string_view word = fields.at(0);
      if (word == "R_pkg") readPackageLine(package.R_pkg, fields);
      if (word == "L_pkg") readPackageLine(package.L_pkg, fields);
      if (word == "C_pkg") readPackageLine(package.C_pkg, fields);
    }
  }

  // A value left out is an empty text and reads as 0, unlike an explicit NA.
  static void readPackageLine(IBISTriple& triple, Fields& fields) {
    constexpr int columns[] = {corner::typ, corner::min, corner::max};
    triple.typ = parseNumber(fields.at(1), 0.0);
    triple.min = parseNumber(fields.at(2), triple.typ);
    triple.max = parseNumber(fields.at(3), triple.typ);
    triple.missing = {};
    for (std::int32_t i = 0; i < corner::count; ++i) {
      if (isMissingValue(fields.at(i + 1))) triple.missing.set(columns[i]);
    }
  }

  void readKeyword() {
    const KeywordRow* row = findKeyword(record().keyword);
    if (row == nullptr) return;
    if (row->inComponent == InComponent::own) {
      readOwn();
    } else {
      reportOutOfPlace(row->inComponent, std::string(row->name).c_str());
    }
  }

  void reportOutOfPlace(InComponent group, const char* name) {
    const std::int32_t line = record().line;
    switch (group) {
      case InComponent::ofHeader:
        return errors_.error(message::headerKeywordInComponent, line, name);
      case InComponent::ofModel:
        return errors_.error(message::modelKeywordInComponent, line, name);
      case InComponent::ofSubmodel:
        return errors_.error(message::submodelKeywordInComponent, line, name);
      case InComponent::ofPackage:
        return errors_.error(message::packageKeywordInComponent, line, name);
      case InComponent::ofCircuit:
        return errors_.error(message::circuitKeywordInComponent, line, name);
      default:
        return;
    }
  }

  void readOwn() {
    switch (record().keyword) {
      case keyword::manufacturer:
        component_.manufacturer = keywordText(record());
        break;
      case keyword::package:
        readPackage();
        break;
      case keyword::pin:
        readPins(component_, records_, index_);
        break;
      case keyword::packageModel:
        component_.packageModelName = keywordText(record());
        break;
      case keyword::diffPin:
        readDiffPins(component_, records_, index_);
        break;
      case keyword::pinMapping:
        errors_.error(message::pinMappingNotSupported, record().line);
        readPinMappings(component_, records_, index_);
        break;
      case keyword::seriesPinMapping:
        errors_.error(message::seriesPinMappingNotSupported, record().line);
        readSeriesPinMappings(component_, records_, index_);
        break;
      case keyword::seriesSwitchGroups:
        errors_.error(message::seriesSwitchGroupsNotSupported, record().line);
        readSeriesSwitchGroups(component_, records_, index_);
        break;
      default:
        break;
    }
  }

  IBISComponent& component_;
  IBISRecords records_;
  std::int32_t& index_;
  IBISErrorHandler& errors_;
};

}  // namespace

bool readComponent(IBISComponent& component, IBISRecords records, std::int32_t& index,
                   IBISNameTable& nameTable, IBISErrorHandler& errors) {
  if (recordAt(records, index).keyword != keyword::component) return false;
  ComponentReader reader(component, records, index, errors);
  reader.readHead(nameTable);
  return reader.readSections();
}

}  // namespace ibis
