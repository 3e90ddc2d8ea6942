#include <cfenv>
#include <stdexcept>

#ifdef __SSE__
#include <xmmintrin.h>
#endif

#include "harness/fake_host.h"
#include "harness/harness.h"
#include "ibis/document.h"

namespace ibis::testing {
namespace {

using Files = std::map<std::string, std::string>;

// A driver whose numbers have no exact form, are below the smallest normal one, or overflow.
std::string oddNumbers() {
  std::string text =
      "[IBIS Ver] 4.2\n[Component] Odd\n[Manufacturer] Maker\n[Package]\n"
      "R_pkg 0.1234567890123456789 1e-310 3e-320\nL_pkg 1.23456789nH 2.3e-315 1e400\n"
      "C_pkg 1.7pF 1.3e-311 1.9\n[Pin] signal_name model_name R_pin L_pin C_pin\n"
      "1 a out 123.456789m 3.3333333n 7.77777p\n[Model] out\nModel_type Output\n"
      "C_comp 1e400 4.9e-324 1.123456789e-311\n[Voltage Range] 3.3 2.97 3.63\n[Pulldown]\n";
  for (int i = -9; i < 20; ++i) {
    const std::string number = std::to_string(i * 0.37);
    text += number + " " + number + "1234567m " + number + "7654321u 1e-31" +
            std::to_string(i + 9) + "\n";
  }
  return text +
         "[Pullup]\n-3.3 0.0123456789\n0 0\n6.6 -0.0234567891\n[Ramp]\n"
         "dV/dt_r 1.98/0.371n 1.78/0.411n 2.18/0.333n\n"
         "dV/dt_f 1.98/0.373n 1.78/0.417n 2.18/0.337n\n[End]\n";
}

// What of the environment a host sets, with its flags.
struct Environment {
  int rounding = std::fegetround();
  int traps = fegetexcept();
  int flags = std::fetestexcept(FE_ALL_EXCEPT);
#ifdef __SSE__
  unsigned vectors = _mm_getcsr();
#endif

  bool operator==(const Environment&) const = default;
};

// Gives back the environment that the test program has.
class KeepEnvironment {
 public:
  KeepEnvironment() { std::fegetenv(&before_); }
  ~KeepEnvironment() { std::fesetenv(&before_); }
  KeepEnvironment(const KeepEnvironment&) = delete;
  KeepEnvironment& operator=(const KeepEnvironment&) = delete;

 private:
  std::fenv_t before_;
};

struct HostState {
  const char* name;
  void (*set)();
};

void letFlush([[maybe_unused]] unsigned bits) {
#ifdef __SSE__
  _mm_setcsr(_mm_getcsr() | bits);
#endif
}

// A flag that is already set would be a trap at once.
void letTrap(int exceptions) {
  std::feclearexcept(FE_ALL_EXCEPT);
  feenableexcept(exceptions);
}

const HostState hostStates[] = {
    {"upward", [] { std::fesetround(FE_UPWARD); }},
    {"downward", [] { std::fesetround(FE_DOWNWARD); }},
    {"toward zero", [] { std::fesetround(FE_TOWARDZERO); }},
    {"traps", [] { letTrap(FE_OVERFLOW | FE_INVALID | FE_DIVBYZERO); }},
    {"all traps", [] { letTrap(FE_ALL_EXCEPT); }},
    {"flush to zero", [] { letFlush(0x8000); }},
    {"denormals are zero", [] { letFlush(0x0040); }},
    {"flags", [] { std::feraiseexcept(FE_UNDERFLOW | FE_DIVBYZERO); }},
};

// Calls in a host of which the environment is this; it must be so again behind the call.
template <class Call>
void inState(const HostState& state, Call call) {
  const KeepEnvironment keep;
  state.set();
  const Environment before;
  call();
  EXPECT_EQ(Environment(), before) << state.name;
}

const FuncConstruct& registration() { return *findScriptFunction("IBIS_Load"); }

// What a load of the file writes and tells, the same folder each time.
struct Loaded {
  explicit Loaded(const HostState& state) {
    const FakeArguments arguments({Texts({folder.write("odd.ibs", oddNumbers())}),
                                   Texts({"model", "", folder.path(), "dut"})});
    inState(state, [&] { callAsHost(registration().function(), arguments, result); });
    files = folder.contents();
    page = files["dut_INFO.html"].size();
    files.erase("dut_INFO.html");  // holds the name of the folder
  }

  TemporaryFolder folder;
  FakeResult result;
  Files files;
  std::size_t page = 0;
};

TEST(HostEnvironment, ChangesNoByteOfWhatALoadWrites) {
  const Loaded usual({"usual", [] {}});
  const std::string library = usual.files.at("dut.lb");
  EXPECT_NE(library.find("c_comp=[inf, "), std::string::npos) << library.substr(0, 4000);
  for (const HostState& state : hostStates) {
    const Loaded loaded(state);
    EXPECT_EQ(loaded.files, usual.files) << state.name;
    EXPECT_EQ(loaded.result.strings().at(0), "1") << state.name;
    EXPECT_EQ(loaded.page, usual.page) << state.name;
  }
}

TEST(HostEnvironment, IsBackWhereTheHostFinishesTheCall) {
  for (const HostState& state : hostStates) {
    inState(state, [] {
      const Environment before;
      FakeResult result;
      result.onFinish = [&] { EXPECT_EQ(Environment(), before); };
      callAsHost(registration().function(), FakeArguments({}), result);
      EXPECT_EQ(result.finishCalls, 1);
    });
  }
}

// Raises a fault of the program, which the load lets pass.
class RaisingArguments final : public FuncArgsMinimal {
 public:
  const char* const* stringArray(std::int32_t) const override {
    throw KelvrantException("YVector index negative");
  }
  std::int32_t stringCount(std::int32_t) const override { return 0; }
};

TEST(HostEnvironment, IsBackBehindAFaultOfTheProgram) {
  for (const HostState& state : hostStates) {
    inState(state, [] {
      FakeResult result;
      EXPECT_THROW(callAsHost(registration().function(), RaisingArguments(), result),
                   KelvrantException);
    });
  }
}

std::vector<double> numbersOf(const Document& document) {
  const IBISModel& model = *document.file().models.back();
  std::vector<double> numbers = {model.cComp.typ, model.cComp.min, model.cComp.max};
  for (const double current : model.pulldown.min) numbers.push_back(current);
  for (const double current : model.pulldown.max) numbers.push_back(current);
  return numbers;
}

TEST(HostEnvironment, ChangesNoNumberOfADocument) {
  const TemporaryFolder folder;
  const std::string text = oddNumbers();
  const std::string name = folder.write("odd.ibs", text);
  const std::vector<double> usual = numbersOf(read(name));
  EXPECT_EQ(usual.at(1), 4.9e-324);
  for (const HostState& state : hostStates) {
    std::vector<double> ofFile;
    std::vector<double> ofText;
    inState(state, [&] {
      const Document document = read(name);
      const Document same = readText(text);
      ofFile = numbersOf(document);
      ofText = numbersOf(same);
    });
    EXPECT_EQ(ofFile, usual) << state.name;
    EXPECT_EQ(ofText, usual) << state.name;
  }
}

}  // namespace
}  // namespace ibis::testing
