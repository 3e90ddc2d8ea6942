#include "component/component_reader.h"

#include "component/pin_reader.h"
#include "component/pin_tables.h"
#include "host/diagnostics/messages.h"

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
    triple.typ = parseNumber(fields.at(1), 0.0);
    triple.min = parseNumber(fields.at(2), triple.typ);
    triple.max = parseNumber(fields.at(3), triple.typ);
  }

  std::string name() const { return keywordName(record().keyword).str(); }

  // Keywords that no group names pass without a word, their neighbours in the standard do not.
  void readKeyword() {
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

      case keyword::ibisVer:
      case keyword::fileName:
      case keyword::fileRev:
      case keyword::date:
      case keyword::source:
      case keyword::notes:
      case keyword::disclaimer:
      case keyword::copyright:
        errors_.error(message::headerKeywordInComponent, record().line, name().c_str());
        break;

      case keyword::modelSpec:
      case keyword::driverSchedule:
      case keyword::temperatureRange:
      case keyword::voltageRange:
      case keyword::pullupReference:
      case keyword::pulldownReference:
      case keyword::powerClampReference:
      case keyword::gndClampReference:
      case keyword::ttgnd:
      case keyword::ttpower:
      case keyword::pulldown:
      case keyword::pullup:
      case keyword::gndClamp:
      case keyword::powerClamp:
      case keyword::rgnd:
      case keyword::rpower:
      case keyword::rac:
      case keyword::cac:
      case keyword::on:
      case keyword::off:
      case keyword::rSeries:
      case keyword::lSeries:
      case keyword::r1Series:
      case keyword::cSeries:
      case keyword::lcSeries:
      case keyword::seriesCurrent:
      case keyword::seriesMosfet:
      case keyword::ramp:
      case keyword::risingWaveform:
      case keyword::fallingWaveform:
        errors_.error(message::modelKeywordInComponent, record().line, name().c_str());
        break;

      case keyword::addSubmodel:
      case keyword::submodelSpec:
      case keyword::gndPulseTable:
      case keyword::powerPulseTable:
        errors_.error(message::submodelKeywordInComponent, record().line, name().c_str());
        break;

      case keyword::oem:
      case keyword::description:
      case keyword::numberOfSections:
      case keyword::numberOfPins:
      case keyword::pinNumbers:
      case keyword::modelData:
      case keyword::endModelData:
      case keyword::resistanceMatrix:
      case keyword::inductanceMatrix:
      case keyword::capacitanceMatrix:
      case keyword::row:
      case keyword::bandwidth:
      case keyword::endPackageModel:
        errors_.error(message::packageKeywordInComponent, record().line, name().c_str());
        break;

      case keyword::nodeDeclarations:
      case keyword::circuitCall:
        errors_.error(message::circuitKeywordInComponent, record().line, name().c_str());
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
