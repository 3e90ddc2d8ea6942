#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace ibis {

/// Takes the text of one output while it is written.
class SinkTarget {
 public:
  virtual ~SinkTarget() = default;

  /// Takes the next piece; false if it could not be taken whole.
  virtual bool write(std::string_view text) = 0;

  /// Ends the output, once; false if anything could not be taken. Without it the text is given up.
  virtual bool close() = 0;
};

/// Takes outputs, as files or in memory.
///
/// keep(), and nothing before it, replaces what stood under a name. A sink that dies without it
/// leaves everything as it was.
class Sink {
 public:
  virtual ~Sink() = default;

  /// Begins the output of a name, instead of one begun before; null on failure.
  virtual std::unique_ptr<SinkTarget> open(const std::string& name) = 0;

  /// Makes the last closed output of a name what stands under it; false on failure.
  virtual bool keep(const std::string& name) = 0;
};

}  // namespace ibis
