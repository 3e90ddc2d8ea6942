#include "plugin.h"

#include <dlfcn.h>

#include <filesystem>

namespace ibis::cli {

// The loader would search its own folders for a name without a slash.
Plugin::Plugin(const std::string& path)
    : path_(path.find('/') == path.npos ? "./" + path : path),
      handle_(dlopen(path_.c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (handle_ == nullptr) throw PluginFault(std::string("cannot load the plug-in: ") + dlerror());
}

Plugin::~Plugin() { dlclose(handle_); }

ScriptFunction Plugin::function(const char* name) const {
  const FuncConstruct* registration = findScriptFunction(name);
  if (registration != nullptr) return registration->function();
  throw PluginFault('\'' + path_ + "' registers no function " + name);
}

std::string ownPluginPath(const std::string& programLink) {
  std::error_code unknown;
  const auto program = std::filesystem::read_symlink(programLink, unknown);
  if (unknown) {
    throw PluginFault("cannot tell where the plug-in lies: " + unknown.message() +
                      "; name it with --plugin");
  }
  return (program.parent_path() / IBIS_LOAD_PLUGIN_FROM_BIN).lexically_normal().string();
}

}  // namespace ibis::cli
