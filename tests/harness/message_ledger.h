#pragma once

#include <span>
#include <string>
#include <vector>

#include "host/diagnostics/messages.h"
#include "ibis/diagnostic.h"

namespace ibis::testing {

using Texts = std::vector<std::string>;

/// The texts of messages as the plug-in reports them; the ledger learns which message each is.
Texts texts(std::span<const Diagnostic> diagnostics);

/// Texts as they are, so that both kinds of lists can be held against texts.
inline Texts texts(const Texts& list) { return list; }

/// Notes whole message texts that a test expects, and gives them back.
Texts proven(Texts expected);

/// Ids of a table's messages of which no text was both made and expected so far.
Texts unprovenMessages(std::span<const MessageRow> table);

/// Runs all tests; a message of the table that no test checks in full fails the whole run, while a
/// part of the run, or one that skips a test, cannot tell.
int runTests(int count, char** arguments, std::span<const MessageRow> table);

}  // namespace ibis::testing
