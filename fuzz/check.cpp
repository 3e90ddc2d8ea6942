// A check of any text: it ends, its findings are of the table, and their places are in the text.

#include "checks/check.h"

#include <algorithm>

#include "checks/rules.h"
#include "fuzz.h"

namespace ibis::fuzz {
namespace {

void check(std::string_view text) {
  const auto lines = std::max(std::ranges::count(text, '\n'), std::ranges::count(text, '\r')) + 1;
  std::int32_t last = 0;
  for (const Diagnostic& each : checks::check(text, {.fileName = "fuzz.ibs"})) {
    REQUIRE(checks::findRule(each.id).has_value());
    REQUIRE(each.line >= last && each.line <= lines);
    REQUIRE(each.column >= 0 && static_cast<std::size_t>(each.column) <= text.size() + 1);
    REQUIRE(each.length >= 0 && !each.text.empty());
    for (const Note& note : each.notes) REQUIRE(note.line <= lines && !note.text.empty());
    last = each.line;
  }
}

}  // namespace
}  // namespace ibis::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  ibis::fuzz::check(ibis::fuzz::textOf(data, size));
  return 0;
}
