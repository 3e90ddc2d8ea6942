#pragma once

#include <cstdlib>
#include <functional>
#include <initializer_list>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "support/script_function.h"

// The host's own records, of which a script function sees no more than a reference.
struct ScpParseContext {};
struct FunctionRunTime {};

namespace ibis::testing {

/// An argument's strings, or nothing for one that is absent.
using FakeArray = std::optional<std::vector<std::string>>;

/// Arguments from lists of strings; those behind the last are absent too.
class FakeArguments : public FuncArgsMinimal {
 public:
  FakeArguments(std::initializer_list<FakeArray> arrays) {
    for (const FakeArray& array : arrays) {
      arrays_.push_back(array);
      pointers_.push_back(pointersTo(arrays_.back()));
    }
  }
  FakeArguments(const FakeArguments&) = delete;
  FakeArguments& operator=(const FakeArguments&) = delete;

  const char* const* stringArray(std::int32_t index) const override {
    return isPresent(index) ? pointers_[static_cast<std::size_t>(index)].data() : nullptr;
  }

  std::int32_t stringCount(std::int32_t index) const override {
    countsAsked.insert(index);
    if (!isPresent(index)) return 0;
    return static_cast<std::int32_t>(pointers_[static_cast<std::size_t>(index)].size()) - 1;
  }

  /// The arguments of which a count was asked.
  mutable std::set<std::int32_t> countsAsked;

 private:
  using Pointers = std::vector<const char*>;

  // No count is asked for argument 0, so a null pointer ends each array.
  static Pointers pointersTo(const FakeArray& array) {
    Pointers pointers;
    if (array) {
      for (const std::string& text : *array) pointers.push_back(text.c_str());
    }
    pointers.push_back(nullptr);
    return pointers;
  }

  bool isPresent(std::int32_t index) const {
    const auto place = static_cast<std::size_t>(index);
    return place < arrays_.size() && arrays_[place].has_value();
  }

  std::vector<FakeArray> arrays_;
  std::vector<Pointers> pointers_;
};

/// A result that owns its strings and counts what is done to it.
class FakeResult final : public FuncResultMinimal {
 public:
  FakeResult() = default;
  ~FakeResult() override { release(); }
  FakeResult(const FakeResult&) = delete;
  FakeResult& operator=(const FakeResult&) = delete;

  char** allocateStrings(std::int32_t count) override {
    release();
    ++allocateCalls;
    slots_.assign(static_cast<std::size_t>(count), nullptr);
    return slots_.data();
  }

  void finish() override {
    ++finishCalls;
    if (onFinish) onFinish();
  }

  /// Copies of the slots; one that was not filled reads "(null)".
  std::vector<std::string> strings() const {
    std::vector<std::string> copies;
    for (const char* slot : slots_) copies.emplace_back(slot != nullptr ? slot : "(null)");
    return copies;
  }

  int allocateCalls = 0;
  int finishCalls = 0;
  std::function<void()> onFinish;

 private:
  void release() {
    for (char* slot : slots_) std::free(slot);
  }

  std::vector<char*> slots_;
};

/// A handler that tells when it dies.
class FakeHandler final : public MessageHandler {
 public:
  explicit FakeHandler(std::function<void()> onDeath) : onDeath_(std::move(onDeath)) {}
  ~FakeHandler() override { onDeath_(); }

 private:
  std::function<void()> onDeath_;
};

/// Calls a script function as the host does.
inline FUNC_ERROR callAsHost(ScriptFunction function, const FuncArgsMinimal& arguments,
                             FuncResultMinimal& result,
                             const YRef<MessageHandler>& handler = YRef<MessageHandler>()) {
  return function(arguments, &result, handler, ScpParseContext(), FunctionRunTime());
}

}  // namespace ibis::testing
