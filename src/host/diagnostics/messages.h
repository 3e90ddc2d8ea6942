#pragma once

#include <span>

namespace ibis {

/// The texts of all messages, each a printf format under the name of its row.
namespace message {
#define IBIS_MESSAGE(identifier, text) inline constexpr char identifier[] = text;
#include "host/diagnostics/messages.def"
#undef IBIS_MESSAGE
}  // namespace message

/// One row of the message table.
struct MessageRow {
  const char* identifier;
  const char* text;
};

/// The message table in its own order, for the tests that walk it.
std::span<const MessageRow> messageTable();

}  // namespace ibis
