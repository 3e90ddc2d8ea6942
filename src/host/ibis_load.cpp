#include <algorithm>
#include <cstdlib>
#include <exception>
#include <utility>

#include "host/diagnostics/format_message.h"
#include "host/diagnostics/messages.h"
#include "host/load_sequence.h"
#include "model/numbers/float_environment.h"
#include "support/script_function.h"

namespace ibis {
namespace {

constexpr std::int32_t sourceArgument = 0;
constexpr std::int32_t modeArgument = 1;
constexpr std::int32_t pinsArgument = 2;
constexpr std::int32_t selectionsArgument = 3;

constexpr std::size_t fixedSlots = 4;

// No count is asked for argument 0, so its first string is taken as it is.
std::string firstString(const FuncArgsMinimal& arguments, std::int32_t argument) {
  const char* const* strings = arguments.stringArray(argument);
  return strings != nullptr && strings[0] != nullptr ? strings[0] : "";
}

std::vector<std::string> allStrings(const FuncArgsMinimal& arguments, std::int32_t argument) {
  const char* const* strings = arguments.stringArray(argument);
  const std::int32_t count = strings != nullptr ? arguments.stringCount(argument) : 0;
  std::vector<std::string> copies;
  for (std::int32_t i = 0; i < count; ++i) {
    copies.emplace_back(strings[i] != nullptr ? strings[i] : "");
  }
  return copies;
}

LoadRequest takeRequest(const FuncArgsMinimal& arguments) {
  std::vector<std::string> settings = allStrings(arguments, modeArgument);
  settings.resize(std::max<std::size_t>(settings.size(), 4));
  return {.source = firstString(arguments, sourceArgument),
          .mode = settings[0],
          .component = settings[1],
          .rootDirectory = settings[2],
          .subcircuit = settings[3],
          .pins = allStrings(arguments, pinsArgument),
          .selections = allStrings(arguments, selectionsArgument)};
}

const char* statusText(const IBISFileData& file) {
  if (!file.errors.empty()) return "2";
  return file.warnings.empty() ? "0" : "1";
}

// Heap strings on their way to the host; strings that do not arrive are released.
class HeapStrings {
 public:
  explicit HeapStrings(std::size_t count) { strings_.reserve(count); }
  ~HeapStrings() {
    for (char* text : strings_) std::free(text);
  }
  HeapStrings(const HeapStrings&) = delete;
  HeapStrings& operator=(const HeapStrings&) = delete;

  // Takes over the text.
  void add(char* text) { strings_.push_back(text); }

  void handOver(FuncResultMinimal& result) {
    char** slots = result.allocateStrings(static_cast<std::int32_t>(strings_.size()));
    std::ranges::copy(strings_, slots);
    strings_.clear();
  }

 private:
  std::vector<char*> strings_;
};

// Fills the slots: status, root directory, number of warnings, number of errors, warnings, errors.
void fillResult(const IBISFileData& file, const std::string& rootDirectory,
                FuncResultMinimal& result) {
  HeapStrings strings(file.warnings.size() + file.errors.size() + fixedSlots);
  strings.add(duplicateText(statusText(file)));
  strings.add(YString(rootDirectory.c_str()).copy());
  strings.add(YString(static_cast<std::int32_t>(file.warnings.size())).detach());
  strings.add(YString(static_cast<std::int32_t>(file.errors.size())).detach());
  for (const auto* list : {&file.warnings, &file.errors}) {
    for (const Diagnostic& each : *list) strings.add(duplicateText(messageText(each).c_str()));
  }
  strings.handOver(result);
}

// Reports one reason alone, when there is no memory for all messages.
void fillFailure(const char* reason, const std::string& rootDirectory, FuncResultMinimal& result) {
  HeapStrings strings(fixedSlots + 1);
  strings.add(duplicateText("2"));
  strings.add(duplicateText(rootDirectory.c_str()));
  for (const char* text : {"0", "1"}) strings.add(duplicateText(text));
  const Diagnostic failure = makeDiagnostic(Severity::error, message::loadFailed, reason);
  strings.add(duplicateText(messageText(failure).c_str()));
  strings.handOver(result);
}

// Does the work and reports the reason of any exception but the host family's, which goes on.
template <class Work, class Report>
void guard(Work work, Report report) {
  try {
    work();
  } catch (const KelvrantException&) {
    throw;
  } catch (const std::exception& fault) {
    report(fault.what());
  } catch (...) {
    report("unknown exception");
  }
}

// A failure of the program is one more error of the load, after those found before.
void runLoad(LoadRequest request, const std::string& rootDirectory, FuncResultMinimal& result) {
  Load load(std::move(request));
  const auto addFailure = [&](const char* reason) {
    load.file().error(message::loadFailed, reason);
  };
  const auto fill = [&] { fillResult(load.file().data(), rootDirectory, result); };
  guard(
      [&] {
        load.read();
        load.write();
      },
      addFailure);
  guard(fill, [&](const char* reason) {
    addFailure(reason);
    fill();
  });
}

// Without memory even for one message the host gets a result without strings.
void loadOrReport(const FuncArgsMinimal& arguments, FuncResultMinimal& result) {
  const auto nothing = [](const char*) {};
  guard(
      [&] {
        std::string rootDirectory;  // takes no memory, so that a failure can always be told
        guard(
            [&] {
              LoadRequest request = takeRequest(arguments);
              rootDirectory = request.rootDirectory;
              runLoad(std::move(request), rootDirectory, result);
            },
            [&](const char* reason) { fillFailure(reason, rootDirectory, result); });
      },
      nothing);
}

// The host waits for finish() in every call, also in one that an exception leaves.
class FinishGuard {
 public:
  explicit FinishGuard(FuncResultMinimal& result) : result_(result) {}
  ~FinishGuard() { result_.finish(); }
  FinishGuard(const FinishGuard&) = delete;
  FinishGuard& operator=(const FinishGuard&) = delete;

 private:
  FuncResultMinimal& result_;
};

// Holds a reference of its own to the handler, but writes nothing to it.
FUNC_ERROR loadWithHandler(const FuncArgsMinimal& arguments, FuncResultMinimal& result,
                           // NOLINTNEXTLINE(performance-unnecessary-value-param): a reference held
                           [[maybe_unused]] const YRef<MessageHandler> handler) {
  loadOrReport(arguments, result);
  return FUNC_ERROR::success;
}

FUNC_ERROR IBIS_Load(const FuncArgsMinimal& arguments, FuncResultMinimal* result,
                     // NOLINTNEXTLINE(performance-unnecessary-value-param): the host's interface
                     YRef<MessageHandler> handler, const ScpParseContext&, const FunctionRunTime&) {
  const FinishGuard finish(*result);
  const FloatEnvironment own;  // ends first, so that the host finishes in its own
  return loadWithHandler(arguments, *result, handler);
}

// Nothing sets this; if set, it would leave the group out of the registration.
bool hasNoGroup;

const FuncConstruct registration("IBIS_Load",
                                 {argType::stringArray, argType::stringArray, argType::stringArray,
                                  argType::stringArray},
                                 {}, 2, 4, IBIS_Load, hasNoGroup ? "" : "Ibis",
                                 PythonReturnType::stringArray, FunctionOption());

}  // namespace
}  // namespace ibis
