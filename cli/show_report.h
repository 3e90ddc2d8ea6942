#pragma once

#include <string>
#include <vector>

#include "file_summary.h"
#include "json_pieces.h"

namespace ibis::cli {

/// A pin and its component.
struct FoundPin {
  const IBISComponent* component = nullptr;
  const IBISPin* pin = nullptr;
};

/// What a name stands for in a file, or all that the file holds.
struct Found {
  std::vector<const IBISComponent*> components;
  std::vector<const ModelSummary*> models;
  std::vector<const SelectorSummary*> selectors;
  std::vector<const IBISPackageModel*> packageModels;
  std::vector<FoundPin> pins;

  bool empty() const {
    return components.empty() && models.empty() && selectors.empty() && packageModels.empty() &&
           pins.empty();
  }
};

/// All but single pins, in the order of the file.
Found findAll(const IBISFileData& file, const FileSummary& summary);

/// All of exactly this name; pins by their signal if nothing has the name.
Found findByName(const IBISFileData& file, const FileSummary& summary, const std::string& name);

/// Each name that findByName() finds something for.
std::vector<std::string> allNames(const IBISFileData& file);

/// What was found, for a person.
std::string showText(const Found& found);

/// The same with every number, for a program.
void printFoundJson(JsonObject& object, const Found& found);

/// The texts of the file's header for a person.
std::string headerText(const std::string& source, const IBISFileData& file);

}  // namespace ibis::cli
