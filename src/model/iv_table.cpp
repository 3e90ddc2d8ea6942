#include "model/iv_table.h"

#include <algorithm>
#include <array>

#include "host/diagnostics/messages.h"
#include "model/numbers/numbers.h"

namespace ibis {
namespace {

std::array<YVector<double>*, 4> allLists(IBISTable& table) {
  return {&table.voltage, &table.typ, &table.max, &table.min};
}

std::int32_t directionOf(const YVector<double>& voltage) {
  const bool falls = !voltage.empty() && voltage[voltage.size() - 1] < voltage[0];
  return falls ? IBISTable::descending : IBISTable::ascending;
}

bool breaksMonotony(std::int32_t direction, double voltage, double last) {
  return direction == IBISTable::descending ? voltage >= last : voltage <= last;
}

// Each point is compared with the last one kept, so a whole run after a backward jump is dropped.
//
// A repeated keyword adds to the table and may turn its direction. Not-a-numbers break no order, so
// a long table may turn again and again. Points once found in order are not checked again in that
// direction.
bool dropBreakingPoints(IBISTable& table) {
  const std::size_t descends = table.direction == IBISTable::descending ? 1 : 0;
  std::int32_t& orderedOtherwise = table.ordered[1 - descends];
  const std::int32_t count = table.voltage.size();
  std::int32_t kept = table.ordered[descends];
  for (std::int32_t i = kept; i < count; ++i) {
    if (breaksMonotony(table.direction, table.voltage[i], table.voltage[kept - 1])) {
      orderedOtherwise = std::min(orderedOtherwise, kept);
      continue;
    }
    for (YVector<double>* list : allLists(table)) list->at(kept) = list->at(i);
    if (kept != i) table.missing.set(kept, table.missing.row(i));
    ++kept;
  }
  table.ordered[descends] = kept;
  if (kept >= count) return false;
  for (YVector<double>* list : allLists(table)) list->shorten(kept);
  table.missing.shorten(kept);
  return true;
}

void appendRows(IBISTable& table, IBISRecords records, std::int32_t& cursor) {
  if (table.voltage.empty()) {
    const auto rows = static_cast<std::size_t>(countDataLines(records, cursor));
    for (YVector<double>* list : allLists(table)) list->reserve(rows);
  }
  std::string_view text;
  while (nextDataLine(records, cursor, text)) {
    const CornerRow row = readCornerRow(text, notAvailable);
    table.missing.set(table.voltage.size(), row.missing);
    table.voltage.append(row.x);
    table.typ.append(row.typ);
    table.min.append(row.min);
    table.max.append(row.max);
  }
}

}  // namespace

void readTable(IBISTable& table, IBISRecords records, std::int32_t& cursor,
               IBISErrorHandler& errors, const char* tableName) {
  const std::int32_t line = recordAt(records, cursor).line;
  table.present = true;
  appendRows(table, records, cursor);
  table.direction = directionOf(table.voltage);
  if (dropBreakingPoints(table)) errors.warning(message::pointsRemoved, tableName, line);
}

void evaluateTable(const IBISTable& table, double& value, double& slope, double x, int corner) {
  if (!table.present) return;
  const YVector<double>& current = table.corner(corner);
  const std::int32_t last = table.voltage.size() - 1;
  const bool descends = table.direction == IBISTable::descending;
  const auto index = [&](std::int32_t position) { return descends ? last - position : position; };
  const auto at = [](const YVector<double>& list, std::int32_t i) { return i < 0 ? 0.0 : list[i]; };

  std::int32_t low = 1;
  std::int32_t high = last;
  while (low < high) {
    const std::int32_t middle = low + (high - low) / 2;
    if (table.voltage[index(middle)] < x) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  const std::int32_t upper = last <= 1 ? 1 : low;
  const double x0 = at(table.voltage, index(upper - 1));
  const double y0 = at(current, index(upper - 1));
  const double x1 = at(table.voltage, index(upper));
  const double y1 = at(current, index(upper));
  slope = (y1 - y0) / (x1 - x0);
  value = (y1 - y0) / (x1 - x0) * (x - x0) + y0;
}

}  // namespace ibis
