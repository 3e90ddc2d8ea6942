#pragma once

#include <stdexcept>
#include <string>

#include "support/script_function.h"

namespace ibis::cli {

/// Why a plug-in cannot be used.
class PluginFault : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Keeps a plug-in loaded while it lives; raises PluginFault if the plug-in cannot be loaded.
class Plugin {
 public:
  explicit Plugin(const std::string& path);
  ~Plugin();
  Plugin(const Plugin&) = delete;
  Plugin& operator=(const Plugin&) = delete;

  /// The function that it registered under a name; raises PluginFault if there is none.
  ScriptFunction function(const char* name) const;

 private:
  std::string path_;
  void* handle_;
};

/// The path of the plug-in that was built or installed with this program; raises PluginFault if the
/// link to the program cannot be read.
std::string ownPluginPath(const std::string& programLink = "/proc/self/exe");

}  // namespace ibis::cli
