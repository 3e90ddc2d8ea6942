#include <algorithm>
#include <stdexcept>

#include "harness/fake_host.h"
#include "harness/harness.h"

namespace ibis::testing {
namespace {

using Handler = YRef<MessageHandler>;

const FuncConstruct& registration() { return *findScriptFunction("IBIS_Load"); }

// Six lines of a file that nothing is wrong with; more sections may follow.
std::string fileWith(std::string_view sections = "") {
  return lines({"[IBIS Ver] 4.2", "[Component] Amp", "[Manufacturer] Maker",
                "[Pin] signal_name model_name", "1 ground GND", "2 supply POWER"}) +
         std::string(sections);
}

// Warned of when one of the two pins is asked for, as their models differ.
constexpr std::string_view unequalPair = "[Diff Pin] inv_pin\n1 2\n";

constexpr char unequalPairWarning[] =
    "Line 8: Diff Pin's 1 and 2. Differential pins only supported if both pins reference the same "
    "model. Both pins will be treated as if independent";

// A source and a folder for output, and calls on them as a host makes them.
struct Host {
  explicit Host(std::string_view text) { writeWholeFile(source, text); }

  // The whole result of one call.
  Texts call(std::initializer_list<FakeArray> arrays) const {
    FakeResult result;
    const FUNC_ERROR outcome = callAsHost(registration().function(), FakeArguments(arrays), result);
    EXPECT_EQ(outcome, FUNC_ERROR::success);
    EXPECT_EQ(result.allocateCalls, 1);
    EXPECT_EQ(result.finishCalls, 1);
    return result.strings();
  }

  // The same of the source with output under the name "dut".
  Texts load(const std::string& mode, const std::string& component = "",
             const FakeArray& pins = std::nullopt,
             const FakeArray& selections = std::nullopt) const {
    return call({Texts({source}), Texts({mode, component, root, "dut"}), pins, selections});
  }

  Texts written() const {
    Texts names;
    for (const auto& [name, text] : output.contents()) names.push_back(name);
    return names;
  }

  TemporaryFolder input;
  TemporaryFolder output;
  const std::string source = input.file("input.ibs");
  const std::string root = output.path();
};

const Texts modelFiles = {"dut.lb", "dut_INFO.html"};

std::string lineBehind(const std::string& text, const std::string& line) {
  const std::size_t place = text.find(line + "\n");
  if (place == std::string::npos) return "no such line: " + line;
  const std::size_t start = place + line.size() + 1;
  return text.substr(start, text.find('\n', start) - start);
}

TEST(Registration, HasTheParametersOfIbisLoad) {
  const FuncConstruct& function = registration();
  EXPECT_STREQ(function.name().text(), "IBIS_Load");
  EXPECT_EQ(function.arguments(), ArgTypeList<argType>(4, static_cast<argType>(1)));
  EXPECT_TRUE(function.forms().empty());
  EXPECT_EQ(function.minimumArguments(), 2);
  EXPECT_EQ(function.maximumArguments(), 4);
  EXPECT_STREQ(function.group().text(), "Ibis");
  EXPECT_EQ(static_cast<std::int32_t>(function.returnType()), 12);
  EXPECT_EQ(function.option().flags, 0);
}

TEST(IbisLoad, GivesStatusRootAndCountsForAGoodFile) {
  const Host host(fileWith());
  EXPECT_MESSAGES(host.load("model"), "0", host.root, "0", "0");
  EXPECT_EQ(host.written(), modelFiles);
}

TEST(IbisLoad, GivesStatus1AndTheWarningsAndWritesAllTheSame) {
  const Host host(fileWith(unequalPair));
  EXPECT_MESSAGES(host.load("model", "", Texts({"1"})), "1", host.root, "1", "0",
                  unequalPairWarning);
  EXPECT_EQ(host.written(), modelFiles);
}

TEST(IbisLoad, GivesStatus2AndTheErrorsAndWritesNothing) {
  const Host host(fileWith("[Submodel] Extra\n"));
  EXPECT_MESSAGES(host.load("all", "Other"), "2", host.root, "0", "3",
                  "Line 7: Keyword 'Submodel' not supported",
                  "Component name 'Other' not found in IBIS file", "Unknown output mode");
  EXPECT_EQ(host.written(), Texts());
}

TEST(IbisLoad, PutsWarningsAheadOfErrorsThatCameFirst) {
  const Host host(fileWith("[Diff Pin] inv_pin\n1 2\n1 9\n8 1\n2 1\n"));
  EXPECT_MESSAGES(
      host.load("all", "", Texts({"1"}), Texts({"none"})), "2", host.root, "2", "4",
      unequalPairWarning,
      "Line 11: Diff Pin's 2 and 1. Differential pins only supported if both pins reference the "
      "same model. Both pins will be treated as if independent",
      "Model selector 'none' not found in IBIS file",
      "Line 9: Inverting [Diff Pin] '9' is not defined",
      "Line 10: Noninverting [Diff Pin] '8' is not defined", "Unknown output mode");
}

TEST(IbisLoad, CountsInDecimal) {
  std::string rows = "[Diff Pin] inv_pin\n";
  for (int i = 0; i < 12; ++i) rows += "1 2\n1 9\n";
  const Texts result = Host(fileWith(rows)).load("model", "", Texts({"2"}));
  ASSERT_EQ(result.size(), 28u);
  EXPECT_EQ(result[2], "12");
  EXPECT_EQ(result[3], "12");
}

TEST(IbisLoad, TellsOfOutputFilesThatCannotBeOpened) {
  const Host host(fileWith());
  const std::string root = host.root + "/none";
  EXPECT_MESSAGES(host.call({Texts({host.source}), Texts({"model", "", root, "dut"})}), "2", root,
                  "0", "2", "Cannot open output file '" + root + "/dut.lb'\n",
                  "Cannot open output file '" + root + "/dut_INFO.html'\n");
}

TEST(IbisLoad, GivesTheRootDirectoryBackAsItCame) {
  const Host host(fileWith());
  for (const std::string root : {"gnd", "", " some/./where/ ", "\xc3\xa9"}) {
    EXPECT_MESSAGES(host.call({Texts({host.source}), Texts({"symbol", "", root})}), "0", root, "0",
                    "0");
  }
}

TEST(IbisLoad, TakesTwoArgumentsWithAModeAlone) {
  const Host host(fileWith(unequalPair));
  EXPECT_MESSAGES(host.call({Texts({host.source}), Texts({"symbol"})}), "0", "", "0", "0");
  EXPECT_MESSAGES(host.call({Texts({host.source}), Texts({"netlist"})}), "2", "", "0", "1",
                  "Unknown output mode");
}

TEST(IbisLoad, KnowsTheModesInAnyCase) {
  const std::pair<const char*, Texts> cases[] = {
      {"", modelFiles},        {"model", modelFiles},   {"MODEL", modelFiles},
      {"Package", {"dut.lb"}}, {"package", {"dut.lb"}}, {"Script", {"ibis_components.kvscr"}},
  };
  for (const auto& [mode, files] : cases) {
    const Host host(fileWith());
    EXPECT_MESSAGES(host.load(mode), "0", host.root, "0", "0");
    EXPECT_EQ(host.written(), files) << mode;
  }
}

TEST(IbisLoad, WritesTheSameForTheNamesOfOneMode) {
  const std::vector<Texts> groups = {{"model", "MODEL", ""}, {"package", "Package"}};
  for (const Texts& group : groups) {
    const Host first(fileWith());
    first.load(group[0]);
    for (const std::string& mode : group) {
      const Host host(fileWith());
      host.load(mode);
      EXPECT_EQ(host.output.contents(), first.output.contents()) << mode;
    }
  }
}

TEST(IbisLoad, WritesNothingInSymbolMode) {
  const Host host(fileWith(unequalPair));
  EXPECT_MESSAGES(host.load("symbol"), "0", host.root, "0", "0");
  EXPECT_MESSAGES(host.load("symbol", "", Texts({"2"})), "1", host.root, "1", "0",
                  unequalPairWarning);
  EXPECT_EQ(host.written(), Texts());
}

TEST(IbisLoad, FindsAnUnknownModeAlsoWithAnUnreadableFile) {
  const Host host("");
  EXPECT_MESSAGES(host.call({Texts({host.root + "/none.ibs"}), Texts({"netlist"})}), "2", "", "0",
                  "1", "Unknown output mode");
}

TEST(IbisLoad, TellsOfAnEmptySourceNameAlone) {
  const Host host("");
  EXPECT_MESSAGES(host.call({Texts({""}), Texts({"netlist", "Amp", host.root})}), "2", host.root,
                  "0", "1", "Cannot open IBIS file source ''");
}

TEST(IbisLoad, SaysNothingOfAFileThatCannotBeOpened) {
  const Host host("");
  for (const std::string& source : {host.root + "/none.ibs", host.root}) {
    EXPECT_MESSAGES(host.call({Texts({source}), Texts({"model", "", host.root, "dut"})}), "0",
                    host.root, "0", "0");
    EXPECT_MESSAGES(host.call({Texts({source}), Texts({"model", "Amp", host.root, "dut"})}), "2",
                    host.root, "0", "1", "Component name 'Amp' not found in IBIS file");
  }
  EXPECT_EQ(host.written(), Texts());
}

TEST(IbisLoad, WritesNothingForAFileWithoutComponents) {
  const Host host("[IBIS Ver] 4.2\n[Notes] none\n[End]\n");
  for (const char* mode : {"", "script", "model", "symbol", "package"}) {
    EXPECT_MESSAGES(host.load(mode), "0", host.root, "0", "0");
  }
  EXPECT_EQ(host.written(), Texts());
}

TEST(IbisLoad, WritesTheFirstComponentWithoutAName) {
  const Host host(fileWith("[Component] Mixer\n"));
  EXPECT_MESSAGES(host.load("model"), "0", host.root, "0", "0");
  EXPECT_EQ(lineBehind(host.output.contents()["dut.lb"], "** IBIS version:       4.2"),
            "** Component:          Amp");
}

TEST(IbisLoad, PreparesTheFirstAndWritesTheLastOfOneName) {
  const Host twins(fileWith("[Component] Amp\n[Manufacturer] Last\n[Pin]\n1 a Missing\n"));
  EXPECT_MESSAGES(twins.load("model", "Amp"), "0", twins.root, "0", "0");
  const Host bare("[IBIS Ver] 4.2\n[Component] Amp\n[Manufacturer] Last\n");
  EXPECT_MESSAGES(bare.load("model", "Amp"), "0", bare.root, "0", "0");
  EXPECT_EQ(twins.output.contents(), bare.output.contents());
  EXPECT_EQ(lineBehind(twins.output.contents()["dut.lb"], "** Component:          Amp"),
            "** Manufacturer:       Last");
}

TEST(IbisLoad, TellsOfAPackageModelThatIsMissing) {
  const Host host(fileWith("[Package Model] Case\n"));
  EXPECT_MESSAGES(host.load("package", "Amp"), "2", host.root, "0", "1",
                  "Component 'Amp' specifies package model 'Case', but a definition for that "
                  "package could not be found");
  EXPECT_EQ(host.written(), Texts());
}

TEST(IbisLoad, FoldsReservedWordsInNames) {
  const Host host(fileWith());
  EXPECT_MESSAGES(host.load("model", "gnd"), "2", host.root, "0", "1",
                  "Component name 'GND' not found in IBIS file");
  EXPECT_MESSAGES(host.call({Texts({host.source}), Texts({"model", "", host.root, "power"})}), "0",
                  host.root, "0", "0");
  EXPECT_EQ(host.written(), Texts({"POWER.lb", "POWER_INFO.html"}));
}

TEST(IbisLoad, TakesTheEscapesOutOfSelections) {
  const std::string selector = "[Model Selector] Rail\nGND slow rail\nPOWER fast rail\n";
  const Host host(fileWith("3 rail Rail\n" + selector));
  EXPECT_MESSAGES(host.load("model", "", std::nullopt, Texts({"fast\\srail"})), "0", host.root, "0",
                  "0");
  EXPECT_EQ(lineBehind(host.output.contents()["dut_INFO.html"], "<h3>Model Selectors</h3>"),
            "fast rail");
  EXPECT_MESSAGES(host.load("model", "", std::nullopt, Texts({"fast rail", "fast\\trail"})), "2",
                  host.root, "0", "1", "Model selector 'fast\trail' not found in IBIS file");
}

TEST(IbisLoad, CutsSelectionsAt255Characters) {
  const Host host(fileWith());
  EXPECT_MESSAGES(host.load("model", "", std::nullopt, Texts({std::string(300, 'y')})), "2",
                  host.root, "0", "1",
                  "Model selector '" + std::string(255, 'y') + "' not found in IBIS file");
}

TEST(IbisLoad, ReadsAFileOfBareCarriageReturns) {
  std::string text = fileWith(unequalPair);
  std::ranges::replace(text, '\n', '\r');
  const Host host(text);
  EXPECT_MESSAGES(host.load("model", "Amp", Texts({"2"})), "1", host.root, "1", "0",
                  unequalPairWarning);
}

TEST(IbisLoad, TakesAbsentArgumentsAsEmptyStrings) {
  const Host host(fileWith());
  const FakeArray absent;
  EXPECT_MESSAGES(host.call({absent, absent, absent, absent}), "2", "", "0", "1",
                  "Cannot open IBIS file source ''");
  EXPECT_MESSAGES(host.call({}), "2", "", "0", "1", "Cannot open IBIS file source ''");
  EXPECT_MESSAGES(host.call({Texts({host.root + "/none.ibs"}), absent}), "0", "", "0", "0");
  EXPECT_MESSAGES(host.call({absent, Texts({"symbol", "Amp", "root"})}), "2", "root", "0", "1",
                  "Cannot open IBIS file source ''");
}

TEST(IbisLoad, TakesEmptyArgumentsAsEmptyStrings) {
  const Host host(fileWith(unequalPair));
  const FakeArray empty = Texts();
  EXPECT_MESSAGES(host.call({empty, empty, empty, empty}), "2", "", "0", "1",
                  "Cannot open IBIS file source ''");
  EXPECT_MESSAGES(host.call({Texts({host.root + "/none.ibs"}), empty}), "0", "", "0", "0");
  EXPECT_MESSAGES(host.load("symbol", "", empty, empty), "0", host.root, "0", "0");
}

TEST(IbisLoad, PassesOverStringsThatItDoesNotKnow) {
  const Host host(fileWith());
  EXPECT_MESSAGES(host.call({Texts({host.source, "none.ibs"}),
                             Texts({"model", "Amp", host.root, "dut", "more"})}),
                  "0", host.root, "0", "0");
  EXPECT_EQ(host.written(), modelFiles);
}

TEST(IbisLoad, AsksForNoCountOfTheSources) {
  const Host host(fileWith());
  const FakeArguments arguments({Texts({host.source}), Texts({"symbol"}), Texts(), Texts({})});
  FakeResult result;
  callAsHost(registration().function(), arguments, result);
  EXPECT_EQ(arguments.countsAsked, std::set<std::int32_t>({1, 2, 3}));
}

TEST(IbisLoad, KeepsNothingFromOneCallToTheNext) {
  const Host host(fileWith(unequalPair));
  const Texts first = host.load("model", "Amp", Texts({"1"}), Texts({"none"}));
  EXPECT_MESSAGES(host.load("model"), "0", host.root, "0", "0");
  EXPECT_EQ(host.load("model", "Amp", Texts({"1"}), Texts({"none"})), first);
}

// Calls back when it is asked for its first strings.
class WatchedArguments final : public FakeArguments {
 public:
  explicit WatchedArguments(std::function<void()> onAsk)
      : FakeArguments({Texts({""}), Texts({"symbol"})}), onAsk_(std::move(onAsk)) {}

  const char* const* stringArray(std::int32_t index) const override {
    if (index == 0) onAsk_();
    return FakeArguments::stringArray(index);
  }

 private:
  std::function<void()> onAsk_;
};

TEST(IbisLoad, HoldsTheHandlerTwiceWhileItLoadsAndOnceWhileItFinishes) {
  const Handler handler(new MessageHandler);
  std::vector<std::int32_t> counts;
  const auto note = [&] { counts.push_back(handler.count()); };
  FakeResult result;
  result.onFinish = note;
  callAsHost(registration().function(), WatchedArguments(note), result, handler);
  note();
  EXPECT_EQ(counts, std::vector<std::int32_t>({3, 2, 1}));
}

TEST(IbisLoad, LetsTheHandlerGoAfterItHasFinished) {
  Texts events;
  FakeResult result;
  result.onFinish = [&] { events.push_back("finish"); };
  registration().function()(FakeArguments({}), &result,
                            Handler(new FakeHandler([&] { events.push_back("handler dies"); })),
                            ScpParseContext(), FunctionRunTime());
  EXPECT_EQ(events, Texts({"finish", "handler dies"}));
}

TEST(IbisLoad, TakesACallWithoutAHandler) {
  FakeResult result;
  callAsHost(registration().function(), FakeArguments({}), result, Handler());
  EXPECT_EQ(result.strings()[0], "2");
}

struct Fault {
  const char* message;
  std::function<void()> raise;
};

TEST(IbisLoad, TurnsAnExceptionIntoAResult) {
  const Fault faults[] = {
      {"Load failed: boom", [] { throw std::runtime_error("boom"); }},
      {"Load failed: std::bad_alloc", [] { throw std::bad_alloc(); }},
      {"Load failed: too long", [] { throw std::length_error("too long"); }},
      {"Load failed: unknown exception", [] { throw 7; }},
      {"Load failed: unknown exception", [] { throw "text"; }},
  };
  for (const Fault& fault : faults) {
    const Handler handler(new MessageHandler);
    FakeResult result;
    EXPECT_EQ(callAsHost(registration().function(), WatchedArguments(fault.raise), result, handler),
              FUNC_ERROR::success);
    EXPECT_MESSAGES(result.strings(), "2", "", "0", "1", fault.message);
    EXPECT_EQ(result.finishCalls, 1);
    EXPECT_EQ(handler.count(), 1);
  }
}

TEST(IbisLoad, LetsAFaultOfTheProgramPassAndFinishesAllTheSame) {
  const Handler handler(new MessageHandler);
  FakeResult result;
  const WatchedArguments arguments([] { throw KelvrantException("YVector index negative"); });
  EXPECT_THROW(callAsHost(registration().function(), arguments, result, handler),
               KelvrantException);
  EXPECT_EQ(result.finishCalls, 1);
  EXPECT_EQ(result.allocateCalls, 0);
  EXPECT_EQ(handler.count(), 1);
}

}  // namespace
}  // namespace ibis::testing
