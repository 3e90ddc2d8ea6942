#include <algorithm>
#include <cmath>
#include <limits>

#include "model/estimate_waveforms.h"
#include "model/strings/data_strings.h"
#include "model/waveform.h"
#include "output/loop_keywords.h"
#include "output/loop_objects.h"

namespace ibis {
namespace {

// Rounds towards zero; a value that no 32-bit integer holds becomes the smallest one.
std::int32_t truncated(double value) {
  constexpr std::int32_t smallest = std::numeric_limits<std::int32_t>::min();
  constexpr double beyond = 2147483648.0;
  const double whole = std::trunc(value);
  return whole >= -beyond && whole < beyond ? static_cast<std::int32_t>(whole) : smallest;
}

std::int32_t singlePins(const IBISComponent& component) {
  return static_cast<std::int32_t>(std::ranges::count_if(
      component.pinEntries, [](const IBISPinEntry& entry) { return !entry.isPair(); }));
}

void writeWithoutQuotes(OutputStream& out, std::string_view text) {
  for (const char c : text) {
    if (c != '"' && c != '\'') out.write(c);
  }
}

const char* transitionText(std::int32_t transition) {
  switch (transition) {
    case ForEachWaveform::rising:
      return "rising";
    case ForEachWaveform::falling:
      return "falling";
    default:
      return "unknown";
  }
}

template <class Object>
LoopWord findValue(std::span<const LoopValueRow<Object>> values, std::string_view keyword) {
  return findWord(values, std::span<const LoopConditionRow<Object>>(), keyword);
}

using ComponentValue = LoopValueRow<ForEachComponent>;

// In this and the tables below: keyword, whether the blanks held back are written, writer.
constexpr ComponentValue componentValues[] = {
    {"name", true,
     [](const ForEachComponent& loop, OutputStream& out, std::int32_t) {
       out.write(loop.component.name);
     }},
    {"spicename", true,
     [](const ForEachComponent& loop, OutputStream& out, std::int32_t) {
       out.write(loop.component.spiceName);
     }},
    {"numpins", true,
     [](const ForEachComponent& loop, OutputStream& out, std::int32_t) {
       out.writeInteger(singlePins(loop.component));
     }},
    {"packagemodel", true,
     [](const ForEachComponent& loop, OutputStream& out, std::int32_t) {
       out.write(loop.component.packageModelName);
     }},
};

using SelectorValue = LoopValueRow<ForEachModelSelector>;

constexpr SelectorValue selectorValues[] = {
    {"pinmodel", true,
     [](const ForEachModelSelector& loop, OutputStream& out, std::int32_t) {
       out.write(loop.selectorName);
     }},
    {"ibismodel", true,
     [](const ForEachModelSelector& loop, OutputStream& out, std::int32_t) {
       out.write(loop.row.modelName);
     }},
    {"selectorstring", true,
     [](const ForEachModelSelector& loop, OutputStream& out, std::int32_t) {
       writeWithoutQuotes(out, loop.row.description);
     }},
    {"modeltype", true,
     [](const ForEachModelSelector& loop, OutputStream& out, std::int32_t) {
       out.write(loop.modelType);
     }},
};

using UserSelectorValue = LoopValueRow<ForEachUserModelSelector>;

constexpr UserSelectorValue userSelectorValues[] = {
    {"username", true,
     [](const ForEachUserModelSelector& loop, OutputStream& out, std::int32_t) {
       out.write(loop.userName);
     }},
};

using WaveformValue = LoopValueRow<ForEachWaveform>;

constexpr WaveformValue waveformValues[] = {
    {"transition", true,
     [](const ForEachWaveform& loop, OutputStream& out, std::int32_t) {
       out.write(transitionText(loop.transition));
     }},
    {"spicepairs", true,
     [](const ForEachWaveform& loop, OutputStream& out, std::int32_t column) {
       const IBISWaveform& waveform = loop.waveform();
       if (waveform.estimate) {
         writeWaveformTypPairs(withPoints(waveform, 1), out, column);
       } else {
         writeWaveformTypPairs(waveform, out, column);
       }
     }},
    {"spicemodelname", true,
     [](const ForEachWaveform& loop, OutputStream& out, std::int32_t) {
       out.write(loop.model.spiceName);
     }},
    {"vfixture", true,
     [](const ForEachWaveform& loop, OutputStream& out, std::int32_t) {
       out.writeNumber(fixtureVoltages(loop.waveform()).typ, valueDigits);
     }},
    {"rfixture", true,
     [](const ForEachWaveform& loop, OutputStream& out, std::int32_t) {
       out.writeNumber(fixtureResistance(loop.waveform()).value, valueDigits);
     }},
    {"rfixturestring", true,
     [](const ForEachWaveform& loop, OutputStream& out, std::int32_t) {
       out.writeInteger(truncated(fixtureResistance(loop.waveform()).value));
     }},
    {"vfixturestring", true,
     [](const ForEachWaveform& loop, OutputStream& out, std::int32_t) {
       out.writeInteger(truncated(fixtureVoltages(loop.waveform()).typ));
     }},
    {"index", true,
     [](const ForEachWaveform& loop, OutputStream& out, std::int32_t) {
       out.writeInteger(loop.index);
     }},
};

using DiffPinValue = LoopValueRow<ForEachDiffPin>;

constexpr DiffPinValue diffPinValues[] = {
    {"noninvpin", true,
     [](const ForEachDiffPin& loop, OutputStream& out, std::int32_t) { out.write(loop.row.pin); }},
    {"invpin", true,
     [](const ForEachDiffPin& loop, OutputStream& out, std::int32_t) {
       out.write(loop.row.inv_pin);
     }},
    {"diffv", true,
     [](const ForEachDiffPin& loop, OutputStream& out, std::int32_t) {
       out.writeNumber(loop.row.vdiff, shortDigits);
     }},
};

}  // namespace

LoopWord ForEachComponent::word(std::string_view keywordText) const {
  return findValue(std::span<const ComponentValue>(componentValues), keywordText);
}

const void* ForEachComponent::kind() const { return &componentValues; }

LoopWord ForEachModelSelector::word(std::string_view keywordText) const {
  return findValue(std::span<const SelectorValue>(selectorValues), keywordText);
}

const void* ForEachModelSelector::kind() const { return &selectorValues; }

LoopWord ForEachUserModelSelector::word(std::string_view keywordText) const {
  return findValue(std::span<const UserSelectorValue>(userSelectorValues), keywordText);
}

const void* ForEachUserModelSelector::kind() const { return &userSelectorValues; }

LoopWord ForEachWaveform::word(std::string_view keywordText) const {
  return findValue(std::span<const WaveformValue>(waveformValues), keywordText);
}

const void* ForEachWaveform::kind() const { return &waveformValues; }

const IBISWaveform& ForEachWaveform::waveform() const {
  const auto& list = transition == rising ? model.risingWaveforms : model.fallingWaveforms;
  return list[static_cast<std::size_t>(index)];
}

LoopWord ForEachDiffPin::word(std::string_view keywordText) const {
  return findValue(std::span<const DiffPinValue>(diffPinValues), keywordText);
}

const void* ForEachDiffPin::kind() const { return &diffPinValues; }

}  // namespace ibis
