#include "host_call.h"

#include <cstdlib>

// The host's own records; a script function gets only references to them.
struct ScpParseContext {};
struct FunctionRunTime {};

namespace ibis::cli {
namespace {

class HostArguments final : public FuncArgsMinimal {
 public:
  explicit HostArguments(const CallArguments& arguments) {
    for (const auto& strings : arguments) addArray(strings);
  }

  const char* const* stringArray(std::int32_t index) const override {
    const Pointers* array = find(index);
    return array == nullptr ? nullptr : array->data();
  }

  std::int32_t stringCount(std::int32_t index) const override {
    const Pointers* array = find(index);
    return array == nullptr ? 0 : static_cast<std::int32_t>(array->size()) - 1;
  }

 private:
  using Pointers = std::vector<const char*>;

  // No count is asked for argument 0, so a null pointer ends each array.
  void addArray(const std::vector<std::string>& strings) {
    Pointers& array = arrays_.emplace_back();
    for (const std::string& text : strings) array.push_back(text.c_str());
    array.push_back(nullptr);
  }

  const Pointers* find(std::int32_t index) const {
    const auto place = static_cast<std::size_t>(index);
    return place < arrays_.size() ? &arrays_[place] : nullptr;
  }

  std::vector<Pointers> arrays_;
};

class HostResult final : public FuncResultMinimal {
 public:
  HostResult() = default;
  ~HostResult() override { release(); }
  HostResult(const HostResult&) = delete;
  HostResult& operator=(const HostResult&) = delete;

  char** allocateStrings(std::int32_t count) override {
    release();
    slots_.assign(static_cast<std::size_t>(count), nullptr);
    return slots_.data();
  }

  void finish() override {}

  CallResult copy() const {
    CallResult strings;
    for (const char* slot : slots_) {
      strings.push_back(slot == nullptr ? std::nullopt : std::optional<std::string>(slot));
    }
    return strings;
  }

 private:
  void release() {
    for (char* slot : slots_) std::free(slot);
  }

  std::vector<char*> slots_;
};

}  // namespace

CallResult callAsHost(ScriptFunction function, const CallArguments& arguments) {
  HostResult result;
  function(HostArguments(arguments), &result, YRef<MessageHandler>(new MessageHandler),
           ScpParseContext(), FunctionRunTime());
  return result.copy();
}

}  // namespace ibis::cli
