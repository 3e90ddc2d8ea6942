#include "limited_sink.h"

#include <utility>

namespace ibis::cli {
namespace {

class LimitedTarget final : public SinkTarget {
 public:
  LimitedTarget(std::unique_ptr<SinkTarget> target, LimitedSink& sink)
      : target_(std::move(target)), sink_(sink) {}

  bool write(std::string_view text) override {
    sink_.take(text.size());
    return target_->write(text);
  }

  bool close() override { return target_->close(); }

 private:
  const std::unique_ptr<SinkTarget> target_;
  LimitedSink& sink_;
};

}  // namespace

OutputTooLarge::OutputTooLarge(std::uint64_t limit)
    : std::runtime_error("more than " + std::to_string(limit) + " bytes of output") {}

std::unique_ptr<SinkTarget> LimitedSink::open(const std::string& name) {
  std::unique_ptr<SinkTarget> target = sink_.open(name);
  if (!target) return nullptr;
  return std::make_unique<LimitedTarget>(std::move(target), *this);
}

void LimitedSink::take(std::uint64_t count) {
  taken_ += count;
  if (taken_ > limit_) throw OutputTooLarge(limit_);
}

std::uint64_t usualOutputLimit(std::size_t textSize) {
  constexpr std::uint64_t perByte = 200;
  constexpr std::uint64_t free = 100'000'000;
  return textSize * perByte + free;
}

}  // namespace ibis::cli
