// The program's JSON request: refused with a reason, or arrays that survive being written and read.

#include <nlohmann/json.hpp>

#include "call_request.h"
#include "fuzz.h"

namespace ibis::fuzz {
namespace {

void check(const cli::CallArguments& arguments) {
  REQUIRE(arguments.size() >= 2 && arguments.size() <= 4);
  for (const auto& array : arguments) {
    for (const std::string& text : array) REQUIRE(text.find('\0') == text.npos);
  }
  REQUIRE(cli::parseRequest(nlohmann::json(arguments).dump()) == arguments);
}

}  // namespace
}  // namespace ibis::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace ibis;
  try {
    fuzz::check(cli::parseRequest(fuzz::textOf(data, size)));
  } catch (const cli::MalformedRequest& fault) {
    REQUIRE(std::string_view(fault.what()).starts_with("malformed request: "));
  }
  return 0;
}
