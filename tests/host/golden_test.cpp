#include <cstdlib>

#include "harness/harness.h"

namespace ibis::testing {
namespace {

namespace fs = std::filesystem;
using Files = std::map<std::string, std::string>;

// One load of an example, held against a folder of tests/golden to the last byte.
struct GoldenCase {
  const char* name;  // of the folder
  const char* example;
  LoadOptions options;
};

// name, example, what the request asks
const GoldenCase goldenCases[] = {
    {"push-pull-model", "push_pull_buffer.ibs", {}},
    {"push-pull-script", "push_pull_buffer.ibs", {.mode = "script"}},
    {"push-pull-package", "push_pull_buffer.ibs", {.mode = "package"}},
    {"push-pull-symbol", "push_pull_buffer.ibs", {.mode = "symbol"}},
    {"push-pull-pins", "push_pull_buffer.ibs", {.component = "EX3214", .pins = {"1", "3", "none"}}},
    {"push-pull-no-subcircuit", "push_pull_buffer.ibs", {.mode = "", .subcircuit = ""}},
    {"push-pull-unknown-mode", "push_pull_buffer.ibs", {.mode = "netlist"}},
    {"push-pull-unknown-component", "push_pull_buffer.ibs", {.component = "EX0000"}},
    {"link-model", "differential_link.ibs", {}},
    {"link-selected",
     "differential_link.ibs",
     {.selections = {"12\\smA drive, estimated edges", "4 mA drive"}}},
    {"link-bad-selection", "differential_link.ibs", {.selections = {"no\\ssuch\\schoice"}}},
    {"link-half-pair", "differential_link.ibs", {.pins = {"2", "11"}}},
    {"link-script", "differential_link.ibs", {.mode = "SCRIPT"}},
    {"link-package", "differential_link.ibs", {.mode = "Package"}},
    {"package-model", "package_60.ibs", {.mode = "MODEL"}},
    {"package-netlist", "package_60.ibs", {.mode = "package", .component = "EXM60"}},
    {"package-script", "package_60.ibs", {.mode = "script"}},
    {"oddities-model", "oddities.ibs", {}},
    {"oddities-second", "oddities.ibs", {.component = "odd_part_1", .subcircuit = "second"}},
    {"oddities-script", "oddities.ibs", {.mode = "script"}},
    {"oddities-package", "oddities.ibs", {.mode = "package"}},
};

std::string statusOf(const IBISFile& file) {
  return file.hasErrors() ? "2" : file.warningCount() > 0 ? "1" : "0";
}

// The slots of the result array, a line each.
std::string resultText(const IBISFile& file, const std::string& folder) {
  std::string text = lines({statusOf(file), folder, std::to_string(file.warningCount()),
                            std::to_string(file.errorCount())});
  for (const auto* list : {&file.data().warnings, &file.data().errors}) {
    for (const std::string& message : texts(*list)) text += message + "\n";
  }
  return text;
}

void replaceAll(std::string& text, const std::string& from, const std::string& to) {
  for (std::size_t i = text.find(from); i != std::string::npos; i = text.find(from, i)) {
    text.replace(i, from.size(), to);
    i += to.size();
  }
}

// Output files by name and the result under the name "result", free of this machine's paths.
Files runCase(const GoldenCase& golden) {
  const TemporaryFolder folder;
  const fs::path source = fs::path(IBIS_SOURCE_DIR) / "examples" / golden.example;
  Load load({.source = source.string(),
             .mode = golden.options.mode,
             .component = golden.options.component,
             .rootDirectory = folder.path(),
             .subcircuit = golden.options.subcircuit,
             .pins = golden.options.pins,
             .selections = golden.options.selections});
  load.read();
  load.write();
  Files files = folder.contents();
  files["result"] = resultText(load.file(), folder.path());
  for (auto& [name, text] : files) {
    replaceAll(text, fs::canonical(source).string(), "@FILE@");
    replaceAll(text, folder.path(), "@ROOT@");
  }
  return files;
}

Files readGolden(const fs::path& folder) {
  Files files;
  if (!fs::exists(folder)) return files;
  for (const auto& entry : fs::directory_iterator(folder)) {
    files[entry.path().filename().string()] = readWholeFile(entry.path().string());
  }
  return files;
}

void rewriteGolden(const fs::path& folder, const Files& files) {
  fs::remove_all(folder);
  fs::create_directories(folder);
  for (const auto& [name, text] : files) writeWholeFile((folder / name).string(), text);
}

Texts namesOf(const Files& files) {
  Texts names;
  for (const auto& [name, text] : files) names.push_back(name);
  return names;
}

class Golden : public ::testing::TestWithParam<GoldenCase> {};

TEST_P(Golden, LoadGivesTheSameBytes) {
  const fs::path folder = fs::path(IBIS_SOURCE_DIR) / "tests" / "golden" / GetParam().name;
  const Files files = runCase(GetParam());
  if (std::getenv("IBIS_REWRITE_GOLDEN") != nullptr) {
    rewriteGolden(folder, files);
    GTEST_SKIP() << "rewritten and not compared, as IBIS_REWRITE_GOLDEN is set";
  }
  const Files golden = readGolden(folder);
  ASSERT_EQ(namesOf(files), namesOf(golden));
  for (const auto& [name, text] : files) EXPECT_EQ(text, golden.at(name)) << name;
}

INSTANTIATE_TEST_SUITE_P(Examples, Golden, ::testing::ValuesIn(goldenCases),
                         [](const auto& instance) {
                           std::string name = instance.param.name;
                           std::erase(name, '-');
                           return name;
                         });

}  // namespace
}  // namespace ibis::testing
