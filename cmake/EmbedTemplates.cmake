# Writes every template of a folder as an array of string literals, one for each line.
#
# usage: cmake -D templateFolder=FOLDER -D outputFile=FILE -P EmbedTemplates.cmake
#
# A template's text stays in quoted arguments throughout: taken as a list, its semicolons and
# brackets would be lost. Its rows are the pieces after each newline, the last one often empty.

file(GLOB templates ${templateFolder}/*.tmpl)
set(definitions "")

foreach(template IN LISTS templates)
  cmake_path(GET template STEM name)
  file(READ ${template} text)

  if(text MATCHES "[^\t\n -~]")
    message(FATAL_ERROR "${template}: a template holds printable ASCII, tabs and newlines only")
  endif()

  string(REPLACE "\\" "\\\\" text "${text}")
  string(REPLACE "\"" "\\\"" text "${text}")
  string(REPLACE "\t" "\\t" text "${text}")
  string(REPLACE "\n" "\\n\",\n    \"" text "${text}")

  string(APPEND definitions "\nconst char* const ${name}TemplateLines[] = {\n    \"${text}\",\n};\n"
         "const std::int32_t ${name}TemplateLineCount = std::size(${name}TemplateLines);\n")
endforeach()

file(WRITE "${outputFile}" "#include \"output/embedded_templates.h\"\n\n"
     "#include <cstdint>\n#include <iterator>\n\nnamespace ibis {\n${definitions}\n"
     "}  // namespace ibis\n")
