#pragma once

#include <span>

#include "ibis/values.h"
#include "output/loop_object.h"
#include "output/stream/number_text.h"

namespace ibis {

/// One value keyword of a loop object.
template <class Object>
struct LoopValueRow {
  std::string_view keyword;
  bool writesBlanks;  ///< Whether the blanks held back are written first; if not they are lost.
  void (*write)(const Object& object, OutputStream& out, std::int32_t column);
};

/// One condition keyword of a loop object.
template <class Object>
struct LoopConditionRow {
  std::string_view keyword;
  bool (*holds)(const Object& object, const KeywordArguments& arguments);
};

/// What ForEachObject::word does, from an object's tables of values and conditions.
template <class Object>
LoopWord findWord(std::span<const LoopValueRow<Object>> values,
                  std::span<const LoopConditionRow<Object>> conditions, std::string_view keyword) {
  for (const LoopValueRow<Object>& row : values) {
    if (row.keyword != keyword) continue;
    return {.row = &row,
            .write = [](const void* found, const ForEachObject& object, OutputStream& out,
                        const KeywordPosition& position) {
              const auto& own = *static_cast<const LoopValueRow<Object>*>(found);
              if (own.writesBlanks) out.writeBlanks(position.pendingSpaces);
              own.write(static_cast<const Object&>(object), out, position.column);
            }};
  }
  for (const LoopConditionRow<Object>& row : conditions) {
    if (row.keyword != keyword) continue;
    return {.row = &row,
            .holds = [](const void* found, const ForEachObject& object,
                        const KeywordArguments& arguments) {
              const auto& own = *static_cast<const LoopConditionRow<Object>*>(found);
              return own.holds(static_cast<const Object&>(object), arguments);
            }};
  }
  return {};
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
