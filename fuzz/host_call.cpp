// IBIS_Load as the host calls it, with the arrays that the file's first line gives.

#include <string>

#include "call_line.h"
#include "fuzz.h"
#include "harness/fake_host.h"
#include "large_output.h"
#include "memory_disk.h"

namespace ibis::fuzz {
namespace {

std::size_t numberIn(const std::string& text) {
  const std::size_t number = std::stoul(text);
  REQUIRE(text == std::to_string(number));
  return number;
}

// Status, root directory, number of warnings, number of errors, warnings, errors.
void checkResult(const Strings& strings, const CallArrays& call) {
  REQUIRE(strings.size() >= 4);
  const std::size_t warnings = numberIn(strings[2]);
  const std::size_t errors = numberIn(strings[3]);
  REQUIRE(strings.size() == warnings + errors + 4);
  REQUIRE(strings[0] == (errors > 0 ? "2" : warnings > 0 ? "1" : "0"));
  REQUIRE(strings[1] == (call[1] && call[1]->size() > 2 ? (*call[1])[2] : ""));
  REQUIRE(std::ranges::find(strings, "(null)") == strings.end());
  REQUIRE(errors > 0 || !memoryDisk().hasFailed);
}

}  // namespace
}  // namespace ibis::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace ibis::fuzz;
  const std::string_view text = textOf(data, size);
  if (asksForLargeOutput(text)) return 0;
  CallArrays call = callArrays(text);
  if (call[0] && !call[0]->empty() && !call[0]->front().empty()) (*call[0])[0] = inputFile(text);
  memoryDisk() = {};
  const ibis::testing::FakeArguments arguments{call[0], call[1], call[2], call[3]};
  ibis::testing::FakeResult result;
  const FuncConstruct* function = findScriptFunction("IBIS_Load");
  REQUIRE(callAsHost(function->function(), arguments, result) == FUNC_ERROR::success);
  REQUIRE(result.allocateCalls == 1 && result.finishCalls == 1);
  checkResult(result.strings(), call);
  return 0;
}
