#pragma once

namespace ibis {

/// What a reader may allow beyond the rules of a simulator's load.
struct ReadOptions {
  /// Versions 5.0 to 7.2 are read as far as 4.2 goes; keywords that came later are passed over with
  /// all that belongs to them, each kind told once with its line.
  bool newerVersions = false;

  /// What a load refuses is left out or read as far as the records go, and told as a warning.
  bool keepGoing = false;
};

}  // namespace ibis
