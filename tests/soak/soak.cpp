// Loads many files and mutants of them in one process, and watches what it keeps.
//
// Usage: ibis_soak LOADS FILE... Memory may not grow by more than 5 % after the first tenth of
// the loads, and no descriptor may stay open.

#include <malloc.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <thread>

#include "analysis/switching.h"
#include "checks/check.h"
#include "harness/fake_host.h"
#include "harness/temporary_folder.h"
#include "ibis/document.h"
#include "output/stream/memory_sink.h"
#include "simulator/device_netlist.h"
#include "simulator/names.h"
#include "simulator/netlist_writer.h"

namespace ibis::testing {
namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

constexpr std::size_t threadCount = 200;
constexpr std::size_t loadsOfThread = 20;
constexpr std::size_t reports = 20;
constexpr double mostGrowth = 1.05;

struct Usage {
  std::size_t resident = 0;  ///< Bytes.
  std::ptrdiff_t descriptors = 0;
};

// What the allocator keeps for later is given back first, since no load holds it.
Usage usageNow() {
  malloc_trim(0);
  std::size_t pages = 0;
  std::ifstream("/proc/self/statm").ignore(64, ' ') >> pages;
  return {.resident = pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)),
          .descriptors = std::distance(fs::directory_iterator("/proc/self/fd"), {})};
}

class Dice {
 public:
  explicit Dice(std::size_t seed) : numbers_(seed) {}

  std::size_t below(std::size_t end) { return end == 0 ? 0 : numbers_() % end; }

 private:
  std::mt19937_64 numbers_;
};

// The line that a place is in, with its end.
std::string_view lineAt(std::string_view text, std::size_t place) {
  const std::size_t before = place == 0 ? text.npos : text.rfind('\n', place - 1);
  const std::size_t begin = before == text.npos ? 0 : before + 1;
  const std::size_t end = std::min(text.find('\n', place), text.size() - 1);
  return text.substr(begin, end - begin + 1);
}

void changeByte(std::string& text, Dice& dice) {
  text[dice.below(text.size())] = static_cast<char>(dice.below(256));
}

void doubleLine(std::string& text, Dice& dice) {
  const std::string line(lineAt(text, dice.below(text.size())));
  text.insert(dice.below(text.size()), line);
}

void dropLine(std::string& text, Dice& dice) {
  const std::string_view line = lineAt(text, dice.below(text.size()));
  text.erase(static_cast<std::size_t>(line.data() - text.data()), line.size());
}

void cut(std::string& text, Dice& dice) {
  if (dice.below(8) == 0) text.resize(dice.below(text.size()));
}

// The text itself in one of four cases, else one with up to eight changes.
std::string mutantOf(std::string text, Dice& dice) {
  constexpr void (*changes[])(std::string&, Dice&) = {changeByte, doubleLine, dropLine, cut};
  if (dice.below(4) == 0) return text;
  for (std::size_t count = 1 + dice.below(8); count > 0 && !text.empty(); --count) {
    changes[dice.below(std::size(changes))](text, dice);
  }
  return text;
}

Texts loadAsHost(const std::string& source, const std::string& mode, const std::string& folder) {
  const FakeArguments arguments(
      {Texts({source}), Texts({mode, "", folder, "dut"}), std::nullopt, std::nullopt});
  FakeResult result;
  callAsHost(findScriptFunction("IBIS_Load")->function(), arguments, result);
  return result.strings();
}

// Reads, checks and writes each model for a simulator, all in memory.
void readInMemory(const std::string& text) {
  const Document document = readText(text, {.newerVersions = true, .keepGoing = true});
  checks::check(text);
  MemorySink sink;
  for (const auto& model : document.file().models) {
    if (!model->isSound) continue;
    Findings findings;
    const DeviceNetlist netlist =
        makeDeviceNetlist(*model, corner::typ, spiceWord(model->name.view()), findings);
    const std::unique_ptr<OutputStream> out = OutputStream::open(sink, "device");
    NetlistWriter writer(*out, dialectTable().front());
    writeDevice(writer, netlist);
    out->close();
    sink.keep("device");
  }
}

class Soak {
 public:
  explicit Soak(const Texts& names) {
    for (const std::string& name : names) texts_.push_back(readWholeFile(name));
  }

  // Whether nothing was kept.
  bool run(std::size_t loads) {
    Usage first;
    std::printf("%10s %14s %12s\n", "loads", "resident KB", "descriptors");
    for (std::size_t i = 1; i <= loads; ++i) {
      loadOnce(i);
      if (i % std::max<std::size_t>(1, loads / reports) != 0) continue;
      last_ = usageNow();
      std::printf("%10zu %14zu %12td\n", i, last_.resident / 1024, last_.descriptors);
      std::fflush(stdout);
      if (first.resident == 0 && i >= loads / 10) first = last_;
    }
    const double growth = static_cast<double>(last_.resident) / static_cast<double>(first.resident);
    std::printf("memory after the first tenth: %+.1f %%\n", (growth - 1.0) * 100.0);
    return growth <= mostGrowth && last_.descriptors == first.descriptors;
  }

  // Whether all threads got what one gets alone.
  bool runThreads() const {
    const TemporaryFolder sources;
    Texts expected;
    for (std::size_t i = 0; i < texts_.size(); ++i) {
      sources.write(std::to_string(i), texts_[i]);
      expected.push_back(outcomeOf(sources, i, folder_.path()));
    }
    std::atomic<std::size_t> others = 0;
    {
      std::vector<std::jthread> threads;
      for (std::size_t i = 0; i < threadCount; ++i) {
        threads.emplace_back([&, i] { others += loadOnThread(sources, i, expected); });
      }
    }
    const std::ptrdiff_t descriptors = usageNow().descriptors;
    std::printf("%zu threads, %zu loads each: %zu with another outcome, %td descriptors\n",
                threadCount, loadsOfThread, others.load(), descriptors);
    return others == 0 && descriptors == last_.descriptors;
  }

 private:
  void loadOnce(std::size_t number) {
    constexpr const char* modes[] = {"model", "package", "script", "symbol"};
    Dice dice(number);
    const std::string text = mutantOf(texts_[dice.below(texts_.size())], dice);
    if (number % 2 == 0) {
      readInMemory(text);
    } else {
      loadAsHost(folder_.write("source.ibs", text), modes[dice.below(std::size(modes))],
                 folder_.path());
    }
  }

  // The result without the folder, which is the thread's own.
  static std::string outcomeOf(const TemporaryFolder& sources, std::size_t place,
                               const std::string& folder) {
    Texts strings = loadAsHost(sources.file(std::to_string(place)), "model", folder);
    std::string all;
    strings[1].clear();
    for (const std::string& each : strings) all.append(each).append("\n");
    return all;
  }

  static std::size_t loadOnThread(const TemporaryFolder& sources, std::size_t number,
                                  const Texts& expected) {
    const TemporaryFolder folder;
    std::size_t others = 0;
    for (std::size_t i = 0; i < loadsOfThread; ++i) {
      const std::size_t place = (number + i) % expected.size();
      if (outcomeOf(sources, place, folder.path()) != expected[place]) ++others;
    }
    return others;
  }

  const TemporaryFolder folder_;
  Texts texts_;
  Usage last_;
};

// Exit status 1 for what was kept or came out otherwise.
int soak(std::size_t loads, const Texts& names) {
  Soak soak(names);
  const bool isClean = soak.run(loads);
  return soak.runThreads() && isClean ? 0 : 1;
}

}  // namespace
}  // namespace ibis::testing

int main(int count, char** words) {
  if (count < 3 || std::atol(words[1]) < 1) {
    std::fputs("usage: ibis_soak LOADS FILE...\n", stderr);
    return 2;
  }
  return ibis::testing::soak(std::stoul(words[1]), {words + 2, words + count});
}
