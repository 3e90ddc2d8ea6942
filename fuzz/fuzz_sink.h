#pragma once

#include <map>
#include <string>
#include <vector>

#include "output/stream/memory_sink.h"

namespace ibis::fuzz {

/// Where a target's outputs go: no disk.
///
/// Names that begin with "nowhere/" cannot be opened, those that begin with "full/" take 1000
/// bytes.
class FuzzSink final : public Sink {
 public:
  std::unique_ptr<SinkTarget> open(const std::string& name) override {
    if (name.starts_with("nowhere/")) return nullptr;
    memory_.room = name.starts_with("full/") ? roomWhenFull : MemorySink().room;
    return memory_.open(name);
  }

  bool keep(const std::string& name) override { return memory_.keep(name); }

  const std::map<std::string, std::string>& files() const { return memory_.files(); }

  /// Whether the files are among those of these names, and are all of them unless an error stands.
  bool agreesWith(const std::vector<std::string>& names, bool hasErrors) const {
    std::size_t count = 0;
    for (const std::string& name : names) count += files().count(name);
    return count == files().size() && (hasErrors || count == names.size());
  }

 private:
  static constexpr std::size_t roomWhenFull = 1000;

  MemorySink memory_;
};

}  // namespace ibis::fuzz
