#pragma once

#include "output/output_run.h"
#include "reader/text/text_buffer.h"

namespace ibis::testing {

/// Expands templates as TemplateEngine does, but walks them character by character and remembers
/// nothing of them.
class ReferenceEngine : public OutputRun {
 public:
  using OutputRun::OutputRun;

  void expand(TextBuffer& text);
};

}  // namespace ibis::testing
