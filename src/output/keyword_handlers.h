#pragma once

#include "output/loop_object.h"

namespace ibis {

class OutputRun;

/// Writes a value; returns whether the line end after the keyword is dropped.
using ValueFunction = bool(OutputRun& run, OutputStream* out, const KeywordPosition& position,
                           TextBuffer& text, const KeywordArguments& arguments);
using ValueHandler = ValueFunction*;

/// Fills a loop's items; the result is not used.
using LoopFunction = bool(OutputRun& run, LoopItems& items);
using LoopFactory = LoopFunction*;

/// Returns whether the text after the keyword is active.
using ConditionFunction = bool(OutputRun& run, TextBuffer& text, const KeywordArguments& arguments);
using ConditionHandler = ConditionFunction*;

}  // namespace ibis
