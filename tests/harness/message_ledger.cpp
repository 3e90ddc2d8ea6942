#include "harness/message_ledger.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "host/diagnostics/format_message.h"

namespace ibis::testing {
namespace {

struct Ledger {
  std::map<std::string, std::set<std::string>> idsByText;
  std::set<std::string> expected;
};

Ledger& ledger() {
  static Ledger all;
  return all;
}

class MessageCoverage final : public ::testing::Environment {
 public:
  explicit MessageCoverage(std::span<const MessageRow> table) : table_(table) {}

  void TearDown() override {
    const bool skipsAny = ::testing::UnitTest::GetInstance()->skipped_test_count() > 0;
    if (GTEST_FLAG_GET(filter) != "*" || skipsAny) return;
    EXPECT_EQ(unprovenMessages(table_), Texts())
        << "messages that no test provokes and checks in full";
  }

 private:
  std::span<const MessageRow> table_;
};

}  // namespace

Texts texts(std::span<const Diagnostic> diagnostics) {
  Texts list;
  for (const Diagnostic& diagnostic : diagnostics) {
    list.push_back(messageText(diagnostic));
    ledger().idsByText[list.back()].insert(std::string(diagnostic.id));
  }
  return list;
}

Texts proven(Texts expected) {
  ledger().expected.insert(expected.begin(), expected.end());
  return expected;
}

Texts unprovenMessages(std::span<const MessageRow> table) {
  std::set<std::string> ids;
  for (const auto& [text, made] : ledger().idsByText) {
    if (ledger().expected.contains(text)) ids.insert(made.begin(), made.end());
  }
  Texts unproven;
  for (const MessageRow& row : table) {
    if (!ids.contains(std::string(row.id.view()))) unproven.emplace_back(row.id.view());
  }
  return unproven;
}

int runTests(int count, char** arguments, std::span<const MessageRow> table) {
  ::testing::InitGoogleMock(&count, arguments);
  ::testing::AddGlobalTestEnvironment(new MessageCoverage(table));
  return RUN_ALL_TESTS();
}

}  // namespace ibis::testing
