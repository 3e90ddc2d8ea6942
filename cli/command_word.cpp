#include "command_word.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "near_names.h"
#include "printable.h"

namespace ibis::cli {
namespace {

// A file that is there, or a name that no command has.
bool isFileName(const std::string& word) {
  std::error_code fault;
  return word.find_first_of("./") != word.npos || std::filesystem::exists(word, fault);
}

std::string meantFor(const std::string& word, const std::vector<std::string>& commands) {
  if (word == "help") return "did you mean 'ibis-load --help'?";
  if (isFileName(word)) {
    const std::string name = printable(word);
    return "did you mean 'ibis-load convert " + name + "' or 'ibis-load list " + name + "'?";
  }
  return meantText(word, commands);
}

}  // namespace

std::string faultOfCommandWord(const std::vector<std::string>& words,
                               const std::vector<std::string>& commands) {
  std::string fault = "a command is missing";
  if (!words.empty()) {
    const std::string& word = words.front();
    if (word.starts_with('-') || std::ranges::find(commands, word) != commands.end()) return {};
    const std::string meant = meantFor(word, commands);
    fault = '\'' + printable(word) + "' is not a command" + (meant.empty() ? "" : "; " + meant);
  }
  return "ibis-load: error: " + fault + "\nThe commands are " + namesText(commands) +
         ".\nRun with --help for more information.\n";
}

}  // namespace ibis::cli
