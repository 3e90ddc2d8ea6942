#include "model_values.h"

#include <cmath>

#include "model/model_types.h"

namespace ibis::cli {
namespace {

// name, unit, value
constexpr ModelValue values[] = {
    {"Temperature Range", "C", &IBISModel::temperatureRange},
    {"Voltage Range", "V", &IBISModel::voltageRange},
    {"Pullup Reference", "V", &IBISModel::pullupReference},
    {"Pulldown Reference", "V", &IBISModel::pulldownReference},
    {"POWER Clamp Reference", "V", &IBISModel::powerClampReference},
    {"GND Clamp Reference", "V", &IBISModel::gndClampReference},
    {"C_comp", "F", &IBISModel::cComp},
    {"C_comp_pullup", "F", &IBISModel::cCompPullup},
    {"C_comp_pulldown", "F", &IBISModel::cCompPulldown},
    {"C_comp_power_clamp", "F", &IBISModel::cCompPowerClamp},
    {"C_comp_gnd_clamp", "F", &IBISModel::cCompGndClamp},
    {"Vinl", "V", &IBISModel::vinl},
    {"Vinh", "V", &IBISModel::vinh},
    {"Vinl-", "V", &IBISModel::vinlMinus},
    {"Vinl+", "V", &IBISModel::vinlPlus},
    {"Vinh-", "V", &IBISModel::vinhMinus},
    {"Vinh+", "V", &IBISModel::vinhPlus},
    {"S_overshoot_high", "V", &IBISModel::sOvershootHigh},
    {"S_overshoot_low", "V", &IBISModel::sOvershootLow},
    {"D_overshoot_high", "V", &IBISModel::dOvershootHigh},
    {"D_overshoot_low", "V", &IBISModel::dOvershootLow},
    {"D_overshoot_time", "s", &IBISModel::dOvershootTime},
    {"Pulse_high", "V", &IBISModel::pulseHigh},
    {"Pulse_low", "V", &IBISModel::pulseLow},
    {"Pulse_time", "s", &IBISModel::pulseTime},
    {"Vmeas", "V", &IBISModel::vmeas},
    {"Cref", "F", &IBISModel::cref},
    {"Rref", "Ohm", &IBISModel::rref},
    {"Vref", "V", &IBISModel::vref},
    {"Rref_diff", "Ohm", &IBISModel::rrefDiff},
    {"Cref_diff", "F", &IBISModel::crefDiff},
    {"TTgnd", "s", &IBISModel::ttgnd},
    {"TTpower", "s", &IBISModel::ttpower},
    {"Rgnd", "Ohm", &IBISModel::rgnd},
    {"Rpower", "Ohm", &IBISModel::rpower},
    {"Rac", "Ohm", &IBISModel::rac},
    {"Cac", "F", &IBISModel::cac},
};

constexpr SeriesValue elements[] = {
    {"R Series", "Ohm", &IBISSeriesElements::rSeries},
    {"L Series", "H", &IBISSeriesElements::lSeries},
    {"Rl Series", "Ohm", &IBISSeriesElements::r1Series},
    {"C Series", "F", &IBISSeriesElements::cSeries},
    {"Lc Series", "H", &IBISSeriesElements::lcSeries},
    {"Rc Series", "Ohm", &IBISSeriesElements::rcSeries},
};

void addWaveforms(std::vector<NamedWaveform>& all, const std::string& edge,
                  const std::vector<IBISWaveform>& list) {
  std::size_t number = 0;
  for (const IBISWaveform& each : list) {
    all.push_back({.name = edge + std::to_string(++number), .waveform = &each});
  }
}

}  // namespace

std::span<const ModelValue> modelValues() { return values; }

std::span<const SeriesValue> seriesValues() { return elements; }

bool isDefault(const IBISTriple& triple) {
  return !triple.present && (triple.typ != 0.0 || triple.max != 0.0 || triple.min != 0.0);
}

std::vector<NamedTable> namedTables(const IBISModel& model) {
  std::vector<NamedTable> tables;
  const auto add = [&](std::string name, const IBISTable& table) {
    if (table.present) tables.push_back({.name = std::move(name), .table = &table});
  };
  add("pulldown", model.pulldown);
  add("pullup", model.pullup);
  add("gnd_clamp", model.gndClamp);
  add("power_clamp", model.powerClamp);
  add("series_current_on", model.seriesCurrentOn);
  add("series_current_off", model.seriesCurrentOff);
  const auto addMosfets = [&](const std::string& name, const auto& list) {
    std::size_t number = 0;
    for (const IBISSeriesMosfet& each : list) add(name + std::to_string(++number), each.table);
  };
  addMosfets("series_mosfet_on_", model.seriesMosfetOn);
  addMosfets("series_mosfet_off_", model.seriesMosfetOff);
  return tables;
}

std::vector<NamedWaveform> namedWaveforms(const IBISModel& model) {
  std::vector<NamedWaveform> all;
  addWaveforms(all, "rising_", model.risingWaveforms);
  addWaveforms(all, "falling_", model.fallingWaveforms);
  return all;
}

const char* polarityOf(const IBISModel& model) {
  constexpr const char* polarities[] = {"Non-Inverting", "Inverting"};
  const bool isKnown = hasPolarity(model.type) && model.polarity < 2;
  return isKnown ? polarities[model.polarity] : nullptr;
}

const char* enableOf(const IBISModel& model) {
  constexpr const char* enables[] = {"Active-High", "Active-Low"};
  const bool isKnown = hasEnable(model.type) && model.enable < 2;
  return isKnown ? enables[model.enable] : nullptr;
}

IBISTriple slopeOf(const IBISTriple& swing, const IBISTriple& time) {
  IBISTriple slope{.typ = swing.typ / time.typ,
                   .max = swing.max / time.max,
                   .min = swing.min / time.min,
                   .missing = swing.missing};
  for (const int corner : {corner::typ, corner::min, corner::max}) {
    if (!std::isfinite(slope.at(corner))) slope.missing.set(corner);
    if (!slope.missing.at(corner)) slope.present = true;
  }
  return slope;
}

bool hasRamp(const IBISTriple& time) {
  return time.typ != 0.0 || time.min != 0.0 || time.max != 0.0;
}

}  // namespace ibis::cli
