// Words to the program, a line each: a command is found, or help, or what is wrong. Nothing is run.

#include <iostream>
#include <sstream>
#include <vector>

#include "exit_status.h"
#include "printed.h"
#include "program.h"

namespace ibis::fuzz {
namespace {

constexpr std::size_t mostWords = 100;

// Keeps what is written into a stream, as long as it lives.
class Kept {
 public:
  explicit Kept(std::ostream& stream) : stream_(stream), before_(stream.rdbuf(text_.rdbuf())) {}
  ~Kept() { stream_.rdbuf(before_); }
  Kept(const Kept&) = delete;
  Kept& operator=(const Kept&) = delete;

  std::string text() const { return text_.str(); }

 private:
  std::ostringstream text_;
  std::ostream& stream_;
  std::streambuf* before_;
};

// No word holds a NUL, which ends it.
std::vector<std::string> wordsOf(std::string_view text) {
  std::vector<std::string> words = {"ibis-load"};
  while (!text.empty() && words.size() < mostWords) {
    const std::string_view line = text.substr(0, text.find('\n'));
    words.emplace_back(line.substr(0, line.find('\0')));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
  }
  return words;
}

void check(std::vector<std::string> words) {
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  const Kept out(std::cout);
  const Kept err(std::cerr);
  const cli::CommandLine line =
      cli::readCommandLine(static_cast<int>(pointers.size()), pointers.data());
  const bool isDone = line.status == cli::exitStatus::done;
  REQUIRE(isDone || line.status == cli::exitStatus::wrongUse);
  REQUIRE(isDone || !line.run);
  REQUIRE(out.text().empty() == (!isDone || line.run));
  REQUIRE(err.text().empty() == isDone);
  REQUIRE(isPlainText(out.text()) && isPlainText(err.text()));
}

}  // namespace
}  // namespace ibis::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  ibis::fuzz::check(ibis::fuzz::wordsOf(ibis::fuzz::textOf(data, size)));
  return 0;
}
