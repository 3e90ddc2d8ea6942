#include "model/model_reader.h"

#include <algorithm>

#include "host/diagnostics/messages.h"
#include "model/iv_table.h"
#include "model/numbers/numbers.h"
#include "model/waveform.h"

namespace ibis {
namespace {

constexpr std::int32_t otherWord = 2;

// id of a keyword or a sub-parameter, the model's triple of that name
struct TripleField {
  std::int32_t id;
  IBISTriple IBISModel::*triple;
};

constexpr TripleField keywordTriples[] = {
    {keyword::temperatureRange, &IBISModel::temperatureRange},
    {keyword::voltageRange, &IBISModel::voltageRange},
    {keyword::pullupReference, &IBISModel::pullupReference},
    {keyword::pulldownReference, &IBISModel::pulldownReference},
    {keyword::powerClampReference, &IBISModel::powerClampReference},
    {keyword::gndClampReference, &IBISModel::gndClampReference},
    {keyword::rgnd, &IBISModel::rgnd},
    {keyword::rpower, &IBISModel::rpower},
    {keyword::rac, &IBISModel::rac},
    {keyword::cac, &IBISModel::cac},
};

constexpr TripleField capacitances[] = {
    {subparameter::cComp, &IBISModel::cComp},
    {subparameter::cCompPullup, &IBISModel::cCompPullup},
    {subparameter::cCompPulldown, &IBISModel::cCompPulldown},
    {subparameter::cCompPowerClamp, &IBISModel::cCompPowerClamp},
    {subparameter::cCompGndClamp, &IBISModel::cCompGndClamp},
};

constexpr TripleField singleValues[] = {
    {subparameter::vinl, &IBISModel::vinl},   {subparameter::vinh, &IBISModel::vinh},
    {subparameter::vmeas, &IBISModel::vmeas}, {subparameter::cref, &IBISModel::cref},
    {subparameter::rref, &IBISModel::rref},   {subparameter::vref, &IBISModel::vref},
};

constexpr TripleField specTriples[] = {
    {subparameter::vinl, &IBISModel::vinl},
    {subparameter::vinh, &IBISModel::vinh},
    {subparameter::rrefDiff, &IBISModel::rrefDiff},
    {subparameter::crefDiff, &IBISModel::crefDiff},
    {subparameter::vmeas, &IBISModel::vmeas},
    {subparameter::cref, &IBISModel::cref},
    {subparameter::rref, &IBISModel::rref},
    {subparameter::vref, &IBISModel::vref},
    {subparameter::vinhPlus, &IBISModel::vinhPlus},
    {subparameter::vinhMinus, &IBISModel::vinhMinus},
    {subparameter::vinlPlus, &IBISModel::vinlPlus},
    {subparameter::vinlMinus, &IBISModel::vinlMinus},
    {subparameter::sOvershootHigh, &IBISModel::sOvershootHigh},
    {subparameter::sOvershootLow, &IBISModel::sOvershootLow},
    {subparameter::dOvershootHigh, &IBISModel::dOvershootHigh},
    {subparameter::dOvershootLow, &IBISModel::dOvershootLow},
    {subparameter::dOvershootTime, &IBISModel::dOvershootTime},
    {subparameter::pulseHigh, &IBISModel::pulseHigh},
    {subparameter::pulseLow, &IBISModel::pulseLow},
    {subparameter::pulseTime, &IBISModel::pulseTime},
};

// keyword, the model's table, its name in the warning about dropped points
struct TableField {
  std::int32_t id;
  IBISTable IBISModel::*table;
  const char* name;
};

constexpr TableField tables[] = {
    {keyword::pulldown, &IBISModel::pulldown, "Pulldown"},
    {keyword::pullup, &IBISModel::pullup, "Pullup"},
    {keyword::gndClamp, &IBISModel::gndClamp, "GND_Clamp"},
    {keyword::powerClamp, &IBISModel::powerClamp, "POWER_Clamp"},
};

// keyword, the value of the series elements
struct SeriesField {
  std::int32_t id;
  IBISTriple IBISSeriesElements::*triple;
};

constexpr SeriesField seriesFields[] = {
    {keyword::rSeries, &IBISSeriesElements::rSeries},
    {keyword::lSeries, &IBISSeriesElements::lSeries},
    {keyword::r1Series, &IBISSeriesElements::r1Series},
    {keyword::cSeries, &IBISSeriesElements::cSeries},
    {keyword::lcSeries, &IBISSeriesElements::lcSeries},
    {keyword::rcSeries, &IBISSeriesElements::rcSeries},
};

IBISTriple* findTriple(IBISModel& model, std::span<const TripleField> fields, std::int32_t id) {
  for (const TripleField& field : fields) {
    if (field.id == id) return &(model.*field.triple);
  }
  return nullptr;
}

std::int32_t choice(IBISString word, std::string_view first, std::string_view second) {
  return word == first ? 0 : word == second ? 1 : otherWord;
}

void readModelType(IBISModel& model, std::string_view line, std::int32_t lineNumber,
                   IBISErrorHandler& errors) {
  bool supported = false;
  model.type = modelTypeFromWord(popToken(line), supported);
  if (supported) return;
  model.isSound = false;
  errors.error(message::modelTypeNotSupported, lineNumber, modelTypeRow(model.type).name);
}

void readSubParameter(IBISModel& model, std::int32_t id, std::string_view line,
                      std::int32_t lineNumber, IBISErrorHandler& errors) {
  if (id == subparameter::modelType) {
    readModelType(model, line, lineNumber, errors);
  } else if (id == subparameter::polarity) {
    model.polarity = choice(popToken(line), "Non-Inverting", "Inverting");
  } else if (id == subparameter::enable) {
    model.enable = choice(popToken(line), "Active-High", "Active-Low");
  } else if (IBISTriple* capacitance = findTriple(model, capacitances, id)) {
    readTriple(line, *capacitance);
  } else if (IBISTriple* value = findTriple(model, singleValues, id)) {
    readSingleAsTriple(line, *value);
  }
}

// Walks the keywords of one [Model] section and fills the model from them.
class SectionReader {
 public:
  SectionReader(IBISModel& model, IBISRecords records, std::int32_t& cursor,
                IBISErrorHandler& errors)
      : model_(model), records_(records), cursor_(cursor), errors_(errors) {}

  int read() {
    const auto count = static_cast<std::int32_t>(records_.size());
    for (++cursor_; cursor_ < count; ++cursor_) {
      if (endsSection(record().keyword)) {
        --cursor_;
        return 1;
      }
      readKeyword();
    }
    return 0;
  }

 private:
  const IBISRecord& record() const { return recordAt(records_, cursor_); }

  void readKeyword() {
    switch (record().keyword) {
      case keyword::modelSpec:
        readModelSpec(model_, records_, cursor_);
        break;
      case keyword::ramp:
        readRamp(model_, records_, cursor_);
        break;
      case keyword::risingWaveform:
        readWaveform(records_, cursor_, model_.risingWaveforms);
        break;
      case keyword::fallingWaveform:
        readWaveform(records_, cursor_, model_.fallingWaveforms);
        break;
      case keyword::on:
        state_ = SeriesState::on;
        break;
      case keyword::off:
        state_ = SeriesState::off;
        break;
      case keyword::seriesCurrent:
        readTable(isOn() ? model_.seriesCurrentOn : model_.seriesCurrentOff, records_, cursor_,
                  errors_, "Series Current");
        break;
      case keyword::seriesMosfet:
        readSeriesMosfet(model_, records_, cursor_, state_, errors_);
        break;
      case keyword::addSubmodel:
      case keyword::driverSchedule:
        // Falls through to [TTgnd], which reports the keyword a second time.
        reportNotSupported();
        [[fallthrough]];
      case keyword::ttgnd:
        readTriple(keywordText(record()), model_.ttgnd);
        reportNotSupported();
        break;
      case keyword::ttpower:
        reportNotSupported();
        readTriple(keywordText(record()), model_.ttpower);
        break;
      default:
        readField();
        break;
    }
  }

  void readField() {
    const std::int32_t id = record().keyword;
    for (const TableField& field : tables) {
      if (field.id == id) {
        readTable(model_.*field.table, records_, cursor_, errors_, field.name);
        return;
      }
    }
    IBISSeriesElements& elements = isOn() ? model_.seriesOn : model_.seriesOff;
    for (const SeriesField& field : seriesFields) {
      if (field.id == id) readTriple(keywordText(record()), elements.*field.triple);
    }
    if (IBISTriple* triple = findTriple(model_, keywordTriples, id)) {
      readTriple(keywordText(record()), *triple);
    }
  }

  bool isOn() const { return state_ == SeriesState::on; }

  void reportNotSupported() {
    model_.isSound = false;
    errors_.error(message::modelKeywordNotSupported, record().line, model_.name.str().c_str(),
                  keywordName(record().keyword).str().c_str());
  }

  IBISModel& model_;
  IBISRecords records_;
  std::int32_t& cursor_;
  IBISErrorHandler& errors_;
  SeriesState state_ = SeriesState::notGiven;
};

}  // namespace

void readModelSubParameters(IBISModel& model, IBISRecords records, std::int32_t& cursor,
                            IBISNameTable& nameTable, IBISErrorHandler& errors) {
  const IBISRecord& head = recordAt(records, cursor);
  model.lineNumber = head.line;
  model.name = keywordText(head);
  nameTable.registerName(model.name);
  model.spiceName = nameTable.spiceName(model.name);
  std::string_view text;
  while (nextDataLine(records, cursor, text)) {
    const std::int32_t id = subParameterId(popToken(text));
    readSubParameter(model, id, text, recordAt(records, cursor).line, errors);
  }
}

int readModelSection(IBISModel& model, IBISRecords records, std::int32_t& cursor,
                     IBISNameTable& nameTable, IBISErrorHandler& errors) {
  readModelSubParameters(model, records, cursor, nameTable, errors);
  return SectionReader(model, records, cursor, errors).read();
}

void readModelSpec(IBISModel& model, IBISRecords records, std::int32_t& cursor) {
  std::string_view text;
  while (nextDataLine(records, cursor, text)) {
    const std::int32_t id = subParameterId(popToken(text));
    if (IBISTriple* triple = findTriple(model, specTriples, id)) readTriple(text, *triple);
  }
}

void readSeriesMosfet(IBISModel& model, IBISRecords records, std::int32_t& cursor,
                      SeriesState state, IBISErrorHandler& errors) {
  IBISSeriesMosfet mosfet;
  std::string_view text;
  if (nextDataLine(records, cursor, text)) {
    if (takeField(text, delimiters::blanksAndEqual) == "Vds") {
      mosfet.vds = parseNumber(takeField(text, delimiters::blanksAndEqual), 0.0);
    } else {
      --cursor;
    }
  }
  readTable(mosfet.table, records, cursor, errors, "Series MOSFET");
  if (state == SeriesState::on) {
    model.seriesMosfetOn.push_back(std::move(mosfet));
  } else if (state == SeriesState::off) {
    model.seriesMosfetOff.push_back(std::move(mosfet));
  }
}

}  // namespace ibis
