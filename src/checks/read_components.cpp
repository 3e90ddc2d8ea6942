#include <algorithm>

#include "checks/section_readers.h"
#include "checks/value_reader.h"
#include "ibis/ibis_string.h"

namespace ibis::checks {
namespace {

constexpr std::string_view packageWords[] = {"R_pkg", "L_pkg", "C_pkg"};

class ComponentReader : private ValueReader {
 public:
  using ValueReader::ValueReader;

  void read(const Section& part) {
    ComponentView& component = view_.components.emplace_back();
    component.section = section_;
    component.name = part.name;
    component.isAfterEnd = part.isAfterEnd;
    component.spot = view_.argumentSpot(view_.block(part.firstBlock));
    for (const Block& block : view_.syntax.blocksOf(part)) {
      if (block.keyword == nullptr) continue;
      const std::string_view name = block.keyword->name;
      if (name == "Package") readPackage(component, block);
      if (name == "Pin") readPins(component, block);
      if (name == "Diff Pin") readDiffPins(component, block);
      if (name == "Package Model") {
        component.packageModel = block.argument;
        component.packageModelSpot = view_.argumentSpot(block);
      }
    }
  }

 private:
  void readPackage(ComponentView& component, const Block& block) {
    const std::uint32_t index = component.package = view_.indexOf(block);
    for (const SourceLine& line : view_.syntax.linesOf(block)) {
      const Words words = view_.syntax.words(line);
      const std::string_view name = knownWord(line, words, packageWords, index);
      if (name.empty()) continue;
      const Triple value =
          triple(line, words.subspan(1), index, std::string(name), " would be taken from typ");
      checkTyp(value, std::string(name), Rule::packageTypNa);
      component.packageValues.insert_or_assign(name, value);
    }
  }
  void readPins(ComponentView& component, const Block& block) {
    const std::uint32_t index = view_.indexOf(block);
    readColumns(component, view_.syntax.words(view_.syntax.headOf(block)));
    for (const SourceLine& line : view_.syntax.linesOf(block)) {
      const Words words = view_.syntax.words(line);
      if (words.empty()) continue;
      PinView pin{.name = words[0].text, .spot = view_.spotOf(line, words[0], index)};
      pin.line = static_cast<std::uint32_t>(&line - view_.syntax.lines().data());
      if (words.size() > component.signalColumn) pin.signal = words[component.signalColumn].text;
      if (words.size() > component.modelColumn) {
        const Word& model = words[component.modelColumn];
        pin.model = model.text;
        pin.modelSpot = view_.spotOf(line, model, index);
      }
      component.pinByName.add(pin.name, static_cast<std::uint32_t>(component.pins.size()));
      component.pins.push_back(pin);
    }
  }

  // A load goes by the names of the columns, in whatever order they stand.
  static void readColumns(ComponentView& component, Words words) {
    const auto columnOf = [&](std::string_view name) {
      const auto found = std::ranges::find_if(
          words, [&](const Word& word) { return equalIgnoringCase(word.text, name); });
      return static_cast<std::size_t>(found - words.begin()) + 1;
    };
    const std::size_t signal = columnOf("signal_name");
    const std::size_t model = columnOf("model_name");
    component.hasKnownColumns = signal <= words.size() && model <= words.size();
    if (!component.hasKnownColumns) return;
    component.signalColumn = signal;
    component.modelColumn = model;
  }

  void readDiffPins(ComponentView& component, const Block& block) {
    for (const SourceLine& line : view_.syntax.linesOf(block)) {
      const Words words = view_.syntax.words(line);
      if (words.size() < 2) continue;
      component.diffPins.push_back(
          {.pin = words[0].text,
           .inverted = words[1].text,
           .line = static_cast<std::uint32_t>(&line - view_.syntax.lines().data())});
    }
  }
};

class SelectorReader : private ValueReader {
 public:
  using ValueReader::ValueReader;

  void read(const Section& part) {
    SelectorView& selector = view_.selectors.emplace_back();
    const Block& head = view_.block(part.firstBlock);
    selector.section = section_;
    selector.name = part.name;
    selector.isAfterEnd = part.isAfterEnd;
    selector.spot = view_.argumentSpot(head);
    for (const SourceLine& line : view_.syntax.linesOf(head)) {
      const Words words = view_.syntax.words(line);
      if (words.empty()) continue;
      std::string_view rest;
      if (words.size() > 1) {
        const std::size_t begin = static_cast<std::size_t>(words[1].column) - 1;
        const std::size_t end =
            static_cast<std::size_t>(words.back().column) - 1 + words.back().text.size();
        rest = line.whole.substr(begin, end - begin);
      }
      selector.rows.push_back({.model = words[0].text,
                               .description = rest,
                               .spot = view_.spotOf(line, words[0], part.firstBlock)});
    }
  }
};

}  // namespace

void readComponent(View& view, Findings& findings, std::uint32_t section) {
  ComponentReader(view, findings, section).read(view.syntax.sections()[section]);
}

void readSelector(View& view, Findings& findings, std::uint32_t section) {
  SelectorReader(view, findings, section).read(view.syntax.sections()[section]);
}

}  // namespace ibis::checks
