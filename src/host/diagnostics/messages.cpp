#include "host/diagnostics/messages.h"

namespace ibis {
namespace {

constexpr MessageRow rows[] = {
#define IBIS_MESSAGE(identifier, text) {#identifier, text},
#include "host/diagnostics/messages.def"
#undef IBIS_MESSAGE
};

}  // namespace

std::span<const MessageRow> messageTable() { return rows; }

}  // namespace ibis
