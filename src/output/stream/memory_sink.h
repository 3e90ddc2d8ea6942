#pragma once

#include <limits>
#include <map>
#include <set>

#include "output/stream/sink.h"

namespace ibis {

/// Keeps outputs in memory, for users of the library, tests and fuzzers; it can be made to fail.
class MemorySink final : public Sink {
 public:
  std::unique_ptr<SinkTarget> open(const std::string& name) override;
  bool keep(const std::string& name) override;

  /// The text under each name.
  const std::map<std::string, std::string>& files() const { return files_; }

  /// Names that cannot be opened; the empty one never can.
  std::set<std::string> refused;

  /// Max characters of one output; more of them fail.
  std::size_t room = std::numeric_limits<std::size_t>::max();

  bool closingFails = false;
  bool keepingFails = false;

 private:
  std::map<std::string, std::string> files_;
  std::map<std::string, std::shared_ptr<std::string>> begun_;
};

}  // namespace ibis
