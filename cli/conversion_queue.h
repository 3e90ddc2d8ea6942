#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <optional>
#include <thread>
#include <unordered_map>
#include <vector>

#include "conversion.h"
#include "source_list.h"

namespace ibis::cli {

/// Converts sources in threads and returns the results in the sources' order.
class ConversionQueue {
 public:
  /// A thread waits where this many results for each thread have not been taken.
  static constexpr std::size_t aheadOfThread = 16;

  /// Starts the work; the sources must outlive it.
  ConversionQueue(const std::vector<Source>& sources, const ConversionRequest& pattern,
                  std::size_t threads);

  /// Waits for the running conversions; no further one begins.
  ~ConversionQueue();
  ConversionQueue(const ConversionQueue&) = delete;
  ConversionQueue& operator=(const ConversionQueue&) = delete;

  /// Waits at most this long for the next result; returns none if it is not there by then.
  std::optional<Conversion> take(std::chrono::milliseconds patience);

  /// How many sources are done, those not yet taken included.
  std::size_t doneCount() const { return done_; }

  /// The source that was begun last; the first source if none was begun yet.
  const Source& current() const;

 private:
  void startThreads(std::size_t count);
  bool waitForRoom(std::size_t index);
  void work();
  Conversion convertSource(const Source& source) const;

  const std::vector<Source>& sources_;
  const ConversionRequest pattern_;
  const std::size_t mostAhead_;  // sources begun beyond the results that were taken
  std::atomic<std::size_t> next_ = 0;
  std::atomic<std::size_t> done_ = 0;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::condition_variable room_;
  bool isEnding_ = false;
  std::unordered_map<std::size_t, Conversion> finished_;  // results not yet taken
  std::size_t taken_ = 0;
  std::exception_ptr fault_;  // what stopped a thread
  std::vector<std::jthread> threads_;
};

}  // namespace ibis::cli
