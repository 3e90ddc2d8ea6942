#include "conversion.h"

#include "harness/counted_memory.h"
#include "robustness/load_call.h"

namespace ibis::testing {
namespace {

using Files = std::map<std::string, std::string>;

// What the program's conversion left, and said, with one allocation failing.
struct Converted {
  bool memoryFailed = false;
  bool hasThrown = false;
  Texts errors;
  Files files;
};

class ConversionFaults : public ::testing::Test {
 protected:
  ConversionFaults() { writeWholeFile(input_.file("small.ibs"), smallText); }

  // The files that stand there before the conversion; what it leaves of them is gone behind it.
  Converted convertFailing(std::uint64_t successes, const Files& earlier = {}) const {
    for (const auto& [name, text] : earlier) output_.write(name, text);
    const cli::ConversionRequest request{.source = input_.file("small.ibs"),
                                         .mode = "model",
                                         .component = {},
                                         .folder = output_.path(),
                                         .subcircuit = "dut",
                                         .pins = {},
                                         .selections = {}};
    Converted converted;
    cli::Conversion conversion;
    {
      FailingMemory memory(FailingMemory::Source::operatorNew, FailingMemory::Duration::once,
                           successes);
      try {
        conversion = cli::convert(request);
      } catch (const std::bad_alloc&) {
        converted.hasThrown = true;
      }
      converted.memoryFailed = memory.hasFailed();
    }
    converted.errors = texts(conversion.errors);
    converted.files = output_.contents();
    for (const std::string& name : output_.names()) {
      EXPECT_FALSE(name.ends_with(".part")) << name;
      std::filesystem::remove(output_.file(name));
    }
    return converted;
  }

 private:
  TemporaryFolder input_;
  TemporaryFolder output_;
};

TEST_F(ConversionFaults, LeaveEachFileOldOrNewAndTellOfTheOldOnes) {
  const Converted whole = convertFailing(1'000'000);
  EXPECT_MESSAGES(whole.errors);
  Files earlier;
  for (const auto& [name, text] : whole.files) earlier[name] = "earlier " + name;
  int oldOnes = 0;
  for (std::uint64_t successes = 0;; ++successes) {
    const Converted converted = convertFailing(successes, earlier);
    if (!converted.memoryFailed) break;
    SCOPED_TRACE("allocation " + std::to_string(successes));
    ASSERT_EQ(converted.files.size(), whole.files.size());
    for (const auto& [name, text] : converted.files) {
      if (text == whole.files.at(name)) continue;
      ++oldOnes;
      EXPECT_EQ(text, earlier.at(name));
      if (converted.hasThrown) continue;  // nobody hears of anything but the lack of memory
      ASSERT_FALSE(converted.errors.empty());
      EXPECT_EQ(converted.errors.back(), "Load failed: std::bad_alloc");
    }
  }
  EXPECT_GT(oldOnes, 0);
}

}  // namespace
}  // namespace ibis::testing
