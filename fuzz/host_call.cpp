// IBIS_Load as the host calls it, with the arrays that the file's first line gives.

#include <sys/resource.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <string>

#include "call_line.h"
#include "fuzz.h"
#include "harness/fake_host.h"
#include "harness/temporary_folder.h"
#include "large_output.h"
#include "support/files.h"

namespace ibis::fuzz {
namespace {

// Where the calls work: roots "out" and "full" are there, of which the second takes 1000 bytes a
// file, and all others are not.
class Disk {
 public:
  Disk() {
    std::signal(SIGXFSZ, SIG_IGN);
    for (const char* root : {"out", "full"}) std::filesystem::create_directory(place(root));
  }

  std::string place(const std::string& name) const { return folder_.file(name); }
  std::string input(std::string_view text) const { return folder_.write("input.ibs", text); }

  // Whether the name leads to a file below the folder.
  bool holds(std::string_view name) const {
    return name.starts_with(folder_.path() + '/') && name.find("/..") == name.npos;
  }

  // Removes what was written; false if a file that is not in its place was among it.
  bool clear() const {
    bool isGood = true;
    for (const char* root : {"out", "full"}) {
      for (const auto& entry : std::filesystem::directory_iterator(place(root))) {
        if (entry.path().extension() == ".part") isGood = false;
        std::filesystem::remove(entry.path());
      }
    }
    return isGood;
  }

 private:
  testing::TemporaryFolder folder_;
};

const Disk& disk() {
  static const Disk only;
  return only;
}

// How large a file may become, for as long as it lives.
class Room {
 public:
  explicit Room(rlim_t bytes) {
    getrlimit(RLIMIT_FSIZE, &before_);
    rlimit limit = before_;
    limit.rlim_cur = std::min(bytes, before_.rlim_max);
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~Room() { setrlimit(RLIMIT_FSIZE, &before_); }
  Room(const Room&) = delete;
  Room& operator=(const Room&) = delete;

 private:
  rlimit before_{};
};

std::size_t numberIn(const std::string& text) {
  const std::size_t number = std::stoul(text);
  REQUIRE(text == std::to_string(number));
  return number;
}

// Status, root directory, number of warnings, number of errors, warnings, errors.
void checkResult(const Strings& strings, const CallArrays& call) {
  REQUIRE(strings.size() >= 4);
  const std::size_t warnings = numberIn(strings[2]);
  const std::size_t errors = numberIn(strings[3]);
  REQUIRE(strings.size() == warnings + errors + 4);
  REQUIRE(strings[0] == (errors > 0 ? "2" : warnings > 0 ? "1" : "0"));
  REQUIRE(strings[1] == (call[1] && call[1]->size() > 2 ? (*call[1])[2] : ""));
  REQUIRE(std::ranges::find(strings, "(null)") == strings.end());
}

}  // namespace
}  // namespace ibis::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace ibis::fuzz;
  const std::string_view text = textOf(data, size);
  if (asksForLargeOutput(text)) return 0;
  CallArrays call = callArrays(text);
  if (call[0] && !call[0]->empty() && !call[0]->front().empty()) {
    (*call[0])[0] = disk().input(text);
  }
  const bool hasRoot = call[1] && call[1]->size() > 2;
  const bool isFull = hasRoot && (*call[1])[2] == "full";
  if (hasRoot) (*call[1])[2] = disk().place((*call[1])[2]);
  const ibis::testing::FakeArguments arguments{call[0], call[1], call[2], call[3]};
  ibis::testing::FakeResult result;
  const FuncConstruct* function = findScriptFunction("IBIS_Load");
  {
    const Room room(isFull ? 1000 : RLIM_INFINITY);
    REQUIRE(callAsHost(function->function(), arguments, result) == FUNC_ERROR::success);
  }
  REQUIRE(result.allocateCalls == 1 && result.finishCalls == 1);
  checkResult(result.strings(), call);
  REQUIRE(disk().clear());
  return 0;
}

// Stands in front of the support library's own, so that no input writes a file of this machine.
int fopen_s_utf8(std::FILE** file, const char* name, const char* mode) {
  if (std::strcmp(mode, "rb") == 0 || ibis::fuzz::disk().holds(name)) {
    return ibis::openFile(file, name, mode);
  }
  *file = nullptr;
  return ENOENT;
}
