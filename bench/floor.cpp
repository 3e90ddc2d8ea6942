// What no implementation can avoid: reading the bytes, finding the line ends, converting each
// number once, printing each number that the output holds, and writing the output's bytes once.
//
// Nothing is kept in between: the numbers that are read go into a sum, and those that are printed
// come from a plan, which bench_floor_plan makes from a real output.

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <vector>

#include "floor_plan.h"

namespace {

constexpr const char* usage =
    "usage: bench_floor INPUT              only reads\n"
    "       bench_floor INPUT PLAN OUT     reads and writes\n";

constexpr std::size_t readSize = 1 << 18;
constexpr std::size_t writeSize = 1 << 16;
constexpr std::size_t longestNumber = 32;
constexpr int digits = 12;

double processorSeconds() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

struct Tally {
  double sum = 0.0;
  std::uint64_t numbers = 0;
  std::uint64_t lines = 0;
};

bool isBlank(char c) { return c == ' ' || c == '\t'; }
bool mayBeginNumber(char c) { return (c >= '0' && c <= '9') || c == '-' || c == '.'; }

// Keywords and comments are passed over; other words are when they begin like no number.
void readLine(const char* at, const char* end, Tally& tally) {
  ++tally.lines;
  if (at != end && *at == '[') return;
  while (at != end) {
    while (at != end && isBlank(*at)) ++at;
    if (at == end || *at == '|') return;
    if (mayBeginNumber(*at)) {
      double value = 0.0;
      const auto [behind, fault] = std::from_chars(at, end, value);
      if (fault == std::errc()) {
        tally.sum += value;
        ++tally.numbers;
        at = behind;
      }
    }
    while (at != end && !isBlank(*at)) ++at;
  }
}

// Gives where the last line begins, which the next bytes may go on with.
const char* readLines(const char* at, const char* end, Tally& tally) {
  while (const void* found = std::memchr(at, '\n', static_cast<std::size_t>(end - at))) {
    const char* const lineEnd = static_cast<const char*>(found);
    readLine(at, lineEnd, tally);
    at = lineEnd + 1;
  }
  return at;
}

bool readAll(const char* name, Tally& tally) {
  const int file = open(name, O_RDONLY);
  std::vector<char> buffer(readSize);
  std::size_t kept = 0;
  ssize_t count = 0;
  while ((count = read(file, buffer.data() + kept, readSize - kept)) > 0) {
    const char* const end = buffer.data() + kept + count;
    const char* const rest = readLines(buffer.data(), end, tally);
    kept = static_cast<std::size_t>(end - rest);
    if (kept == readSize) return false;
    std::memmove(buffer.data(), rest, kept);
  }
  readLine(buffer.data(), buffer.data() + kept, tally);
  close(file);
  return count == 0;
}

struct Plan {
  ibis::bench::FloorPlanHead head;
  std::vector<double> sample;
};

bool readPlan(const char* name, Plan& plan) {
  std::FILE* file = std::fopen(name, "rb");
  if (file == nullptr) return false;
  bool isRead = std::fread(&plan.head, sizeof plan.head, 1, file) == 1;
  plan.sample.resize(isRead ? plan.head.sample : 0);
  isRead = isRead && std::fread(plan.sample.data(), sizeof(double), plan.sample.size(), file) ==
                         plan.sample.size();
  std::fclose(file);
  return isRead && (plan.head.numbers == 0 || !plan.sample.empty());
}

// Prints the numbers, each with a comma and a blank, and fills up with blanks.
bool writeAll(const char* name, const Plan& plan) {
  const int file = open(name, O_WRONLY | O_CREAT | O_TRUNC, 0644);
  std::vector<char> buffer(writeSize, ' ');
  std::uint64_t written = 0;
  std::size_t used = 0;
  bool isGood = file >= 0;
  const auto flush = [&] {
    isGood = isGood && write(file, buffer.data(), used) == static_cast<ssize_t>(used);
    written += used;
    used = 0;
  };
  std::size_t place = 0;
  for (std::uint64_t i = 0; i < plan.head.numbers; ++i) {
    if (used + longestNumber + 2 > writeSize) flush();
    char* at = buffer.data() + used;
    at = std::to_chars(at, at + longestNumber, plan.sample[place], std::chars_format::general,
                       digits)
             .ptr;
    *at++ = ',';
    *at++ = ' ';
    used = static_cast<std::size_t>(at - buffer.data());
    if (++place == plan.sample.size()) place = 0;
  }
  flush();
  while (written < plan.head.bytes) {
    used = std::min<std::uint64_t>(writeSize, plan.head.bytes - written);
    flush();
  }
  return isGood && close(file) == 0;
}

int run(const char* input, const char* planName, const char* output) {
  Plan plan;
  Tally tally;
  const double begin = processorSeconds();
  if (!readAll(input, tally)) return 1;
  const double between = processorSeconds();
  if (planName != nullptr && (!readPlan(planName, plan) || !writeAll(output, plan))) return 1;
  const double end = processorSeconds();
  std::printf("read_ms=%.3f write_ms=%.3f lines=%llu read=%llu printed=%llu sum=%g\n",
              1e3 * (between - begin), 1e3 * (end - between),
              static_cast<unsigned long long>(tally.lines),
              static_cast<unsigned long long>(tally.numbers),
              static_cast<unsigned long long>(plan.head.numbers), tally.sum);
  return 0;
}

}  // namespace

int main(int count, char** words) {
  if (count == 2) return run(words[1], nullptr, nullptr);
  if (count == 4) return run(words[1], words[2], words[3]);
  std::fputs(usage, stderr);
  return 2;
}
