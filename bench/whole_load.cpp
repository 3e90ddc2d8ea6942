// One load and nothing else, so that what is measured from its start to its end is the load.

#include <cstdio>
#include <cstring>

#include "host/load_sequence.h"

#ifdef IBIS_BENCH_COUNTS_ALLOCATIONS
#include "allocation_counter.h"
#endif

namespace {

constexpr const char* usage =
    "usage: bench_load INPUT MODE FOLDER\n"
    "\n"
    "MODE is a mode of a load, or \"none\" to read and check without writing.\n";

void report() {
#ifdef IBIS_BENCH_COUNTS_ALLOCATIONS
  const ibis::bench::Allocations taken = ibis::bench::allocations();
  std::printf("allocations=%zu heap=%zu resident=%zu\n", taken.count, taken.peak,
              ibis::bench::peakResidentBytes());
#endif
}

}  // namespace

int main(int count, char** words) {
  if (count != 4) {
    std::fputs(usage, stderr);
    return 2;
  }
  const bool writes = std::strcmp(words[2], "none") != 0;
  ibis::Load load({.source = words[1],
                   .mode = writes ? words[2] : "model",
                   .component = {},
                   .rootDirectory = words[3],
                   .subcircuit = "generated",
                   .pins = {},
                   .selections = {}});
  load.read();
  if (!load.sourceWasRead() || load.file().hasErrors()) return 1;
  if (writes && load.write().empty()) return 1;
  report();
  return 0;
}
