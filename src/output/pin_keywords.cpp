#include "model/model_types.h"
#include "output/loop_keywords.h"
#include "output/loop_objects.h"

namespace ibis {
namespace {

// A pin of a component that was not prepared has none.
const IBISModel* modelOf(const ForEachPin& loop) {
  return loop.pin != nullptr ? loop.pin->model : nullptr;
}

ModelType typeOf(const ForEachPin& loop) {
  const IBISModel* model = modelOf(loop);
  return model != nullptr ? model->type : ModelType::unknown;
}

const IBISPin* invertedPinOf(const ForEachPin& loop) {
  return loop.entry != nullptr ? loop.entry->invertedPin : nullptr;
}

const char* polarityText(const ForEachPin& loop) {
  const IBISModel* model = modelOf(loop);
  if (model == nullptr) return "Undefined";
  switch (model->polarity) {
    case 0:
      return "NonInverting";
    case 1:
      return "Inverting";
    default:
      return "Undefined";
  }
}

template <IBISString IBISPin::*text>
void writePinText(const ForEachPin& loop, OutputStream& out, std::int32_t) {
  out.write(loop.pin->*text);
}

template <IBISTriple (IBISPin::*triple)() const>
void writePinTriple(const ForEachPin& loop, OutputStream& out, std::int32_t) {
  writeTriple(out, (loop.pin->*triple)(), valueDigits);
}

using PinValue = LoopValueRow<ForEachPin>;

// keyword, whether the blanks held back are written, writer
constexpr PinValue values[] = {
    {"pincomponentname", true,
     [](const ForEachPin& loop, OutputStream& out, std::int32_t) {
       out.write(loop.component.name);
     }},
    {"name", true, writePinText<&IBISPin::name>},
    {"signalname", false, writePinText<&IBISPin::signal_name>},
    {"spicename", false, writePinText<&IBISPin::spiceName>},
    {"spicename_inv", false,
     [](const ForEachPin& loop, OutputStream& out, std::int32_t) {
       const IBISPin* inverted = invertedPinOf(loop);
       if (inverted != nullptr) out.write(inverted->spiceName);
     }},
    {"vdiff", false,
     [](const ForEachPin& loop, OutputStream& out, std::int32_t) {
       const IBISDiffPin* row = loop.entry != nullptr ? loop.entry->diffPin : nullptr;
       if (row != nullptr) out.writeNumber(row->vdiff, shortDigits);
     }},
    {"spicemodel", false,
     [](const ForEachPin& loop, OutputStream& out, std::int32_t) {
       const IBISModel* model = modelOf(loop);
       if (model != nullptr) out.write(model->spiceName);
     }},
    {"type", false,
     [](const ForEachPin& loop, OutputStream& out, std::int32_t) {
       out.write(typeText(typeOf(loop)));
     }},
    {"pinmodelname", false, writePinText<&IBISPin::model_name>},
    {"cap", true, writePinTriple<&IBISPin::C_pin>},
    {"ind", true, writePinTriple<&IBISPin::L_pin>},
    {"res", true, writePinTriple<&IBISPin::R_pin>},
    {"polarity", false,
     [](const ForEachPin& loop, OutputStream& out, std::int32_t) {
       out.write(polarityText(loop));
     }},
};

template <bool (*holds)(ModelType)>
bool typeHolds(const ForEachPin& loop, const KeywordArguments&) {
  return holds(typeOf(loop));
}

using PinCondition = LoopConditionRow<ForEachPin>;

// keyword, test
constexpr PinCondition conditions[] = {
    {"iftype",
     [](const ForEachPin& loop, const KeywordArguments& arguments) {
       const std::string_view type = arguments.size() > 1 ? arguments[1].view() : "";
       return typeText(typeOf(loop)) == type;
     }},
    {"ifhasoutput", typeHolds<hasOutput>},
    {"ifhasinput", typeHolds<hasInput>},
    {"ifhasenable", typeHolds<hasEnable>},
    {"ifisdiff", [](const ForEachPin& loop,
                    const KeywordArguments&) { return invertedPinOf(loop) != nullptr; }},
};

}  // namespace

LoopWord ForEachPin::word(std::string_view keywordText) const {
  return findWord(std::span<const PinValue>(values), std::span<const PinCondition>(conditions),
                  keywordText);
}

const void* ForEachPin::kind() const { return &values; }

bool ForEachOfPins::next() {
  if (pin == &component.pins.back()) return false;
  ++pin;
  return true;
}

ForEachOfEntries::ForEachOfEntries(const IBISComponent& owner, std::optional<ModelType> type,
                                   Halves halves)
    : ForEachPin(owner.pinEntries.front(), owner), type_(type), halves_(halves) {
  showFrom(0);
}

bool ForEachOfEntries::next() { return showFrom(index_ + 1); }

void ForEachOfEntries::rewind() { showFrom(0); }

bool ForEachOfEntries::exist(const IBISComponent& owner, std::optional<ModelType> type) {
  return find(owner, type, 0) < owner.pinEntries.size();
}

// The index of the first entry of the type from an index on, or the number of entries.
std::size_t ForEachOfEntries::find(const IBISComponent& owner, std::optional<ModelType> type,
                                   std::size_t index) {
  const std::vector<IBISPinEntry>& entries = owner.pinEntries;
  while (index < entries.size() && type && entries[index].model->type != *type) ++index;
  return index;
}

// Half a pair may count as a single pin, whatever its entry says.
bool ForEachOfEntries::showFrom(std::size_t index) {
  index = find(component, type_, index);
  if (index >= component.pinEntries.size()) return false;
  index_ = index;
  entry = &component.pinEntries[index];
  pin = entry->pin;
  if (halves_ == Halves::asSingles && !entry->isPair()) entry = nullptr;
  return true;
}

}  // namespace ibis
