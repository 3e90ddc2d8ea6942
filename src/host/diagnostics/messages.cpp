#include "host/diagnostics/messages.h"

namespace ibis {
namespace {

constexpr MessageRow rows[] = {
#define IBIS_MESSAGE(identifier, place, text) \
  {MessageId(#identifier), LinePlace::place, message::identifier},
#include "host/diagnostics/messages.def"
#undef IBIS_MESSAGE
};

}  // namespace

std::span<const MessageRow> messageTable() { return rows; }

const MessageRow* findMessage(const char* format) {
  for (const MessageRow& row : rows) {
    if (row.format == format) return &row;
  }
  return nullptr;
}

const MessageRow* findMessageById(std::string_view id) {
  for (const MessageRow& row : rows) {
    if (row.id.view().data() == id.data()) return &row;
  }
  return nullptr;
}

}  // namespace ibis
