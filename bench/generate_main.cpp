#include <cstdio>
#include <cstdlib>

#include "generate.h"

namespace ibis::bench {
namespace {

constexpr const char* usage =
    "usage: bench_generate KIND BYTES > FILE\n"
    "       bench_generate KIND ITEMSx > FILE\n"
    "\n"
    "BYTES may end in K or M; the file is one item larger at most. Kinds, and their items:\n";

// "10M" is an amount of bytes, "1000x" one of items.
Amount parseAmount(const char* text) {
  char* end = nullptr;
  const std::size_t number = std::strtoull(text, &end, 10);
  switch (*end) {
    case 'x':
      return {.items = number};
    case 'K':
      return {.bytes = number * 1'000};
    case 'M':
      return {.bytes = number * 1'000'000};
    default:
      return {.bytes = number};
  }
}

int explain() {
  std::fputs(usage, stderr);
  for (const std::span<const Kind> kinds : {contentKinds(), growthKinds()}) {
    for (const Kind& kind : kinds) {
      std::fprintf(stderr, "  %-16s %s\n", std::string(kind.name).c_str(),
                   std::string(kind.item).c_str());
    }
  }
  return 2;
}

}  // namespace
}  // namespace ibis::bench

int main(int count, char** words) {
  using namespace ibis::bench;
  const Kind* kind = count == 3 ? findKind(words[1]) : nullptr;
  if (kind == nullptr) return explain();
  const GeneratedFile file = generate(*kind, parseAmount(words[2]));
  const bool isWritten =
      std::fwrite(file.text.data(), 1, file.text.size(), stdout) == file.text.size();
  return isWritten && std::fflush(stdout) == 0 ? 0 : 1;
}
