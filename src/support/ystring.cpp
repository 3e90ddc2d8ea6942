#include "support/ystring.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

namespace {

using Count = std::atomic<std::int32_t>;
static_assert(sizeof(Count) == 4, "the text stands four bytes behind the count");

Count& countOf(void* block) { return *static_cast<Count*>(block); }

void* makeBlock(const char* text, std::size_t length) {
  void* const block = std::malloc(sizeof(Count) + length + 1);
  if (block == nullptr) throw std::bad_alloc();
  new (block) Count(1);
  char* const copy = static_cast<char*>(block) + sizeof(Count);
  std::memcpy(copy, text, length);
  copy[length] = '\0';
  return block;
}

void* makeBlock(const char* text) { return makeBlock(text, std::strlen(text)); }

}  // namespace

YString::YString() : block_(makeBlock("")) {}

YString::YString(const char* text) : block_(makeBlock(text != nullptr ? text : "")) {}

YString::YString(std::int32_t value) : block_(makeBlock(std::to_string(value).c_str())) {}

YString::YString(const YString& other) noexcept : block_(other.block_) { ++countOf(block_); }

YString& YString::operator=(const YString& other) noexcept {
  ++countOf(other.block_);
  release();
  block_ = other.block_;
  return *this;
}

YString::~YString() { release(); }

void YString::release() noexcept {
  if (--countOf(block_) == 0) std::free(block_);
}

char* YString::copy() const { return duplicateText(text()); }

char* YString::detach() {
  void* const empty = makeBlock("");
  char* text = nullptr;
  try {
    text = copy();
  } catch (...) {
    std::free(empty);
    throw;
  }
  release();
  block_ = empty;
  return text;
}

char* duplicateText(const char* text) {
  const std::size_t size = std::strlen(text) + 1;
  void* const copy = std::malloc(size);
  if (copy == nullptr) throw std::bad_alloc();
  std::memcpy(copy, text, size);
  return static_cast<char*>(copy);
}
