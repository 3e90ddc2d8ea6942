#include "program/run.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <stdexcept>

namespace ibis::testing {
namespace {

// The streams go through files, which unlike pipes never make one side wait for the other.
class FileActions {
 public:
  FileActions() { posix_spawn_file_actions_init(&actions_); }
  ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }
  FileActions(const FileActions&) = delete;
  FileActions& operator=(const FileActions&) = delete;

  void open(int stream, const std::string& name, int flags) {
    posix_spawn_file_actions_addopen(&actions_, stream, name.c_str(), flags, 0600);
  }
  void take(int stream, int descriptor) {
    posix_spawn_file_actions_adddup2(&actions_, descriptor, stream);
  }
  void enter(const std::string& folder) {
    posix_spawn_file_actions_addchdir_np(&actions_, folder.c_str());
  }
  const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_;
};

int exitStatus(pid_t child) {
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

std::vector<std::string> wordsOf(std::vector<std::string> words, const Streams& streams) {
  const bool isConversion = !words.empty() && words.front() == "convert";
  if (isConversion && !streams.tellsFindings) words.insert(words.begin() + 1, "--no-check");
  return words;
}

int spawn(const std::string& program, std::vector<std::string> words, const FileActions& actions) {
  words.insert(words.begin(), program);
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  pid_t child = 0;
  const int fault =
      posix_spawn(&child, program.c_str(), actions.get(), nullptr, pointers.data(), environ);
  if (fault != 0) throw std::runtime_error("cannot start " + program);
  return exitStatus(child);
}

// A pipe's end for writing that nobody reads from.
class UnreadPipe {
 public:
  UnreadPipe() {
    if (pipe(ends_.data()) != 0) throw std::runtime_error("cannot make a pipe");
    close(ends_[0]);
  }
  ~UnreadPipe() { close(ends_[1]); }
  UnreadPipe(const UnreadPipe&) = delete;
  UnreadPipe& operator=(const UnreadPipe&) = delete;

  int end() const { return ends_[1]; }

 private:
  std::array<int, 2> ends_{};
};

}  // namespace

Outcome run(const std::vector<std::string>& words, const Streams& streams) {
  const TemporaryFolder folder;
  const UnreadPipe unread;
  const std::string output = streams.output.empty() ? folder.file("out") : streams.output;
  FileActions actions;
  actions.open(STDIN_FILENO, folder.write("in", streams.input), O_RDONLY);
  const std::string error = streams.error.empty() ? folder.file("err") : streams.error;
  actions.open(STDERR_FILENO, error, O_WRONLY | O_CREAT);
  if (streams.outputHasNoReader) {
    actions.take(STDOUT_FILENO, unread.end());
  } else {
    actions.open(STDOUT_FILENO, output, O_WRONLY | O_CREAT);
  }
  actions.enter(streams.folder);
  Outcome result;
  result.status = spawn(streams.program, wordsOf(words, streams), actions);
  if (streams.output.empty() && !streams.outputHasNoReader) result.out = readWholeFile(output);
  if (streams.error.empty()) result.err = readWholeFile(error);
  return result;
}

}  // namespace ibis::testing
