#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "reader/text/text_buffer.h"

namespace ibis {

/// A template that is part of the program.
struct EmbeddedTemplate {
  const char* const* lines;  ///< Each with its line end; the last may be empty or lack it.
  std::int32_t lineCount;
  const char* timeStamp;  ///< Of the text's last change; no output shows it.
  const char* name;
};

/// The templates by name: component, package, info, script.
std::span<const EmbeddedTemplate> embeddedTemplates();

/// Puts the whole text of a template into the buffer; false, with an empty buffer, if no template
/// has the name.
bool loadEmbedded(TextBuffer& buffer, std::string_view name);

// Made at build time from the files in output/templates.
extern const char* const componentTemplateLines[];
extern const std::int32_t componentTemplateLineCount;
extern const char* const packageTemplateLines[];
extern const std::int32_t packageTemplateLineCount;
extern const char* const infoTemplateLines[];
extern const std::int32_t infoTemplateLineCount;
extern const char* const scriptTemplateLines[];
extern const std::int32_t scriptTemplateLineCount;

}  // namespace ibis
