#pragma once

#include "output/keyword_handlers.h"

namespace ibis {

// Each appends an entry and returns true; the tables do not change once the library has loaded.
bool addValueKeyword(const char* name, ValueHandler handler);
bool addLoopKeyword(const char* name, LoopFactory factory);
bool addConditionKeyword(const char* name, ConditionHandler handler);

// Each returns the handler of the first entry of exactly that name, or null.
ValueHandler valueKeyword(std::string_view name);
LoopFactory loopKeyword(std::string_view name);
ConditionHandler conditionKeyword(std::string_view name);

}  // namespace ibis
