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

/// A plug-in for as long as it lives; raises PluginFault if it cannot be loaded.
class Plugin {
 public:
  explicit Plugin(const std::string& path);
  ~Plugin();
  Plugin(const Plugin&) = delete;
  Plugin& operator=(const Plugin&) = delete;

  /// What it registered under that name; raises PluginFault for nothing.
  ScriptFunction function(const char* name) const;

 private:
  std::string path_;
  void* handle_;
};

/// The plug-in that was built or installed with this program; raises PluginFault where the link
/// that tells the program's place cannot be read.
std::string ownPluginPath(const std::string& programLink = "/proc/self/exe");

}  // namespace ibis::cli
