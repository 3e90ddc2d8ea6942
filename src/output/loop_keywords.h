#pragma once

#include <span>

#include "model/numbers/numbers.h"
#include "output/loop_object.h"

namespace ibis {

/// One value keyword of a loop object.
template <class Object>
struct LoopValueRow {
  std::string_view keyword;
  bool writesBlanks;  ///< Whether the blanks held back stand in front; if not they are lost.
  void (*write)(const Object& object, OutputStream& out, std::int32_t column);
};

/// One condition keyword of a loop object.
template <class Object>
struct LoopConditionRow {
  std::string_view keyword;
  bool (*holds)(const Object& object, const KeywordArguments& arguments);
};

/// The row of a keyword in either kind of table, or null.
template <class Row>
const Row* findRow(std::span<const Row> rows, std::string_view keyword) {
  for (const Row& row : rows) {
    if (row.keyword == keyword) return &row;
  }
  return nullptr;
}

/// What ForEachObject::value does, from an object's table.
template <class Object>
bool answerValue(std::span<const LoopValueRow<Object>> rows, const Object& object,
                 std::string_view keyword, OutputStream* out, const KeywordPosition& position) {
  const LoopValueRow<Object>* row = findRow(rows, keyword);
  if (out == nullptr || row == nullptr) return row != nullptr;
  if (row->writesBlanks) out->writeBlanks(position.pendingSpaces);
  row->write(object, *out, position.column);
  return false;
}

/// A triple as "typ, min, max" at a number of digits.
inline void writeTriple(OutputStream& out, const IBISTriple& triple, int digits) {
  out.writeNumber(triple.typ, digits);
  out.write(", ");
  out.writeNumber(triple.min, digits);
  out.write(", ");
  out.writeNumber(triple.max, digits);
}

}  // namespace ibis
