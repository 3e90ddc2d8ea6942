#pragma once

#include <string>
#include <vector>

namespace ibis {

/// What a reader accepts beyond the rules of a simulator's load.
struct ReadOptions {
  /// Versions 5.0 to 7.2 are read as far as 4.2 goes. Later keywords are passed over with all that
  /// belongs to them; one warning a keyword names the first line of it.
  bool newerVersions = false;

  /// What a load refuses is left out, or read as far as the records go, with a warning.
  bool keepGoing = false;

  /// Descriptions of [Model Selector] rows in the order of preference: the model of a row that has
  /// one of them stands for its selector. Without one it is the selector's first row.
  /// "SELECTOR=MODEL" chooses by the names of both.
  std::vector<std::string> selections = {};
};

}  // namespace ibis
