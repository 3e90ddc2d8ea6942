// Each rule of a check is provoked by a case of tests/checks/cases, with its whole text and place.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>

#include "checks/case_file.h"
#include "checks/check.h"
#include "checks/rules.h"

namespace ibis::testing {
namespace {

namespace fs = std::filesystem;

// Rules whose fault, planted alone into the sound buffer, must be found by it and by no other.
constexpr std::string_view plantedAlone[] = {
    "consistency-waveform-iv",
    "numeric-decimal-comma",
    "numeric-unknown-suffix",
    "numeric-not-a-number",
    "numeric-suffix-case",
    "numeric-detached-unit",
    "syntax-unknown-keyword",
    "syntax-line-cut",
    "syntax-unclosed-keyword",
    "syntax-missing-end",
    "pin-model-case",
    "pin-model-undefined",
    "table-clamp-in-pull",
    "table-clamp-overlap",
    "table-outlier",
    "table-current-sign",
    "table-wrong-reference",
    "consistency-ramp-waveform",
    "consistency-ramp-iv",
    "model-ramp-form",
    "model-ramp-implausible",
    "model-ramp-zero",
    "model-c-comp-missing",
    "model-c-comp-implausible",
    "model-c-comp-zero",
    "model-cref-implausible",
    "package-implausible",
    "pin-rlc-implausible",
    "package-negative",
    "model-threshold-outside-supply",
    "model-vmeas-outside-supply",
    "model-type-case",
    "model-type-unknown",
    "model-type-missing",
    "header-ibis-ver-missing",
    "header-ibis-ver-newer",
    "header-ibis-ver-unknown",
    "header-ibis-ver-not-first",
    "numeric-missing-column",
    "numeric-missing-value",
    "numeric-typ-na",
    "table-voltage-order",
    "table-voltage-repeated",
    "waveform-time-order",
    "consistency-combined-not-monotonic",
    "consistency-vmeas-not-reached",
    "header-file-name-mismatch",
    "header-file-name-case",
};

std::vector<std::string> caseFiles() {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(IBIS_SOURCE_DIR "/tests/checks/cases")) {
    names.push_back(entry.path().string());
  }
  std::ranges::sort(names);
  return names;
}

std::vector<CheckCase> allCases() {
  std::vector<CheckCase> all;
  for (const std::string& name : caseFiles()) {
    for (CheckCase& each : readCases(name)) all.push_back(std::move(each));
  }
  return all;
}

std::vector<Diagnostic> findingsOf(const CheckCase& each) {
  return checks::check(each.text(), {.fileName = each.fileName});
}

TEST(Cases, TellEachFindingWithTextPlaceAndRemedy) {
  const bool rewrites = std::getenv("IBIS_REWRITE_GOLDEN") != nullptr;
  for (const std::string& name : caseFiles()) {
    std::vector<CheckCase> cases = readCases(name);
    for (CheckCase& each : cases) {
      const std::string told = render(findingsOf(each), each.rule);
      if (rewrites) each.expected = told;
      EXPECT_EQ(told, each.expected) << each.origin << ": " << each.rule;
    }
    if (rewrites) std::ofstream(name, std::ios::binary) << writeCases(headOf(name), cases);
  }
  if (rewrites) GTEST_SKIP() << "rewritten and not compared, as IBIS_REWRITE_GOLDEN is set";
}

TEST(Cases, ProvokeTheRuleThatTheyAreCalledBy) {
  for (const CheckCase& each : allCases()) {
    EXPECT_THAT(each.expected, ::testing::HasSubstr("[" + each.rule + "]")) << each.origin;
  }
}

TEST(Cases, ProvokeEveryRuleOfTheTable) {
  std::set<std::string, std::less<>> provoked;
  for (const CheckCase& each : allCases()) provoked.insert(each.rule);
  for (const checks::RuleRow& row : checks::ruleTable()) {
    EXPECT_TRUE(provoked.contains(row.id)) << row.id << " is provoked by no case";
  }
}

TEST(Cases, FindAPlantedFaultByItsRuleAndByNoOther) {
  const std::vector<CheckCase> cases = allCases();
  for (const std::string_view rule : plantedAlone) {
    const bool isFoundAlone = std::ranges::any_of(cases, [&](const CheckCase& each) {
      if (each.rule != rule || each.base != "push_pull_buffer.ibs") return false;
      const std::vector<Diagnostic> all = findingsOf(each);
      const auto counts = std::ranges::count_if(all, [&](const Diagnostic& one) {
        return one.severity != Severity::note || one.id == rule;
      });
      return counts == 1 && render(all, rule).find(rule) != std::string::npos;
    });
    EXPECT_TRUE(isFoundAlone) << rule << " has no case of its own in the sound buffer";
  }
}

}  // namespace
}  // namespace ibis::testing
