#pragma once

#include <cstdint>
#include <stdexcept>

#include "output/stream/sink.h"

namespace ibis::cli {

/// Raised by a write beyond the limit.
class OutputTooLarge : public std::runtime_error {
 public:
  explicit OutputTooLarge(std::uint64_t limit);
};

/// Hands outputs on to another sink, as long as all of them together stay within a limit.
class LimitedSink final : public Sink {
 public:
  /// The other sink must outlive it; the limit and what was taken of it before are in bytes.
  LimitedSink(Sink& sink, std::uint64_t limit, std::uint64_t taken = 0)
      : sink_(sink), limit_(limit), taken_(taken) {}

  std::unique_ptr<SinkTarget> open(const std::string& name) override;
  bool keep(const std::string& name) override { return sink_.keep(name); }

  std::uint64_t taken() const { return taken_; }

  /// Counts bytes; throws OutputTooLarge beyond the limit.
  void take(std::uint64_t count);

 private:
  Sink& sink_;
  const std::uint64_t limit_;
  std::uint64_t taken_;
};

/// The most that the outputs of a text may take unless a user wants more: 200 bytes for each byte
/// of the text, and 100 MB.
std::uint64_t usualOutputLimit(std::size_t textSize);

}  // namespace ibis::cli
