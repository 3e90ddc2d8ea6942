#include <algorithm>

#include "model/estimate_waveforms.h"
#include "model/model_types.h"
#include "model/strings/data_strings.h"
#include "model/waveform.h"
#include "output/loop_keywords.h"
#include "output/loop_objects.h"

namespace ibis {
namespace {

bool hasPulldown(const IBISModel& model) {
  return model.pulldown.present && needsPulldown(model.type);
}

bool hasPullup(const IBISModel& model) { return model.pullup.present && needsPullup(model.type); }

void writePlain(const ForEachModel&, OutputStream&, std::int32_t) {}

template <IBISTable IBISModel::*table>
void writePoints(const ForEachModel& loop, OutputStream& out, std::int32_t column) {
  writeTypPairs(loop.model.*table, out, column);
}

template <IBISTable IBISModel::*table>
void writePointCount(const ForEachModel& loop, OutputStream& out, std::int32_t) {
  out.writeInteger((loop.model.*table).voltage.size());
}

template <IBISTable IBISModel::*first, IBISTable IBISModel::*second>
void writeTwoTables(const ForEachModel& loop, OutputStream& out, std::int32_t column) {
  writeTableCorners(loop.model.*first, out, column, true);
  writeTableCorners(loop.model.*second, out, column, false);
}

template <IBISTriple IBISModel::*triple, int digits>
void writeModelTriple(const ForEachModel& loop, OutputStream& out, std::int32_t) {
  writeTriple(out, loop.model.*triple, digits);
}

// Calls write for each selected waveform with whether it is the last.
template <class Write>
void forEachSelected(const IBISModel& model, Write write) {
  const WaveformSelection selection = selectWaveforms(model);
  for (int i = 0; i < selection.count; ++i) write(*selection.items[i], i + 1 == selection.count);
}

void writeWaveforms(const ForEachModel& loop, OutputStream& out, std::int32_t column) {
  forEachSelected(loop.model, [&](const IBISWaveform& waveform, bool isLast) {
    if (waveform.estimate) {
      writeWaveformCorners(withPoints(waveform), out, column, !isLast);
    } else {
      writeWaveformCorners(waveform, out, column, !isLast);
    }
  });
}

void writeWaveformSizes(const ForEachModel& loop, OutputStream& out, std::int32_t) {
  forEachSelected(loop.model, [&](const IBISWaveform& waveform, bool isLast) {
    out.writeInteger(waveform.estimate ? estimatedTimes(*waveform.estimate).size()
                                       : waveform.time.size());
    if (!isLast) out.write(", ");
  });
}

void writeFixtureResistances(const ForEachModel& loop, OutputStream& out, std::int32_t) {
  forEachSelected(loop.model, [&](const IBISWaveform& waveform, bool isLast) {
    const double resistance = fixtureResistance(waveform).value;
    writeTriple(out, {.typ = resistance, .max = resistance, .min = resistance}, shortDigits);
    if (!isLast) out.write(", ");
  });
}

void writeFixtureVoltages(const ForEachModel& loop, OutputStream& out, std::int32_t) {
  forEachSelected(loop.model, [&](const IBISWaveform& waveform, bool isLast) {
    writeTriple(out, fixtureVoltages(waveform), shortDigits);
    if (!isLast) out.write(", ");
  });
}

// Start and end are the latest of any waveform, so "start" is where the last one begins.
void writeWaveformTimes(const ForEachModel& loop, OutputStream& out, std::int32_t) {
  double start = 0.0;
  double end = 0.0;
  forEachSelected(loop.model, [&](const IBISWaveform& waveform, bool) {
    const YVector<double> made =
        waveform.estimate ? estimatedTimes(*waveform.estimate) : YVector<double>();
    const YVector<double>& time = waveform.estimate ? made : waveform.time;
    if (time.empty()) return;
    start = std::max(start, time[0]);
    end = std::max(end, time.last());
  });
  out.write("start=");
  out.writeNumber(start, shortDigits);
  out.write(", end=");
  out.writeNumber(end, shortDigits);
}

using ModelValue = LoopValueRow<ForEachModel>;

// keyword, whether the blanks held back are written, writer
constexpr ModelValue values[] = {
    {"name", true,
     [](const ForEachModel& loop, OutputStream& out, std::int32_t) { out.write(loop.model.name); }},
    {"spicename", true,
     [](const ForEachModel& loop, OutputStream& out, std::int32_t) {
       out.write(loop.model.spiceName);
     }},
    {"type", true,
     [](const ForEachModel& loop, OutputStream& out, std::int32_t) {
       out.write(typeText(loop.model.type));
     }},
    {"alttype", true,
     [](const ForEachModel& loop, OutputStream& out, std::int32_t) {
       out.write(alternativeTypeText(loop.model.type));
     }},
    {"diffsuffix", false, writePlain},
    {"pulldown", true, writePoints<&IBISModel::pulldown>},
    {"npulldown", true, writePointCount<&IBISModel::pulldown>},
    {"pullup", true, writePoints<&IBISModel::pullup>},
    {"npullup", true, writePointCount<&IBISModel::pullup>},
    {"ivdata", true, writeTwoTables<&IBISModel::pullup, &IBISModel::pulldown>},
    {"clampdata", true, writeTwoTables<&IBISModel::gndClamp, &IBISModel::powerClamp>},
    {"gndclamp", true, writePoints<&IBISModel::gndClamp>},
    {"ngndclamp", true, writePointCount<&IBISModel::gndClamp>},
    {"powerclamp", true, writePoints<&IBISModel::powerClamp>},
    {"npowerclamp", true, writePointCount<&IBISModel::powerClamp>},
    {"vinl", true, writeModelTriple<&IBISModel::vinl, valueDigits>},
    {"vinh", true, writeModelTriple<&IBISModel::vinh, valueDigits>},
    {"ccomp", true, writeModelTriple<&IBISModel::cComp, valueDigits>},
    {"polarity", true,
     [](const ForEachModel& loop, OutputStream& out, std::int32_t) {
       out.writeInteger(loop.model.polarity != 0);
     }},
    {"enable_polarity", true,
     [](const ForEachModel& loop, OutputStream& out, std::int32_t) {
       out.writeInteger(loop.model.enable != 0);
     }},
    {"waveforms", true, writeWaveforms},
    {"waveform_times", false, writeWaveformTimes},
    {"waveformsizes", true, writeWaveformSizes},
    {"rfixture", true, writeFixtureResistances},
    {"vfixture", true, writeFixtureVoltages},
    {"pullupref", true, writeModelTriple<&IBISModel::pullupReference, shortDigits>},
    {"pulldownref", true, writeModelTriple<&IBISModel::pulldownReference, shortDigits>},
    {"powerclampref", true, writeModelTriple<&IBISModel::powerClampReference, shortDigits>},
    {"gndclampref", true, writeModelTriple<&IBISModel::gndClampReference, shortDigits>},
};

template <bool (*holds)(ModelType)>
bool typeHolds(const ForEachModel& loop, const KeywordArguments&) {
  return holds(loop.model.type);
}

using ModelCondition = LoopConditionRow<ForEachModel>;

// keyword, test
constexpr ModelCondition conditions[] = {
    {"ifhaspullup",
     [](const ForEachModel& loop, const KeywordArguments&) { return hasPullup(loop.model); }},
    {"ifhaspulldown",
     [](const ForEachModel& loop, const KeywordArguments&) { return hasPulldown(loop.model); }},
    {"ifhasgndclamp",
     [](const ForEachModel& loop, const KeywordArguments&) { return loop.model.gndClamp.present; }},
    {"ifhaspowerclamp", [](const ForEachModel& loop,
                           const KeywordArguments&) { return loop.model.powerClamp.present; }},
    {"ifhasclamps",
     [](const ForEachModel& loop, const KeywordArguments&) {
       return loop.model.gndClamp.present || loop.model.powerClamp.present;
     }},
    {"ifhasivdata",
     [](const ForEachModel& loop, const KeywordArguments&) {
       return hasPullup(loop.model) || hasPulldown(loop.model);
     }},
    {"ifhasppoutput", typeHolds<hasPushPullOutput>},
    {"ifhasspicemodel",
     [](const ForEachModel& loop, const KeywordArguments&) { return !isBuiltIn(loop.model.type); }},
    {"ifhasinput", typeHolds<hasInput>},
    {"ifhaspolarity", typeHolds<hasPolarity>},
    {"ifhasenable", typeHolds<hasEnable>},
    {"ifhaswaveforms",
     [](const ForEachModel& loop, const KeywordArguments&) {
       return !loop.model.risingWaveforms.empty() || !loop.model.fallingWaveforms.empty();
     }},
};

}  // namespace

LoopWord ForEachModel::word(std::string_view keywordText) const {
  return findWord(std::span<const ModelValue>(values), std::span<const ModelCondition>(conditions),
                  keywordText);
}

const void* ForEachModel::kind() const { return &values; }

}  // namespace ibis
