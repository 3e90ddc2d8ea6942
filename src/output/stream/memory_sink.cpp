#include "output/stream/memory_sink.h"

namespace ibis {
namespace {

class MemoryTarget final : public SinkTarget {
 public:
  MemoryTarget(std::shared_ptr<std::string> text, std::size_t room, bool closingFails)
      : text_(std::move(text)), room_(room), failed_(closingFails) {}

  bool write(std::string_view text) override {
    if (text.size() > room_ - text_->size()) failed_ = true;
    text_->append(text.substr(0, room_ - text_->size()));
    return !failed_;
  }

  bool close() override { return !failed_; }

 private:
  std::shared_ptr<std::string> text_;
  std::size_t room_;
  bool failed_;
};

}  // namespace

std::unique_ptr<SinkTarget> MemorySink::open(const std::string& name) {
  if (name.empty() || refused.contains(name)) return nullptr;
  auto text = std::make_shared<std::string>();
  auto target = std::make_unique<MemoryTarget>(text, room, closingFails);
  begun_[name] = std::move(text);
  return target;
}

bool MemorySink::keep(const std::string& name) {
  const auto begun = begun_.extract(name);
  if (keepingFails || begun.empty()) return false;
  files_[name] = std::move(*begun.mapped());
  return true;
}

}  // namespace ibis
