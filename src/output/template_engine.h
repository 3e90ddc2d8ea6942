#pragma once

#include "output/output_run.h"
#include "reader/text/text_buffer.h"

namespace ibis {

/// Expands templates for one component of a file.
class TemplateEngine : public OutputRun {
 public:
  using OutputRun::OutputRun;

  /// Walks the text once and writes what it yields; always true.
  bool expand(TextBuffer& text);
};

}  // namespace ibis
