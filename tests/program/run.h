#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace ibis::testing {

/// What one run of the program left behind.
struct Outcome {
  int status = -1;  ///< Exit status; 128 and the signal for a run that one ended.
  std::string out;
  std::string err;
};

/// Where a run gets its standard streams from.
struct Streams {
  std::string input = {};
  std::string output = {};  ///< A file for standard output; empty to collect it.
  std::string error = {};   ///< A file for standard error; empty to collect it.
  bool outputHasNoReader = false;
  std::string program = IBIS_PROGRAM_PATH;
  std::string folder = ".";  ///< Where the program works.
};

/// Runs the program with these words behind its name.
Outcome run(const std::vector<std::string>& words, const Streams& streams = {});

/// A folder of its own that goes away with the object.
class Folder {
 public:
  Folder();
  ~Folder();
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  const std::string& path() const { return path_; }
  std::string file(const std::string& name) const { return path_ + '/' + name; }

  /// Writes a file and gives its whole name.
  std::string write(const std::string& name, const std::string& text) const;

  /// The names of all entries, sorted.
  std::vector<std::string> names() const;

 private:
  std::string path_;
};

std::string readFile(const std::string& name);

}  // namespace ibis::testing
