#include "ngspice.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <new>
#include <sstream>

#include "interruption.h"
#include "reader/text/open_file.h"

extern char** environ;

namespace ibis::cli {
namespace {

constexpr const char* programName = "ngspice";

// What a log holds when a run was not complete.
constexpr std::string_view faults[] = {
    "Timestep too small",
    "simulation(s) aborted",
    "Error on line",
    "Error:",
    "singular matrix",
    "no such function",
    "unknown subckt",
    "Fatal",
    "fatal",
    "run simulation(s) aborted",
    "no simulations run",
};

std::string readAll(const std::string& name) {
  std::string bytes;
  struct stat status {};
  const OpenFile file = openRegularFile(name, openFile, status);
  if (!file) return bytes;
  bytes.resize(static_cast<std::size_t>(status.st_size));
  bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file.get()));
  return bytes;
}

void writeAll(const std::string& name, const std::string& text) {
  std::FILE* file = nullptr;
  openFile(&file, name.c_str(), "wb");
  OpenFile out(file);
  const bool isWhole = out && std::fwrite(text.data(), 1, text.size(), file) == text.size();
  if (!isWhole || std::fclose(out.release()) != 0) throw SimulatorFault("cannot write " + name);
}

// The actions that a started process takes before it runs.
class FileActions {
 public:
  explicit FileActions(const std::string& log) {
    posix_spawn_file_actions_init(&actions_);
    posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions_, STDOUT_FILENO, log.c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0600);
    posix_spawn_file_actions_adddup2(&actions_, STDOUT_FILENO, STDERR_FILENO);
  }
  ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }
  FileActions(const FileActions&) = delete;
  FileActions& operator=(const FileActions&) = delete;

  const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_;
};

// The program's own threads block the signals that end it, and it passes over those that a full
// pipe or a limit sends; a started process is to do neither.
class UsualSignals {
 public:
  UsualSignals() {
    sigset_t none;
    sigemptyset(&none);
    sigset_t passedOver = none;
    for (const int signal : {SIGPIPE, SIGXCPU, SIGXFSZ}) sigaddset(&passedOver, signal);
    posix_spawnattr_init(&attributes_);
    posix_spawnattr_setsigmask(&attributes_, &none);
    posix_spawnattr_setsigdefault(&attributes_, &passedOver);
    posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  }
  ~UsualSignals() { posix_spawnattr_destroy(&attributes_); }
  UsualSignals(const UsualSignals&) = delete;
  UsualSignals& operator=(const UsualSignals&) = delete;

  const posix_spawnattr_t* get() const { return &attributes_; }

 private:
  posix_spawnattr_t attributes_;
};

// What one run may take. A table of voltages of the largest models takes a few megabytes.
void limitRun(pid_t child, unsigned seconds) {
  constexpr rlim_t mostBytes = 256 << 20;
  const rlimit time{seconds, rlim_t{seconds} + 1};
  const rlimit size{mostBytes, mostBytes};
  const rlimit core{0, 0};
  prlimit(child, RLIMIT_CPU, &time, nullptr);
  prlimit(child, RLIMIT_FSIZE, &size, nullptr);
  prlimit(child, RLIMIT_CORE, &core, nullptr);
}

void requireOwnEnd(int status, unsigned seconds) {
  if (!WIFSIGNALED(status)) return;
  const int signal = WTERMSIG(status);
  if (signal == SIGXCPU) {
    throw SimulatorFault("it took more than " + std::to_string(seconds) +
                         " s of processor time; --max-time gives more");
  }
  if (signal == SIGXFSZ) throw SimulatorFault("it wrote more than 256 MB");
  throw SimulatorFault(std::string("a signal ended it: ") + strsignal(signal));
}

void runProgram(std::initializer_list<std::string> words, const std::string& log,
                unsigned seconds) {
  std::vector<std::string> texts(words);
  std::vector<char*> arguments;
  for (std::string& text : texts) arguments.push_back(text.data());
  arguments.push_back(nullptr);
  const FileActions actions(log);
  const UsualSignals signals;
  const pid_t running = startWatched([&] {
    pid_t child = 0;
    const int fault =
        posix_spawnp(&child, programName, actions.get(), signals.get(), arguments.data(), environ);
    if (fault != 0) {
      throw SimulatorFault(std::string("cannot start ngspice: ") + std::strerror(fault));
    }
    return child;
  });
  limitRun(running, seconds);
  requireOwnEnd(waitForWatched(running), seconds);
}

// The first line of a log that tells why a run is not complete, or nothing.
std::string faultIn(const std::string& log) {
  std::istringstream lines(log);
  for (std::string line; std::getline(lines, line);) {
    for (const std::string_view fault : faults) {
      if (line.find(fault) != line.npos) return line;
    }
  }
  return {};
}

}  // namespace

TemporaryFolder::TemporaryFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "ibis-load-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) throw SimulatorFault("cannot make a temporary folder");
  path_.swap(name);
  try {
    watchFolder(path_);
  } catch (const std::bad_alloc&) {
    rmdir(path_.c_str());
    throw;
  }
}

// Where memory lacks even for this, a folder of temporary files is left behind.
TemporaryFolder::~TemporaryFolder() {
  try {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  } catch (const std::bad_alloc&) {
  }
  forgetFolder(path_);
}

void requireNgspice() {
  constexpr unsigned seconds = 10;
  const TemporaryFolder folder;
  try {
    runProgram({programName, "-v"}, folder.path() + "/log", seconds);
  } catch (const SimulatorFault& fault) {
    throw SimulatorFault(std::string(fault.what()) + "; it must be on the PATH");
  }
}

RawPlot runNgspice(const TemporaryFolder& folder, const std::string& deck, unsigned seconds) {
  const std::string base = folder.path() + "/run";
  writeAll(base + ".cir", deck);
  std::error_code ignored;
  std::filesystem::remove(base + ".raw", ignored);
  runProgram({programName, "-n", "-b", "-r", base + ".raw", base + ".cir"}, base + ".log", seconds);
  if (const std::string fault = faultIn(readAll(base + ".log")); !fault.empty()) {
    throw SimulatorFault(fault);
  }
  const std::optional<RawPlot> plot = readRawPlot(readAll(base + ".raw"));
  if (!plot) throw SimulatorFault("the simulator saved nothing");
  return *plot;
}

}  // namespace ibis::cli
