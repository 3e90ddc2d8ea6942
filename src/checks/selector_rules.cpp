// The rules about selectors.

#include "checks/defined_names.h"
#include "checks/families.h"

namespace ibis::checks {
namespace {

class SelectorChecker {
 public:
  SelectorChecker(const View& view, Findings& findings)
      : view_(view), findings_(findings), names_(view) {
    for (const ComponentView& component : view.components) {
      for (const PinView& pin : component.pins) used_.findOrAdd(pin.model);
    }
  }

  void check() {
    for (const SelectorView& selector : view_.selectors) {
      if (!selector.isAfterEnd) checkSelector(selector);
    }
  }

 private:
  void checkSelector(const SelectorView& selector) {
    const std::string name(selector.name);
    if (selector.rows.empty()) findings_.add(Rule::selectorEmpty, selector.spot, {name});
    if (!used_.contains(selector.name)) findings_.add(Rule::selectorUnused, selector.spot, {name});
    if (const std::uint32_t* place = view_.modelByName.find(selector.name)) {
      addNote(findings_.add(Rule::selectorNameClash, selector.spot, {name}),
              view_.models[*place].spot.line, "the model is here");
    }
    NameMap<ExactCase, std::int32_t> models;
    NameMap<ExactCase, std::int32_t> descriptions;
    for (const SelectorRow& row : selector.rows) checkRow(name, row, models, descriptions);
  }

  void checkRow(const std::string& name, const SelectorRow& row,
                NameMap<ExactCase, std::int32_t>& models,
                NameMap<ExactCase, std::int32_t>& descriptions) {
    const std::string model(row.model);
    if (View::isReserved(row.model)) {
      findings_.add(Rule::selectorModelNc, row.spot, {name, model});
    } else if (!view_.modelByName.contains(row.model)) {
      findings_.add(Rule::selectorModelUndefined, row.spot,
                    {name, model, didYouMean(names_.nearest(row.model))});
    }
    if (!models.add(row.model, row.spot.line)) {
      addNote(findings_.add(Rule::selectorDuplicateRow, row.spot, {name, model}),
              *models.find(row.model), "the first one is here");
    }
    if (!row.description.empty() && !descriptions.add(row.description, row.spot.line)) {
      addNote(findings_.add(Rule::selectorDuplicateDescription, row.spot,
                            {name, std::string(row.description)}),
              *descriptions.find(row.description), "the first one is here");
    }
  }

  const View& view_;
  Findings& findings_;
  DefinedNames names_;
  NameIndex<ExactCase> used_;
};

}  // namespace

void checkSelectors(const View& view, Findings& findings) {
  SelectorChecker(view, findings).check();
}

}  // namespace ibis::checks
