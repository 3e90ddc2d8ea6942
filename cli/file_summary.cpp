#include "file_summary.h"

#include <algorithm>

#include "reader/text/name_index.h"

namespace ibis::cli {
namespace {

void addUser(std::vector<PinGroup>& groups, const IBISComponent& component, const IBISPin& pin) {
  if (groups.empty() || groups.back().component != &component) {
    groups.push_back({.component = &component, .pins = {}});
  }
  groups.back().pins.push_back(&pin);
}

class Summarizer {
 public:
  explicit Summarizer(const TolerantReading& reading) : file_(reading.document->file()) {
    const Refusals refusals(file_, reading.leftOut);
    for (const auto& model : file_.models) {
      if (model->lineNumber == 0) continue;
      places_.add(model->name, summary_.models.size());
      summary_.models.push_back({.model = model.get(),
                                 .selectors = {},
                                 .users = {},
                                 .reasons = refusals.against(*model)});
    }
    for (const IBISModelSelector& selector : file_.modelSelectors) addSelector(selector);
    for (const auto& component : file_.components) addPins(*component);
  }

  FileSummary take() { return std::move(summary_); }

 private:
  void addSelector(const IBISModelSelector& selector) {
    selectorPlaces_.add(selector.name, summary_.selectors.size());
    summary_.selectors.push_back({.selector = &selector, .users = {}});
    for (const IBISModelSelectorRow& row : selector.rows) {
      if (const std::size_t* place = places_.find(row.modelName)) {
        auto& list = summary_.models[*place].selectors;
        if (list.empty() || list.back() != &selector) list.push_back(&selector);
      }
    }
  }

  void addPins(const IBISComponent& component) {
    for (const IBISPin& pin : component.pins) {
      if (const std::size_t* place = places_.find(pin.model_name)) {
        addUser(summary_.models[*place].users, component, pin);
      } else if (const std::size_t* selector = selectorPlaces_.find(pin.model_name)) {
        addUser(summary_.selectors[*selector].users, component, pin);
      }
    }
  }

  const IBISFileData& file_;
  FileSummary summary_;
  NameMap<ExactCase, std::size_t> places_;          // the first model of each name
  NameMap<ExactCase, std::size_t> selectorPlaces_;  // likewise
};

}  // namespace

FileSummary summarize(const TolerantReading& reading) { return Summarizer(reading).take(); }

std::size_t pinCount(const std::vector<PinGroup>& groups) {
  std::size_t count = 0;
  for (const PinGroup& group : groups) count += group.pins.size();
  return count;
}

std::vector<const IBISPin*> pinsWithoutModel(const IBISComponent& component) {
  std::vector<const IBISPin*> pins;
  for (const IBISPin& pin : component.pins) {
    if (pin.model == nullptr || !pin.model->isSound) pins.push_back(&pin);
  }
  return pins;
}

const char* waveformOrigin(const IBISModel& model) {
  if (model.risingWaveforms.empty() && model.fallingWaveforms.empty()) return "none";
  const auto isEstimated = [](const IBISWaveform& waveform) {
    return waveform.kind != IBISWaveform::fromFile;
  };
  const bool any = std::ranges::any_of(model.risingWaveforms, isEstimated) ||
                   std::ranges::any_of(model.fallingWaveforms, isEstimated);
  return any ? "estimated" : "given";
}

const IBISTriple* supplyOf(const IBISModel& model) {
  for (const IBISTriple* triple :
       {&model.voltageRange, &model.pullupReference, &model.powerClampReference}) {
    if (triple->present) return triple;
  }
  return nullptr;
}

}  // namespace ibis::cli
