#include "conversion_queue.h"

#include <algorithm>
#include <system_error>

#include "ibis/exception.h"
#include "messages.h"

namespace ibis::cli {

ConversionQueue::ConversionQueue(const std::vector<Source>& sources,
                                 const ConversionRequest& pattern, std::size_t threads)
    : sources_(sources),
      pattern_(pattern),
      mostAhead_(aheadOfThread * std::max<std::size_t>(1, threads)) {
  startThreads(std::min(threads, sources.size()));
}

ConversionQueue::~ConversionQueue() {
  const std::lock_guard lock(mutex_);
  next_ = sources_.size();
  isEnding_ = true;
  room_.notify_all();
}

std::optional<Conversion> ConversionQueue::take(std::chrono::milliseconds patience) {
  std::unique_lock lock(mutex_);
  changed_.wait_for(lock, patience, [&] { return fault_ || finished_.contains(taken_); });
  if (fault_) std::rethrow_exception(fault_);
  auto entry = finished_.extract(taken_);
  if (entry.empty()) return std::nullopt;
  ++taken_;
  room_.notify_all();
  return std::move(entry.mapped());
}

const Source& ConversionQueue::current() const {
  const std::size_t begun = std::min(next_.load(), sources_.size());
  return sources_[begun == 0 ? 0 : begun - 1];
}

// If the machine has no more threads left, those that were started do the work.
void ConversionQueue::startThreads(std::size_t count) {
  try {
    while (threads_.size() < count) threads_.emplace_back([this] { work(); });
  } catch (const std::system_error&) {
    if (threads_.empty()) throw;
  }
}

// The results behind a slow file would else pile up.
bool ConversionQueue::waitForRoom(std::size_t index) {
  std::unique_lock lock(mutex_);
  room_.wait(lock, [&] { return isEnding_ || index < taken_ + mostAhead_; });
  return !isEnding_;
}

void ConversionQueue::work() {
  try {
    for (std::size_t i = next_++; i < sources_.size(); i = next_++) {
      if (!waitForRoom(i)) return;
      Conversion result = convertSource(sources_[i]);
      const std::lock_guard lock(mutex_);
      finished_.emplace(i, std::move(result));
      ++done_;
      changed_.notify_one();
    }
  } catch (...) {
    const std::lock_guard lock(mutex_);
    fault_ = std::current_exception();
    changed_.notify_one();
  }
}

// A fault of one file must not keep the others from being converted.
Conversion ConversionQueue::convertSource(const Source& source) const {
  if (source.fault) return failure(*source.fault);
  ConversionRequest request = pattern_;
  request.source = source.name;
  request.folder = source.folder;
  try {
    return convert(request);
  } catch (const std::exception& fault) {
    return failure(tell(Severity::error, message::workFailed, fault.what()));
  } catch (const KelvrantException& fault) {
    return failure(tell(Severity::error, message::workFailed, fault.message));
  }
}

}  // namespace ibis::cli
