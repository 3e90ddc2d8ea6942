// Makes the plan of what the floor writes from the output files of a load.

#include "floor_plan.h"

#include <cstdio>
#include <string>
#include <vector>

#include "check.h"

namespace {

// All of a short output, and sixty-four pieces of a long one.
std::vector<double> sampleOf(const std::vector<double>& values) {
  constexpr std::size_t pieces = 64;
  constexpr std::size_t pieceSize = 512;
  if (values.size() <= pieces * pieceSize) return values;
  std::vector<double> sample;
  for (std::size_t i = 0; i < pieces; ++i) {
    const auto begin = values.begin() +
                       static_cast<std::ptrdiff_t>((values.size() - pieceSize) / (pieces - 1) * i);
    sample.insert(sample.end(), begin, begin + pieceSize);
  }
  return sample;
}

int makePlan(const char* planName, char** names, int count) {
  ibis::bench::FloorPlanHead head;
  std::vector<double> values;
  for (int i = 0; i < count; ++i) {
    const std::string text = ibis::bench::readFile(names[i]);
    head.bytes += text.size();
    ibis::bench::appendNumbers(text, values);
  }
  const std::vector<double> sample = sampleOf(values);
  head.numbers = values.size();
  head.sample = sample.size();
  std::FILE* file = std::fopen(planName, "wb");
  if (file == nullptr) return 1;
  std::fwrite(&head, sizeof head, 1, file);
  std::fwrite(sample.data(), sizeof(double), sample.size(), file);
  return std::fclose(file) == 0 ? 0 : 1;
}

}  // namespace

int main(int count, char** words) {
  if (count > 2) return makePlan(words[1], words + 2, count - 2);
  std::fputs("usage: bench_floor_plan PLAN OUTPUT...\n", stderr);
  return 2;
}
