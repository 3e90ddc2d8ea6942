#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace ibis {

/// Where the text of one output goes while it is written.
class SinkTarget {
 public:
  virtual ~SinkTarget() = default;

  /// Takes the next piece; false if it could not be taken whole.
  virtual bool write(std::string_view text) = 0;

  /// Ends the output, once; false if anything could not be taken. Without it the text is given up.
  virtual bool close() = 0;
};

/// Where outputs go: files, or memory.
///
/// What was written takes the place of what stood under the name when keep() is called, and not
/// before; a sink that dies without it leaves everything as it was.
class Sink {
 public:
  virtual ~Sink() = default;

  /// Begins the output of a name, in the place of one begun before; null if that cannot be.
  virtual std::unique_ptr<SinkTarget> open(const std::string& name) = 0;

  /// Puts the last closed output of a name in its place; false if that cannot be.
  virtual bool keep(const std::string& name) = 0;
};

}  // namespace ibis
