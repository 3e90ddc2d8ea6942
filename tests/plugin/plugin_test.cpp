#include <dlfcn.h>
#include <elf.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "harness/fake_host.h"
#include "harness/temporary_folder.h"

namespace ibis::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::IsEmpty;
using Handler = YRef<MessageHandler>;
using Texts = std::vector<std::string>;
using Files = std::map<std::string, std::string>;

struct CloseLibrary {
  void operator()(void* handle) const { dlclose(handle); }
};
using Library = std::unique_ptr<void, CloseLibrary>;

// The plug-in as a host loads it; empty with the reason in dlerror() if that fails.
Library loadPlugin() { return Library(dlopen(IBIS_PLUGIN_PATH, RTLD_NOW | RTLD_LOCAL)); }

bool isLoaded() { return Library(dlopen(IBIS_PLUGIN_PATH, RTLD_NOW | RTLD_NOLOAD)) != nullptr; }

// Files beside the source, by name.
Files writtenInto(const TemporaryFolder& folder) {
  Files files = folder.contents();
  files.erase("input.ibs");
  return files;
}

std::string waveform(const std::string& edge, const std::string& fixture, double start,
                     double end) {
  std::ostringstream text;
  text << "[" << edge << " Waveform]\nR_fixture = 50\nV_fixture = " << fixture << "\n";
  for (int i = 0; i <= 4; ++i) {
    const double volts = start + (end - start) * i / 4;
    text << i << "ns " << volts << " " << volts << " " << volts << "\n";
  }
  return text.str();
}

// A driver with all that the checks of a model ask for.
std::string driver(int volts) {
  const std::string range = std::to_string(volts);
  return "[Model] out\nModel_type Output\nC_comp 2pF 1pF 3pF\n[Voltage Range] " + range + " " +
         range + " " + range + "\n[Pulldown]\n-1 -10mA -9mA -11mA\n0 0 0 0\n1 10mA 9mA 11mA\n" +
         "[Pullup]\n-1 10mA 9mA 11mA\n0 0 0 0\n1 -10mA -9mA -11mA\n" +
         "[Ramp]\ndV/dt_r 1.2/1n 1.1/2n 1.3/0.9n\ndV/dt_f 1.2/1n 1.1/2n 1.3/0.9n\n" +
         waveform("Rising", "0", 0, volts - 1) + waveform("Rising", range, 1, volts) +
         waveform("Falling", "0", volts - 1, 0) + waveform("Falling", range, volts, 1);
}

// A file that no other number gives; an unequal pair brings one warning if pin 1 is asked for.
std::string deviceFile(int number) {
  const std::string name = "Part" + std::to_string(number);
  std::string pins;
  for (int i = 0; i <= number; ++i) pins += std::to_string(10 + i) + " y out\n";
  return "[IBIS Ver] 4.2\n[File Name] " + name + ".ibs\n[Component] " + name +
         "\n[Manufacturer] Maker\n[Pin] signal_name model_name\n1 ground GND\n2 supply POWER\n" +
         pins + "[Diff Pin] inv_pin\n1 2\n" + driver(number + 2) + "[End]\n";
}

// What one call on a file gave, with nothing in it that tells the folder.
struct Outcome {
  Texts result;
  int finishCalls = 0;
  Files files;

  bool operator==(const Outcome&) const = default;
};

Outcome callOn(const std::string& text, const Texts& pins) {
  const TemporaryFolder folder;
  FakeResult result;
  const FakeArguments arguments(
      {Texts({folder.write("input.ibs", text)}), Texts({"model", "", folder.path(), "dut"}), pins});
  const FuncConstruct* function = findScriptFunction("IBIS_Load");
  EXPECT_EQ(callAsHost(function->function(), arguments, result, Handler(new MessageHandler)),
            FUNC_ERROR::success);
  Outcome outcome{result.strings(), result.finishCalls, writtenInto(folder)};
  EXPECT_EQ(outcome.result.at(1), folder.path());
  outcome.result[1] = "root";
  return outcome;
}

Texts namesOf(const Files& files) {
  Texts names;
  for (const auto& [name, text] : files) names.push_back(name);
  return names;
}

void expectGoodCall() {
  const Outcome outcome = callOn(deviceFile(0), {"1", "10"});
  EXPECT_EQ(outcome.result,
            Texts({"1", "root", "1", "0",
                   "Line 10: Diff Pin's 1 and 2. Differential pins only supported if both pins "
                   "reference the same model. Both pins will be treated as if independent"}));
  EXPECT_EQ(outcome.finishCalls, 1);
  EXPECT_EQ(namesOf(outcome.files), Texts({"dut.lb", "dut_INFO.html"}));
}

TEST(Plugin, RegistersItsFunctionWhileItIsLoaded) {
  EXPECT_EQ(findScriptFunction("IBIS_Load"), nullptr);
  Library plugin = loadPlugin();
  ASSERT_NE(plugin, nullptr) << dlerror();
  const FuncConstruct* function = findScriptFunction("IBIS_Load");
  ASSERT_NE(function, nullptr);
  EXPECT_STREQ(function->name().text(), "IBIS_Load");
  EXPECT_STREQ(function->group().text(), "Ibis");
  EXPECT_EQ(function->minimumArguments(), 2);
  EXPECT_EQ(function->maximumArguments(), 4);
  plugin.reset();
  EXPECT_EQ(findScriptFunction("IBIS_Load"), nullptr);
}

TEST(Plugin, IsGoneAfterItsUse) {
  Library plugin = loadPlugin();
  ASSERT_NE(plugin, nullptr) << dlerror();
  expectGoodCall();
  EXPECT_TRUE(isLoaded());
  plugin.reset();
  EXPECT_FALSE(isLoaded());
  EXPECT_EQ(findScriptFunction("IBIS_Load"), nullptr);
}

TEST(Plugin, CanBeLoadedTwiceInARow) {
  for (int turn = 0; turn < 2; ++turn) {
    Library plugin = loadPlugin();
    ASSERT_NE(plugin, nullptr) << dlerror();
    expectGoodCall();
    plugin.reset();
    EXPECT_EQ(findScriptFunction("IBIS_Load"), nullptr);
  }
}

TEST(Plugin, StaysUntilItsLastUserUnloadsIt) {
  Library one = loadPlugin();
  Library two = loadPlugin();
  ASSERT_NE(one, nullptr) << dlerror();
  EXPECT_EQ(one.get(), two.get());
  one.reset();
  expectGoodCall();
  two.reset();
  EXPECT_EQ(findScriptFunction("IBIS_Load"), nullptr);
}

TEST(Plugin, WritesAFileOfTheComponent) {
  const Library plugin = loadPlugin();
  ASSERT_NE(plugin, nullptr) << dlerror();
  const std::string library = callOn(deviceFile(3), {}).files["dut.lb"];
  EXPECT_EQ(library.substr(0, library.find("** Date")),
            "\n** IBIS original file: Part3.ibs\n** IBIS version:       4.2\n"
            "** Component:          Part3\n** Manufacturer:       Maker\n"
            "** File revision:      \n");
}

TEST(Plugin, ReportsABadFile) {
  const Library plugin = loadPlugin();
  ASSERT_NE(plugin, nullptr) << dlerror();
  const Outcome outcome = callOn("[IBIS Ver] 9\n", {});
  EXPECT_EQ(outcome.result, Texts({"2", "root", "0", "1", "Unknown version '9'. Aborting IBIS"}));
  EXPECT_EQ(outcome.finishCalls, 1);
  EXPECT_THAT(outcome.files, IsEmpty());
}

TEST(Plugin, ServesSeveralThreadsAtOnce) {
  const Library plugin = loadPlugin();
  ASSERT_NE(plugin, nullptr) << dlerror();
  constexpr std::size_t threadCount = 8;
  constexpr int turns = 5;
  std::vector<Outcome> expected;
  std::array<std::vector<Outcome>, threadCount> outcomes;
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < threadCount; ++i) {
    expected.push_back(callOn(deviceFile(static_cast<int>(i)), {"1", "10"}));
  }
  for (std::size_t i = 0; i < threadCount; ++i) {
    threads.emplace_back([&outcome = outcomes[i], text = deviceFile(static_cast<int>(i))] {
      for (int turn = 0; turn < turns; ++turn) outcome.push_back(callOn(text, {"1", "10"}));
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (std::size_t i = 0; i < threadCount; ++i) {
    EXPECT_EQ(outcomes[i], std::vector<Outcome>(turns, expected[i])) << "file " << i;
    EXPECT_EQ(expected[i].files.size(), 2u);
  }
  EXPECT_NE(expected[0].files, expected[1].files);
}

// Arguments that the host cannot give.
class FailingArguments final : public FuncArgsMinimal {
 public:
  const char* const* stringArray(std::int32_t) const override { throw std::runtime_error("boom"); }
  std::int32_t stringCount(std::int32_t) const override { return 0; }
};

TEST(Plugin, TurnsAnExceptionOfTheHostIntoAResult) {
  const Library plugin = loadPlugin();
  ASSERT_NE(plugin, nullptr) << dlerror();
  FakeResult result;
  EXPECT_EQ(callAsHost(findScriptFunction("IBIS_Load")->function(), FailingArguments(), result),
            FUNC_ERROR::success);
  EXPECT_EQ(result.strings(), Texts({"2", "", "0", "1", "Load failed: boom"}));
  EXPECT_EQ(result.finishCalls, 1);
}

TEST(Plugin, LetsTheHandlerGo) {
  const Library plugin = loadPlugin();
  ASSERT_NE(plugin, nullptr) << dlerror();
  const Handler handler(new MessageHandler);
  FakeResult result;
  callAsHost(findScriptFunction("IBIS_Load")->function(), FakeArguments({}), result, handler);
  EXPECT_EQ(handler.count(), 1);
}

TEST(Plugin, GivesTheLoaderNoNames) {
  const Library plugin = loadPlugin();
  ASSERT_NE(plugin, nullptr) << dlerror();
  for (const char* name : {"IBIS_Load", "ibis_load", "registration", "plugin_main", "DllMain",
                           "_ZN4ibis8IBISFileC1Ev", "_ZTVN4ibis8IBISFileE"}) {
    EXPECT_EQ(dlsym(plugin.get(), name), nullptr) << name;
  }
}

// A table of a library's bytes, copied for the sake of its alignment.
template <class Row>
std::vector<Row> rowsAt(const std::string& bytes, std::size_t offset, std::size_t count) {
  std::vector<Row> rows(count);
  if (offset + count * sizeof(Row) > bytes.size()) throw std::runtime_error("cut library");
  std::memcpy(rows.data(), bytes.data() + offset, count * sizeof(Row));
  return rows;
}

// Names that a library offers to others, from its dynamic symbols.
Texts exportedNames(const std::string& bytes) {
  const auto header = rowsAt<Elf64_Ehdr>(bytes, 0, 1).front();
  const auto sections = rowsAt<Elf64_Shdr>(bytes, header.e_shoff, header.e_shnum);
  Texts names;
  for (const Elf64_Shdr& section : sections) {
    if (section.sh_type != SHT_DYNSYM) continue;
    const std::size_t texts = sections.at(section.sh_link).sh_offset;
    const std::size_t count = section.sh_size / sizeof(Elf64_Sym);
    for (const Elf64_Sym& symbol : rowsAt<Elf64_Sym>(bytes, section.sh_offset, count)) {
      if (symbol.st_shndx == SHN_UNDEF || ELF64_ST_BIND(symbol.st_info) == STB_LOCAL) continue;
      names.emplace_back(bytes.c_str() + texts + symbol.st_name);
    }
  }
  return names;
}

TEST(Plugin, ExportsNothing) {
  EXPECT_THAT(exportedNames(readWholeFile(IBIS_PLUGIN_PATH)), IsEmpty());
}

TEST(SupportLibrary, ExportsWhatPluginsUse) {
  const std::string folder = fs::path(IBIS_PLUGIN_PATH).parent_path().string();
  const Texts names = exportedNames(readWholeFile(folder + "/libibis_support.so"));
  for (const char* name : {"_Z18findScriptFunctionPKc", "_Z13duplicateTextPKc"}) {
    EXPECT_EQ(std::ranges::count(names, name), 1) << name;
  }
}

}  // namespace
}  // namespace ibis::testing
