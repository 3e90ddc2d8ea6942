#include <cmath>

#include "checks/section_readers.h"
#include "checks/value_reader.h"
#include "ibis/ibis_string.h"

namespace ibis::checks {
namespace {

constexpr std::string_view rampWords[] = {"dV/dt_r", "dV/dt_f", "R_load"};

class RampReader : private ValueReader {
 public:
  using ValueReader::ValueReader;

  void read(ModelView& model, const Block& block) {
    model.ramp = view_.indexOf(block);
    for (const SourceLine& line : view_.syntax.linesOf(block)) {
      const Words words = view_.syntax.words(line);
      const std::string_view name = knownWord(line, words, rampWords, model.ramp);
      if (name == "R_load") {
        model.rLoad = single(line, words.subspan(1), model.ramp, "R_load");
      } else if (!name.empty()) {
        readEdge(model.edges[name == "dV/dt_r" ? 0 : 1], name, line, words.subspan(1), model.ramp);
      } else if (!words.empty() && isCounted()) {
        tellUnknownParameter(line, words[0], model.ramp, rampWords);
      }
    }
  }

 private:
  void readEdge(RampEdge& edge, std::string_view name, const SourceLine& line, Words values,
                std::uint32_t block) {
    edge.given = true;
    const std::string label(name);
    if (values.empty()) return tellMissingValue(line, block, label);
    for (std::size_t c = 0; c < corners && c < values.size(); ++c) {
      edge.words[c] = values[c].text;
      edge.spots[c] = view_.spotOf(line, values[c], block);
      readRatio(edge, c, label, line, values[c], block);
    }
    if (values.size() < corners && isCounted()) {
      findings_
          .add(Rule::numericMissingColumn, view_.spotOf(line, block),
               {label, std::to_string(values.size()), "3",
                std::string(values.size() == 2 ? "max" : "min and max") +
                    " would be taken from typ"})
          .diagnostic.severity = Severity::warning;
    }
  }

  void readRatio(RampEdge& edge, std::size_t c, const std::string& label, const SourceLine& line,
                 const Word& word, std::uint32_t block) {
    const std::size_t slash = word.text.find('/');
    const bool isNA = equalIgnoringCase(word.text, "NA");
    if (isNA && c != typ) return;
    const std::string_view first = word.text.substr(0, slash);
    const std::string_view second = slash == word.text.npos ? "" : word.text.substr(slash + 1);
    const NumberWord dv = readNumberWord(first);
    const NumberWord dt = readNumberWord(second);
    if (isNA || std::isnan(dv.value) || std::isnan(dt.value)) {
      if (isCounted()) {
        findings_.addOnce(Rule::modelRampForm, view_.spotOf(line, word, block),
                          {label, std::string(word.text)});
      }
      return;
    }
    const auto tell = [&](const NumberWord& part, std::string_view text) {
      if (part.fault <= NumberFault::notAvailable) return;
      tellFault(part, view_.spotOf(line, word, block), text, label, {});
    };
    tell(dv, first);
    tell(dt, second);
    edge.dv[c] = dv.value;
    edge.dt[c] = dt.value;
  }
};

}  // namespace

void readRamp(View& view, Findings& findings, std::uint32_t section, const Block& block) {
  RampReader(view, findings, section).read(view.models.back(), block);
}

}  // namespace ibis::checks
