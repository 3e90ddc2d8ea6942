#include "progress.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdio>
#include <iostream>

#include "printable.h"
#include "report.h"
#include "text_columns.h"

namespace ibis::cli {
namespace {

constexpr std::size_t usualColumns = 80;

// A line that reaches the last column may wrap, and then cannot be overwritten.
std::size_t freeColumns() {
  winsize size{};
  const bool isKnown = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 1;
  return (isKnown ? size.ws_col : usualColumns) - 1;
}

std::string fitted(std::string text, std::size_t columns) {
  while (columnsOf(text) > columns) text.pop_back();
  return text;
}

std::string rateText(std::size_t done, std::chrono::duration<double> time) {
  char text[40];
  std::snprintf(text, sizeof text, ", %.1f per second", static_cast<double>(done) / time.count());
  return text;
}

}  // namespace

Progress::Progress(std::size_t total, bool isWanted)
    : total_(total), isShown_(isWanted && isatty(STDERR_FILENO) != 0) {}

void Progress::show(std::size_t done, const std::string& current) {
  const auto now = Clock::now();
  if (!isShown_ || now < next_) return;
  const std::string line = fitted(lineFor(done, current, now), freeColumns());
  wipe();
  std::cerr << line + '\r' << std::flush;
  shownColumns_ = columnsOf(line);
  next_ = now + interval;
}

void Progress::wipe() {
  if (shownColumns_ == 0) return;
  std::cerr << '\r' + std::string(shownColumns_, ' ') + '\r' << std::flush;
  shownColumns_ = 0;
}

// There is no rate before the first file is done.
std::string Progress::lineFor(std::size_t done, const std::string& current,
                              Clock::time_point now) const {
  return std::to_string(done) + " of " + counted(total_, "file") +
         (done == 0 ? "" : rateText(done, now - start_)) + ": " + printable(current);
}

}  // namespace ibis::cli
