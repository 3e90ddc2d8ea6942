#include "harness/message_ledger.h"

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

}  // namespace ibis::testing
