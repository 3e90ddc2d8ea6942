#include "harness/counted_memory.h"
#include "package/netlist/netlist.h"
#include "robustness/load_call.h"

namespace ibis::testing {
namespace {

// A file that grows with a number, and what its caller asks.
struct Growing {
  std::string text;
  std::string mode = "model";
  Texts pins = {};
  Texts selections = {};
};

struct Kind {
  const char* name;
  std::size_t smallest;  // Sizes are this one, twice and four times as many.
  const char* status;    // Of each load.
  Growing (*make)(std::size_t count);
};

constexpr char head[] = "[IBIS Ver] 4.2\n[Component] Part\n[Manufacturer] Maker\n";
constexpr char pinHead[] = "[Pin] signal_name model_name\n";
constexpr char receiver[] = "[Model] in\nModel_type Input\nVinl = 0.8\nVinh = 2.0\n";
constexpr char driver[] =
    "[Model] out\nModel_type Open_drain\n[Voltage Range] 3 3 3\n[Pulldown]\n-1 -1m\n0 0\n";
constexpr char edges[] =
    "[Rising Waveform]\nR_fixture = 50\nV_fixture = 0\n0 0\n1n 1\n"
    "[Falling Waveform]\nR_fixture = 50\nV_fixture = 0\n0 1\n1n 0\n";

template <class Item>
std::string repeat(std::size_t count, Item item) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) text += item(std::to_string(i), i);
  return text;
}

// One component with pins made of the numbers, and further sections.
template <class Pin>
std::string withPins(std::size_t count, Pin pin, const std::string& sections) {
  return std::string(head) + pinHead + repeat(count, pin) + sections;
}

// The word with the case of its letters taken from a number.
std::string inCaseOf(std::size_t number) {
  std::string word = "datastrobecomplements";
  for (std::size_t i = 0; i < word.size(); ++i) {
    if ((number >> i) & 1) word[i] = upperCase(word[i]);
  }
  return word;
}

// Names that become one when each dash and stop turns into an underscore.
std::string dashedName(std::size_t number) {
  std::string name = "M.................";
  for (std::size_t i = 1; i < name.size(); ++i) {
    if ((number >> (i - 1)) & 1) name[i] = '-';
  }
  return name;
}

Growing groundPins(std::size_t count) {
  return {.text = withPins(
              count, [](const std::string& i, std::size_t) { return i + " GND GND\n"; }, "")};
}

Growing pinsByCase(std::size_t count) {
  return {.text = withPins(
              count,
              [](const std::string& i, std::size_t n) { return i + ' ' + inCaseOf(n) + " in\n"; },
              receiver)};
}

// The signal's own numbered names are taken by the pins behind.
Growing takenNames(std::size_t count) {
  return {.text = withPins(
              count,
              [=](const std::string& i, std::size_t n) {
                return i + (n < count / 2 ? " net_" + i : std::string(" net")) + " in\n";
              },
              receiver)};
}

Growing repeatedPinNames(std::size_t count) {
  return {.text = withPins(
              count, [](const std::string& i, std::size_t) { return "1 net" + i + " in\n"; },
              receiver)};
}

Growing modelsOfOneSpiceName(std::size_t count) {
  return {.text = withPins(
              count,
              [](const std::string& i, std::size_t n) {
                return i + " net" + i + ' ' + dashedName(n) + '\n';
              },
              repeat(count, [](const std::string&, std::size_t n) {
                return "[Model] " + dashedName(n) + "\nModel_type Input\nVinl = 1\nVinh = 2\n";
              }))};
}

Growing modelsOfOneName(std::size_t count) {
  return {.text = withPins(
              1, [](const std::string&, std::size_t) { return "1 a in\n"; },
              repeat(count, [](const std::string&, std::size_t) { return receiver; }))};
}

Growing components(std::size_t count) {
  Growing growing{.text = "[IBIS Ver] 4.2\n" +
                          repeat(count,
                                 [](const std::string& i, std::size_t) {
                                   return "[Component] C" + i + "\n" + pinHead + "1 a M" + i + '\n';
                                 }) +
                          repeat(count,
                                 [](const std::string& i, std::size_t) {
                                   return "[Model] M" + i +
                                          "\nModel_type Input\nVinl = 1\nVinh = 2\n";
                                 }),
                  .mode = "script"};
  return growing;
}

Growing selectors(std::size_t count) {
  Growing growing{.text = withPins(
                      count,
                      [](const std::string& i, std::size_t) { return i + " a S" + i + '\n'; },
                      repeat(count, [](const std::string& i, std::size_t) {
                        return "[Model Selector] S" + i + "\nin no\nin yes" + i + '\n';
                      }) + receiver)};
  for (std::size_t i = 0; i < count; ++i) growing.selections.push_back("yes" + std::to_string(i));
  return growing;
}

// The row of the first choice comes last.
Growing selectorRows(std::size_t count) {
  Growing growing{
      .text = withPins(
          1, [](const std::string&, std::size_t) { return "1 a choice\n"; },
          "[Model Selector] choice\n" + repeat(count, [](const std::string& i, std::size_t) {
            return "in setting " + i + '\n';
          }) + receiver)};
  for (std::size_t i = count; i > 0; --i) {
    growing.selections.push_back("setting " + std::to_string(i - 1));
  }
  return growing;
}

Growing pairsAskedFor(std::size_t count) {
  Growing growing{
      .text = withPins(
          count,
          [](const std::string& i, std::size_t) { return 'P' + i + " p in\nN" + i + " n in\n"; },
          "[Diff Pin] inv_pin vdiff\n" + repeat(count, [](const std::string& i, std::size_t) {
            return 'P' + i + " N" + i + " 0.2\n";
          }) + receiver)};
  for (std::size_t i = 0; i < count; ++i) growing.pins.push_back('N' + std::to_string(i));
  return growing;
}

std::string rows(std::size_t count) {
  return repeat(count, [](const std::string& i, std::size_t) { return i + " 1m 2m 3m\n"; });
}

Growing oneDriver(const std::string& sections) {
  return {.text = withPins(
              1, [](const std::string&, std::size_t) { return "1 a out\n"; }, driver + sections)};
}

Growing waveformRows(std::size_t count) {
  return oneDriver(std::string(edges) + "[Rising Waveform]\nR_fixture = 50\n" + rows(count));
}

Growing waveforms(std::size_t count) {
  return oneDriver(std::string(edges) + repeat(count, [](const std::string& i, std::size_t) {
                     return "[Rising Waveform]\nR_fixture = " + i + "\n0 1\n";
                   }));
}

Growing tableRows(std::size_t count) { return oneDriver(edges + ("[GND Clamp]\n" + rows(count))); }

Growing repeatedTables(std::size_t count) {
  return oneDriver(edges + repeat(count, [](const std::string& i, std::size_t) {
                     return "[Pulldown]\n" + i + ".1 1\n" + i + ".2 2\n";
                   }));
}

// Each section turns the table's direction, and no point can be held against its neighbour.
Growing turningTables(std::size_t count) {
  return oneDriver(edges +
                   ("[GND Clamp]\n0 0\n" + repeat(count, [](const std::string&, std::size_t n) {
                      return "[GND Clamp]\nnan 1\n" + std::string(n % 2 ? "-1" : "1") + " 1\n";
                    })));
}

Growing packagePins(std::size_t count) {
  const auto matrix = [=](const std::string& name) {
    return '[' + name + " Matrix] Sparse_matrix\n" +
           repeat(count, [](const std::string& i, std::size_t) {
             return "[Row] " + i + '\n' + i + " 1\n0 0.1\n";
           });
  };
  std::string text = std::string(head) + "[Package Model] frame\n" + pinHead;
  text += repeat(count, [](const std::string& i, std::size_t) { return i + " net" + i + " in\n"; });
  text += receiver + ("[Define Package Model] frame\n[Number Of Pins] " + std::to_string(count));
  text += "\n[Pin Numbers]\n";
  text += repeat(count, [](const std::string& i, std::size_t) { return i + '\n'; });
  text += "[Model Data]\n" + matrix("Resistance") + matrix("Inductance") + matrix("Capacitance");
  return {.text = text + "[End Model Data]\n[End Package Model]\n", .mode = "package"};
}

Growing headerLines(std::size_t count) {
  return {.text =
              "[IBIS Ver] 4.2\n[Notes] what to know\n" +
              repeat(count, [](const std::string& i, std::size_t) { return "line " + i + '\n'; }) +
              "[Component] Part\n" + pinHead + "1 a in\n" + receiver};
}

Growing lineEnds(std::size_t count) { return {.text = head + std::string(count, '\n')}; }

Growing unknownKeywords(std::size_t count) {
  return {.text = head + repeat(count, [](const std::string& i, std::size_t) {
                    return "[Nonsense " + i + "]\n";
                  })};
}

Growing errors(std::size_t count) {
  return {.text = withPins(
              count,
              [](const std::string& i, std::size_t) { return i + " net" + i + " nowhere\n"; }, "")};
}

Growing warnings(std::size_t count) {
  return {.text = withPins(
              1, [](const std::string&, std::size_t) { return "1 a in\n"; },
              receiver + repeat(count, [](const std::string& i, std::size_t) {
                return "[Model] silent" + i + "\nModel_type Input\n";
              }))};
}

Growing estimatedDrivers(std::size_t count) {
  return {.text = withPins(
              count,
              [](const std::string& i, std::size_t) { return i + " net" + i + " D" + i + '\n'; },
              repeat(count, [](const std::string& i, std::size_t) {
                return "[Model] D" + i +
                       "\nModel_type Output\n[Voltage Range] 3 3 3\n[Pulldown]\n-3 -1\n6 1\n"
                       "[Pullup]\n-3 1\n6 -1\n[Ramp]\ndV/dt_r 1/1n NA NA\ndV/dt_f 1/1n NA NA\n";
              }))};
}

// name, smallest size, status, what grows
constexpr Kind kinds[] = {
    {"GroundPins", 25'000, "0", groundPins},
    {"PinsByCase", 8'000, "0", pinsByCase},
    {"TakenNames", 8'000, "0", takenNames},
    {"RepeatedPinNames", 8'000, "2", repeatedPinNames},
    {"ModelsOfOneSpiceName", 2'000, "0", modelsOfOneSpiceName},
    {"ModelsOfOneName", 2'000, "0", modelsOfOneName},
    {"Components", 2'000, "0", components},
    {"Selectors", 4'000, "0", selectors},
    {"SelectorRows", 8'000, "0", selectorRows},
    {"PairsAskedFor", 4'000, "0", pairsAskedFor},
    {"WaveformRows", 4'000, "0", waveformRows},
    {"Waveforms", 4'000, "0", waveforms},
    {"TableRows", 4'000, "0", tableRows},
    {"RepeatedTables", 4'000, "0", repeatedTables},
    {"TurningTables", 25'000, "0", turningTables},
    {"PackagePins", 2'000, "0", packagePins},
    {"HeaderLines", 8'000, "0", headerLines},
    {"LineEnds", 100'000, "0", lineEnds},
    {"UnknownKeywords", 8'000, "0", unknownKeywords},
    {"Errors", 25'000, "2", errors},
    {"Warnings", 4'000, "1", warnings},
    {"EstimatedDrivers", 25, "1", estimatedDrivers},
};

void PrintTo(const Kind& kind, std::ostream* out) { *out << kind.name; }

class Growth : public ::testing::TestWithParam<Kind> {
 protected:
  MemoryUse use(std::size_t count) const {
    const TemporaryFolder input;
    const TemporaryFolder output;
    const Growing growing = GetParam().make(count);
    writeWholeFile(input.file("grown.ibs"), growing.text);
    const LoadRequest request{.source = input.file("grown.ibs"),
                              .mode = growing.mode,
                              .component = {},
                              .rootDirectory = output.path(),
                              .subcircuit = "dut",
                              .pins = growing.pins,
                              .selections = growing.selections};
    const FakeArguments arguments = argumentsOf(request);
    const MemoryUse before = memoryUse();
    FakeResult result;
    callAsHost(loadFunction(), arguments, result);
    const MemoryUse after = memoryUse();
    EXPECT_EQ(result.strings().at(0), GetParam().status);
    return {after.allocations - before.allocations, after.bytes - before.bytes, 0};
  }
};

// What one load takes however small its file is: the stream's buffer, the template, a few tables.
constexpr std::uint64_t allocationsOfAnyLoad = 100;
constexpr std::uint64_t bytesOfAnyLoad = 100'000;

// Twice, and a twentieth for lists whose room doubles.
std::uint64_t twice(std::uint64_t amount, std::uint64_t fixed) {
  return 2 * amount + amount / 20 + fixed;
}

// A step that is repeated for each item on all items would not end within the time of a test.
TEST_P(Growth, OfTheFileDoublesMemoryWhereItDoubles) {
  std::size_t count = GetParam().smallest;
  MemoryUse half = use(count);
  for (int step = 0; step < 2; ++step) {
    count *= 2;
    const MemoryUse whole = use(count);
    RecordProperty("allocations" + std::to_string(count), std::to_string(whole.allocations));
    RecordProperty("bytes" + std::to_string(count), std::to_string(whole.bytes));
    EXPECT_LE(whole.allocations, twice(half.allocations, allocationsOfAnyLoad)) << count;
    EXPECT_LE(whole.bytes, twice(half.bytes, bytesOfAnyLoad)) << count;
    half = whole;
  }
}

INSTANTIATE_TEST_SUITE_P(Kinds, Growth, ::testing::ValuesIn(kinds),
                         [](const auto& each) { return std::string(each.param.name); });

// Counts what it is given and keeps nothing.
class CountingTarget final : public SinkTarget {
 public:
  explicit CountingTarget(std::size_t& count) : count_(count) {}
  bool write(std::string_view text) override {
    count_ += text.size();
    return true;
  }
  bool close() override { return true; }

 private:
  std::size_t& count_;
};

class CountingSink final : public Sink {
 public:
  std::unique_ptr<SinkTarget> open(const std::string&) override {
    return std::make_unique<CountingTarget>(count);
  }
  bool keep(const std::string&) override { return true; }

  std::size_t count = 0;
};

// The names of the nodes stand in each term, so the text is far larger than what it is made from.
TEST(Growth, APackageNetlistIsNeverInMemoryAsAWhole) {
  IBISPackageModel model;
  model.numberOfPins = 2;
  model.capacitance.assign(100000, {.row = 1, .column = 2, .value = 1.0});
  const std::string name(230, 'a');
  const std::vector<std::string_view> nodes = {name, name};
  CountingSink sink;
  const std::unique_ptr<OutputStream> out = OutputStream::open(sink, "out");
  const NoLargeMemory limit(2'000'000);
  writePackageNetlist(*out, model, nodes);
  EXPECT_TRUE(out->close());
  EXPECT_GT(sink.count, 24'000'000u);
}

}  // namespace
}  // namespace ibis::testing
