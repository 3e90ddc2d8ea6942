#pragma once

#include <chrono>
#include <string>

namespace ibis::cli {

/// A line on the terminal of standard error, overwritten in place.
class Progress {
 public:
  static constexpr std::chrono::milliseconds interval{100};

  /// Shows nothing if it is not wanted or standard error is not a terminal.
  Progress(std::size_t total, bool isWanted);

  /// Wipes the line.
  ~Progress() { wipe(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// Shows how far the work is, at most once in an interval.
  void show(std::size_t done, const std::string& current);

  /// Makes room for other text.
  void wipe();

 private:
  using Clock = std::chrono::steady_clock;

  std::string lineFor(std::size_t done, const std::string& current, Clock::time_point now) const;

  const std::size_t total_;
  const bool isShown_;
  const Clock::time_point start_ = Clock::now();
  Clock::time_point next_ = start_;  // when the line may change again
  std::size_t shownColumns_ = 0;
};

}  // namespace ibis::cli
