#include "pin_requests.h"

#include <algorithm>

#include "messages.h"
#include "near_names.h"
#include "reader/text/name_index.h"
#include "text_pieces.h"

namespace ibis::cli {
namespace {

constexpr std::size_t mostPins = 3;

// The pins that carry a signal of this name.
std::string pinsOfSignal(IBISString signal, const std::vector<const IBISComponent*>& components) {
  std::vector<std::string> pins;
  for (const IBISComponent* component : components) {
    for (const IBISPin& pin : component->pins) {
      if (pin.signal_name == signal) pins.push_back(pin.name.str());
    }
  }
  if (pins.empty()) return {};
  return (pins.size() == 1 ? "pin " + pins.front() + " has"
                           : "pins " + namesText(pins, mostPins) + " have") +
         " this signal";
}

std::vector<std::string> pinNames(const std::vector<const IBISComponent*>& components) {
  std::vector<std::string> names;
  for (const IBISComponent* component : components) {
    for (const IBISPin& pin : component->pins) names.push_back(pin.name.str());
  }
  return names;
}

// Several names in one word, as other programs take them.
bool isListOf(const std::string& text, const std::vector<std::string>& names) {
  for (const std::string_view word : piecesOf(text, ',')) {
    if (std::ranges::find(names, word) == names.end()) return false;
  }
  return text.find(',') != text.npos;
}

Diagnostic notFound(const std::string& name, const std::vector<const IBISComponent*>& components) {
  Diagnostic error = components.size() == 1
                         ? tell(Severity::error, message::pinNotFound,
                                components.front()->name.str().c_str(), name.c_str())
                         : tell(Severity::error, message::pinInNoComponent, name.c_str());
  std::string note = pinsOfSignal(std::string_view(name), components);
  const std::vector<std::string> names = pinNames(components);
  if (note.empty() && isListOf(name, names)) note = "-p is given once for each pin";
  if (note.empty()) note = meantText(name, names);
  if (note.empty() && !names.empty()) note = "there are: " + namesText(names);
  if (!note.empty()) error.notes.push_back({.line = 0, .text = std::move(note)});
  return error;
}

}  // namespace

std::vector<Diagnostic> checkPins(const std::vector<std::string>& pins,
                                  const std::vector<const IBISComponent*>& components) {
  std::vector<Diagnostic> errors;
  if (pins.empty() || components.empty()) return errors;
  NameIndex<ExactCase> names;
  for (const IBISComponent* component : components) {
    for (const IBISPin& pin : component->pins) names.findOrAdd(pin.name);
  }
  for (const std::string& pin : pins) {
    const IBISString name{std::string_view(pin)};
    if (!names.contains(name)) errors.push_back(notFound(pin, components));
  }
  return errors;
}

}  // namespace ibis::cli
