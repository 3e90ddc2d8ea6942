#include "finite_checks.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <span>

#include "messages.h"
#include "model/model_types.h"
#include "model_checks.h"
#include "output/loop_objects.h"
#include "output/stream/memory_sink.h"

namespace ibis::cli {
namespace {

// condition  keyword of the library's template under which it writes a value; empty for always
// keyword    keyword for the value
// what       the value's name for a person
struct WrittenValue {
  std::string_view condition;
  std::string_view keyword;
  const char* what;
};

constexpr WrittenValue libraryValues[] = {
    {"", "ccomp", "C_comp"},
    {"ifhasivdata", "pullupref", "the pullup reference"},
    {"ifhasivdata", "pulldownref", "the pulldown reference"},
    {"ifhaswaveforms", "rfixture", "R_fixture"},
    {"ifhaswaveforms", "vfixture", "V_fixture"},
    {"ifhasinput", "vinl", "Vinl"},
    {"ifhasinput", "vinh", "Vinh"},
};

constexpr WrittenValue scriptValues[] = {
    {"", "gndclampref", "the GND clamp reference"},
    {"", "pulldownref", "the pulldown reference"},
    {"", "powerclampref", "the POWER clamp reference"},
    {"", "pullupref", "the pullup reference"},
};

constexpr const char* pairThreshold = "the vdiff of a pair";

// The names of what is not finite, one after the other.
class Findings {
 public:
  void add(const char* what) { names_.emplace_back(what); }
  bool empty() const { return names_.empty(); }

  // As the subject and verb of a sentence.
  std::string text() const {
    std::string joined = names_.front();
    for (std::size_t i = 1; i < names_.size(); ++i) {
      joined += (i + 1 == names_.size() ? " and " : ", ") + names_[i];
    }
    return joined + (names_.size() == 1 ? " is" : " are");
  }

 private:
  std::vector<std::string> names_;
};

bool isFinite(const IBISTriple& triple) {
  return std::isfinite(triple.typ) && std::isfinite(triple.min) && std::isfinite(triple.max);
}

// Asks the library's own writer, so that a value counts as it is written.
bool isWrittenFinite(const ForEachModel& loop, const WrittenValue& value) {
  if (!value.condition.empty() && !loop.evaluate(value.condition, {})) return true;
  MemorySink sink;
  const std::unique_ptr<OutputStream> out = OutputStream::open(sink, "value");
  TextBuffer text;
  loop.value(value.keyword, out.get(), {}, text);
  return !out->hasNonFinite();
}

void addValues(const IBISModel& model, std::span<const WrittenValue> values, Findings& findings) {
  const ForEachModel loop(model);
  for (const WrittenValue& value : values) {
    if (!isWrittenFinite(loop, value)) findings.add(value.what);
  }
}

using Diagnostics = std::vector<Diagnostic>;

void tellOfModel(const IBISModel& model, const Findings& findings, const std::string& file,
                 Diagnostics& told) {
  if (findings.empty()) return;
  told.push_back(tell(Severity::warning, message::valueNotFinite, model.lineNumber,
                      model.name.str().c_str(), findings.text().c_str(), file.c_str()));
}

void tellOfComponent(const IBISComponent& component, const Findings& findings,
                     const std::string& file, Diagnostics& told) {
  if (findings.empty()) return;
  told.push_back(tell(Severity::warning, message::componentValueNotFinite,
                      component.name.str().c_str(), findings.text().c_str(), file.c_str()));
}

// A pair's threshold stands beside the devices of these types alone.
constexpr ModelType receivers[] = {
    ModelType::input,
    ModelType::inputOutput,
    ModelType::inputOutputOpenDrain,
    ModelType::inputOutputOpenSource,
    ModelType::inputOutputEcl,
};

bool hasWrittenThreshold(const IBISPinEntry& entry) {
  return entry.isPair() && entry.diffPin != nullptr &&
         std::ranges::find(receivers, entry.model->type) != std::end(receivers);
}

void checkLibrary(const IBISComponent& component, const std::string& file, Diagnostics& told) {
  Findings ofPairs;
  if (std::ranges::any_of(component.pinEntries, [](const IBISPinEntry& entry) {
        return hasWrittenThreshold(entry) && !std::isfinite(entry.diffPin->vdiff);
      })) {
    ofPairs.add(pairThreshold);
  }
  tellOfComponent(component, ofPairs, file, told);
  for (const IBISModel* model : component.models) {
    if (isBuiltIn(model->type)) continue;
    Findings findings;
    if (!hasFiniteData(*model)) findings.add("a table or waveform value");
    addValues(*model, libraryValues, findings);
    tellOfModel(*model, findings, file, told);
  }
}

void checkPins(const IBISComponent& component, const std::string& file, Diagnostics& told) {
  Findings findings;
  const auto look = [&](IBISTriple (IBISPin::*value)() const, const char* what) {
    const auto isOdd = [&](const IBISPin& pin) { return !isFinite((pin.*value)()); };
    if (std::ranges::any_of(component.pins, isOdd)) findings.add(what);
  };
  look(&IBISPin::L_pin, "the L of a pin");
  look(&IBISPin::C_pin, "the C of a pin");
  look(&IBISPin::R_pin, "the R of a pin");
  tellOfComponent(component, findings, file, told);
}

void checkPackageModel(const IBISPackageModel& model, const std::string& file, Diagnostics& told) {
  Findings findings;
  const auto look = [&](const std::vector<IBISMatrixEntry>& matrix, const char* what) {
    const auto isOdd = [&](const IBISMatrixEntry& entry) {
      return entry.row >= 1 && entry.row <= model.numberOfPins && !std::isfinite(entry.value);
    };
    if (std::ranges::any_of(matrix, isOdd)) findings.add(what);
  };
  look(model.capacitance, "a capacitance");
  look(model.inductance, "an inductance");
  look(model.resistance, "a resistance");
  if (findings.empty()) return;
  told.push_back(tell(Severity::warning, message::packageValueNotFinite, model.line,
                      model.name.str().c_str(), findings.text().c_str(), file.c_str()));
}

void checkPackage(const Load& load, const std::string& file, Diagnostics& told) {
  const IBISComponent& component = *load.chosenComponent();
  if (component.packageModelName.empty()) {
    checkPins(component, file, told);
  } else if (const IBISPackageModel* model =
                 findPackageModel(load.file().data(), component.packageModelName)) {
    checkPackageModel(*model, file, told);
  }
}

void checkScript(const Load& load, const std::string& file, Diagnostics& told) {
  const IBISComponent& component = *load.chosenComponent();
  Findings ofPairs;
  const auto isOdd = [](const IBISDiffPin& row) { return !std::isfinite(row.vdiff); };
  if (std::ranges::any_of(component.diffPins, isOdd)) ofPairs.add(pairThreshold);
  tellOfComponent(component, ofPairs, file, told);
  for (const auto& model : load.file().data().models) {
    Findings findings;
    addValues(*model, scriptValues, findings);
    tellOfModel(*model, findings, file, told);
  }
}

}  // namespace

std::vector<Diagnostic> checkFinite(const Load& load, const std::string& file) {
  Diagnostics told;
  if (load.mode() == OutputMode::package) checkPackage(load, file, told);
  const std::vector<std::string>& odd = load.nonFiniteFiles();
  if (std::ranges::find(odd, file) == odd.end()) return told;
  if (load.mode() == OutputMode::model) checkLibrary(*load.chosenComponent(), file, told);
  if (load.mode() == OutputMode::script) checkScript(load, file, told);
  return told;
}

}  // namespace ibis::cli
