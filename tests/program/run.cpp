#include "program/run.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>
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
  const Folder folder;
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
  result.status = spawn(streams.program, words, actions);
  if (streams.output.empty()) result.out = readFile(output);
  if (streams.error.empty()) result.err = readFile(error);
  return result;
}

Folder::Folder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "ibis-load-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("cannot make a folder");
  path_ = pattern;
}

Folder::~Folder() { std::filesystem::remove_all(path_); }

std::string Folder::write(const std::string& name, const std::string& text) const {
  std::ofstream(file(name), std::ios::binary) << text;
  return file(name);
}

std::vector<std::string> Folder::names() const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(path_)) {
    names.push_back(entry.path().filename().string());
  }
  std::ranges::sort(names);
  return names;
}

std::string readFile(const std::string& name) {
  std::ifstream file(name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace ibis::testing
