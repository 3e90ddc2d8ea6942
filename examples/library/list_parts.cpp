// Lists the components, pins and models of an IBIS file.
#include <ibis/document.h>

#include <cstdio>
#include <string>

namespace {

std::string text(ibis::IBISString name) { return name.empty() ? "-" : name.str(); }

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: list-parts FILE\n");
    return 2;
  }
  const ibis::Document document = ibis::read(argv[1]);
  for (const ibis::Diagnostic& found : document.diagnostics()) {
    const char* kind = found.severity == ibis::Severity::error ? "error" : "warning";
    std::fprintf(stderr, "%s:%d: %s: %s\n", argv[1], found.line, kind, found.text.c_str());
  }
  for (const auto& component : document.file().components) {
    std::printf("component %s\n", text(component->name).c_str());
    for (const ibis::IBISPin& pin : component->pins) {
      std::printf("  pin %s %s %s\n", text(pin.name).c_str(), text(pin.signal_name).c_str(),
                  text(pin.model_name).c_str());
    }
  }
  for (const auto& model : document.file().models) {
    std::printf("model %s\n", text(model->name).c_str());
  }
  return document.hasErrors() ? 1 : 0;
}
