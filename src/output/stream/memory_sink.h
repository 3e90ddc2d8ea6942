#pragma once

#include <limits>
#include <map>
#include <set>

#include "output/stream/sink.h"

namespace ibis {

/// Keeps outputs in memory, for users of the library, tests and fuzzers; fails where it is told to.
class MemorySink final : public Sink {
 public:
  std::unique_ptr<SinkTarget> open(const std::string& name) override;
  bool keep(const std::string& name) override;

  /// What stands under each name.
  const std::map<std::string, std::string>& files() const { return files_; }

  /// Names that cannot be opened, beside the empty one.
  std::set<std::string> refused;

  /// Characters that one output takes; what is more fails.
  std::size_t room = std::numeric_limits<std::size_t>::max();

  bool closingFails = false;
  bool keepingFails = false;

 private:
  std::map<std::string, std::string> files_;
  std::map<std::string, std::shared_ptr<std::string>> begun_;
};

}  // namespace ibis
