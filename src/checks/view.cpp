#include "checks/view.h"

#include <algorithm>
#include <cmath>

#include "ibis/ibis_string.h"
#include "model/model_types.h"

namespace ibis::checks {
namespace {

const Triple noTriple;
const Single noSingle;

template <class Map, class Value>
const Value& valueOf(const Map& map, std::string_view name, const Value& none) {
  const auto found = map.find(name);
  return found == map.end() ? none : found->second;
}

double firstGiven(double a, double b) { return std::isnan(a) ? b : a; }

}  // namespace

bool Rows::hasCorner(std::size_t c) const {
  return std::ranges::any_of(y[c], [](double value) { return !std::isnan(value); });
}

const Triple& ModelView::triple(std::string_view name_) const {
  return valueOf(triples, name_, noTriple);
}
const Single& ModelView::single(std::string_view name_) const {
  return valueOf(singles, name_, noSingle);
}
const Triple& ModelView::specTriple(std::string_view name_) const {
  return valueOf(spec, name_, noTriple);
}

bool ModelView::isDriver() const { return hasOutput(type) && !isSeries(); }
bool ModelView::isInput() const { return hasInput(type); }

bool ModelView::isSeries() const {
  return type == ModelType::series || type == ModelType::seriesSwitch;
}

bool ModelView::isEcl() const {
  return type == ModelType::inputEcl || type == ModelType::outputEcl ||
         type == ModelType::inputOutputEcl || type == ModelType::threeStateEcl;
}

bool ModelView::isDiff() const {
  return type == ModelType::inputDiff || type == ModelType::outputDiff ||
         type == ModelType::inputOutputDiff || type == ModelType::threeStateDiff;
}

bool ModelView::isOpenDrain() const {
  return type == ModelType::openDrain || type == ModelType::inputOutputOpenDrain;
}

bool ModelView::isOpenSource() const {
  return type == ModelType::openSource || type == ModelType::inputOutputOpenSource;
}

bool ModelView::isElectrical() const {
  return !isEcl() && !isDiff() && !isSeries() && !hasExternalModel && !hasSchedule && !isAfterEnd &&
         type != ModelType::unknown;
}

double ModelView::pullupReference(std::size_t c) const {
  const Triple& own = triple("Pullup Reference");
  return own.given ? own.corner(c) : triple("Voltage Range").corner(c);
}

double ModelView::pulldownReference(std::size_t c) const {
  const Triple& own = triple("Pulldown Reference");
  return own.given ? own.corner(c) : 0.0;
}

double ModelView::powerClampReference(std::size_t c) const {
  const Triple& own = triple("POWER Clamp Reference");
  if (own.given) return own.corner(c);
  return firstGiven(triple("Voltage Range").corner(c), triple("Pullup Reference").corner(c));
}

double ModelView::gndClampReference(std::size_t c) const {
  const Triple& own = triple("GND Clamp Reference");
  return own.given ? own.corner(c) : 0.0;
}

double ModelView::supply() const { return std::abs(pullupReference(typ) - pulldownReference(typ)); }

Spot View::spotOf(const SourceLine& line, const Word& word, std::uint32_t index) const {
  return {.line = line.number,
          .column = word.column,
          .length = static_cast<std::int32_t>(word.text.size()),
          .section = block(index).section,
          .block = index};
}

Spot View::spotOf(const SourceLine& line, std::uint32_t index) const {
  const std::size_t first = line.text.find_first_not_of(" \t");
  const std::size_t last = line.text.find_last_not_of(" \t\r");
  Spot spot{.line = line.number,
            .column = 1,
            .length = 0,
            .section = Spot::nowhere,
            .block = Spot::nowhere};
  if (first != line.text.npos) {
    spot.column = static_cast<std::int32_t>(first) + 1;
    spot.length = static_cast<std::int32_t>(last - first) + 1;
  }
  if (index == Spot::nowhere) return spot;
  spot.section = block(index).section;
  spot.block = index;
  return spot;
}

Spot View::spotOf(const Block& each) const {
  return {.line = syntax.headOf(each).number,
          .column = each.column,
          .length = static_cast<std::int32_t>(each.name.size()) + 2,
          .section = each.section,
          .block = indexOf(each)};
}

Spot View::argumentSpot(const Block& each) const {
  Spot spot = spotOf(each);
  if (each.argument.empty()) return spot;
  const char* const begin = syntax.headOf(each).whole.data();
  spot.column = static_cast<std::int32_t>(each.argument.data() - begin) + 1;
  spot.length = static_cast<std::int32_t>(each.argument.size());
  return spot;
}

const Block* View::find(std::uint32_t section, std::string_view keyword) const {
  for (const Block& each : syntax.blocksOf(syntax.sections()[section])) {
    if (each.keyword != nullptr && each.keyword->name == keyword) return &each;
  }
  return nullptr;
}

const ModelView* View::modelOf(const PinView& pin) const {
  const std::uint32_t* place = modelByName.find(pin.model);
  return place == nullptr ? nullptr : &models[*place];
}

std::string View::nameOf(const Block& each) const {
  const Section& part = syntax.sectionOf(each);
  std::string name = "[";
  name.append(each.keyword == nullptr ? each.name : each.keyword->name).append("]");
  if (!part.name.empty() && part.firstBlock != indexOf(each)) {
    name.append(" of '").append(part.name).append("'");
  }
  return name;
}

bool View::isReserved(std::string_view name) {
  for (const std::string_view word : {"NC", "NA", "GND", "POWER"}) {
    if (equalIgnoringCase(word, name)) return true;
  }
  return false;
}

}  // namespace ibis::checks
