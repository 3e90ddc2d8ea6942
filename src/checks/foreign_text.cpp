// The rule about texts that are no IBIS files at all.

#include "checks/families.h"

namespace ibis::checks {
namespace {

constexpr std::size_t searchedBytes = 65536;

struct Signature {
  std::string_view bytes;
  std::string_view name;
};

constexpr Signature signatures[] = {
    {"\x1f\x8b", "it looks like gzip data; unpack it first"},
    {"PK\x03\x04", "it looks like a zip archive; unpack it first"},
    {"%PDF", "it looks like a PDF document"},
    {"<", "it looks like an HTML or XML page"},
    {"\xfe\xff", "it looks like UTF-16 text; save it as ASCII"},
    {"\xff\xfe", "it looks like UTF-16 text; save it as ASCII"},
};

}  // namespace

bool isForeign(std::string_view text, const Syntax& syntax, Findings& findings) {
  for (const Signature& signature : signatures) {
    if (!text.starts_with(signature.bytes)) continue;
    findings.add(Rule::syntaxNotIbis, {.line = 1}, {std::string(signature.name)});
    return true;
  }
  const bool hasKeyword = !syntax.blocks().empty();
  const std::size_t nul = text.substr(0, searchedBytes).find('\0');
  if (!hasKeyword && nul != text.npos) {
    findings.add(Rule::syntaxNotIbis, {.line = 1}, {"it holds NUL bytes, as no text does"});
    return true;
  }
  const bool isLate =
      hasKeyword && static_cast<std::size_t>(syntax.headOf(syntax.blocks().front()).whole.data() -
                                             text.data()) > searchedBytes;
  if (hasKeyword && !isLate) return false;
  findings.add(Rule::syntaxNotIbis, {.line = 1},
               {isLate ? "no keyword stands in its first 64 KiB" : "it holds no keyword"});
  return true;
}

}  // namespace ibis::checks
