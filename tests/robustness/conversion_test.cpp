#include "conversion.h"

#include "robustness/counted_memory.h"
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

  Converted convertFailing(std::uint64_t successes) const {
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
    for (const cli::Message& message : conversion.errors) converted.errors.push_back(message.text);
    converted.files = output_.contents();
    for (const auto& [name, text] : converted.files) std::filesystem::remove(output_.file(name));
    return converted;
  }

  std::string cutFile(const std::string& name) const {
    return "Cannot write output file '" + output_.file(name) + "'";
  }

 private:
  TemporaryFolder input_;
  TemporaryFolder output_;
};

TEST_F(ConversionFaults, NameTheFileThatIsCut) {
  const Converted whole = convertFailing(1'000'000);
  EXPECT_EQ(texts(whole.errors), Texts());
  int cutFiles = 0;
  for (std::uint64_t successes = 0;; ++successes) {
    const Converted converted = convertFailing(successes);
    if (!converted.memoryFailed) break;
    SCOPED_TRACE("allocation " + std::to_string(successes));
    for (const auto& [name, text] : converted.files) {
      if (text == whole.files.at(name)) continue;
      ++cutFiles;
      EXPECT_EQ(std::ranges::count(converted.errors, cutFile(name)), 1);
    }
    // Nobody hears of anything but the lack of memory then.
    if (converted.hasThrown) {
      EXPECT_TRUE(converted.files.empty() || converted.files == whole.files);
    } else if (converted.files != whole.files) {
      ASSERT_FALSE(converted.errors.empty());
      EXPECT_EQ(converted.errors.back(), "Load failed: std::bad_alloc");
    }
  }
  EXPECT_GT(cutFiles, 0);
}

}  // namespace
}  // namespace ibis::testing
