#include "output/embedded_templates.h"

#include <string>

namespace ibis {

std::span<const EmbeddedTemplate> embeddedTemplates() {
  // lines, their number, time of the last change, name
  static const EmbeddedTemplate templates[] = {
      {componentTemplateLines, componentTemplateLineCount, "Wed Jul 09 15:26:42 2025",
       "component.tmpl"},
      {packageTemplateLines, packageTemplateLineCount, "Wed Jul 09 15:26:29 2025", "package.tmpl"},
      {infoTemplateLines, infoTemplateLineCount, "Fri Jun 20 06:27:33 2025", "info.tmpl"},
      {scriptTemplateLines, scriptTemplateLineCount, "Tue Nov 04 11:00:35 2025", "script.tmpl"},
  };
  return templates;
}

bool loadEmbedded(TextBuffer& buffer, std::string_view name) {
  buffer.clear();
  for (const EmbeddedTemplate& candidate : embeddedTemplates()) {
    if (name != candidate.name) continue;
    std::string text;
    for (std::int32_t i = 0; i < candidate.lineCount; ++i) text += candidate.lines[i];
    buffer.assign(text);
    return true;
  }
  return false;
}

}  // namespace ibis
