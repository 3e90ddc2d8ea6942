#pragma once

#include <cstdint>
#include <memory_resource>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "ibis/ibis_string.h"
#include "output/stream/output_stream.h"
#include "reader/text/text_buffer.h"

namespace ibis {

/// Where a template keyword stands.
struct KeywordPosition {
  std::int32_t line = 1;
  std::int32_t column = 1;         ///< Of the opening percent sign, from 1, tabs expanded.
  std::int32_t pendingSpaces = 0;  ///< Blanks held back before it, for the handler to write.
};

/// A keyword's text cut at commas; item 0 is the keyword's name.
using KeywordArguments = std::span<const IBISString>;

class ForEachObject;

/// What a keyword means to the objects of one kind: a value, a condition, or nothing.
struct LoopWord {
  using Write = void(const void* row, const ForEachObject& object, OutputStream& out,
                     const KeywordPosition& position);
  using Holds = bool(const void* row, const ForEachObject& object,
                     const KeywordArguments& arguments);

  const void* row = nullptr;  ///< Of the kind's table.
  Write* write = nullptr;     ///< Of a value.
  Holds* holds = nullptr;     ///< Of a condition.
};

/// One pass of a template loop: it knows the keywords that mean something inside it.
class ForEachObject {
 public:
  virtual ~ForEachObject() = default;

  /// The meaning of a value's whole text or a condition's name; the same for all objects of a kind.
  virtual LoopWord word(std::string_view keywordText) const = 0;

  /// Identifies the kind of the object.
  virtual const void* kind() const = 0;

  /// Goes on to the next pass of an object that stands for several; false at its last.
  virtual bool next() { return false; }

  /// Goes back to the object's first pass.
  virtual void rewind() {}

  /// Without a stream, returns whether the keyword is known; with one, writes it and returns false.
  bool value(std::string_view keywordText, OutputStream* out, const KeywordPosition& position,
             TextBuffer& /*text*/) const {
    const LoopWord known = word(keywordText);
    if (out == nullptr || known.write == nullptr) return known.write != nullptr;
    known.write(known.row, *this, *out, position);
    return false;
  }

  /// Whether the name is a condition here.
  bool isCondition(std::string_view name) const { return word(name).holds != nullptr; }

  /// Whether the condition holds for the object.
  bool evaluate(std::string_view name, const KeywordArguments& arguments) const {
    const LoopWord known = word(name);
    return known.holds != nullptr && known.holds(known.row, *this, arguments);
  }

 private:
  friend class LoopItems;
  ForEachObject* next_ = nullptr;
};

/// The objects of one loop in the order of its passes.
class LoopItems {
 public:
  LoopItems() = default;
  ~LoopItems() { clear(); }
  LoopItems(const LoopItems&) = delete;
  LoopItems& operator=(const LoopItems&) = delete;

  template <class Object, class... Arguments>
  void append(Arguments&&... arguments) {
    void* room = memory_.allocate(sizeof(Object), alignof(Object));
    ForEachObject* const item = new (room) Object(std::forward<Arguments>(arguments)...);
    (last_ != nullptr ? last_->next_ : first_) = item;
    last_ = item;
  }

  bool empty() const { return first_ == nullptr; }

  /// Goes to the first pass.
  void restart() {
    for (ForEachObject* item = first_; item != nullptr; item = item->next_) item->rewind();
    current_ = first_;
    isAtFirst_ = true;
  }

  /// Goes on to the next pass; false at the last, and in an empty list.
  bool advance() {
    if (empty()) return false;
    if (!current_->next()) {
      if (current_ == last_) return false;
      current_ = current_->next_;
    }
    isAtFirst_ = false;
    return true;
  }

  /// The object of the current pass; an empty list has none.
  const ForEachObject& current() const { return *current_; }
  bool isAtFirst() const { return isAtFirst_; }

  void clear() {
    while (first_ != nullptr) std::exchange(first_, first_->next_)->~ForEachObject();
    current_ = last_ = nullptr;
    memory_.release();
  }

 private:
  std::pmr::monotonic_buffer_resource memory_;
  ForEachObject* first_ = nullptr;
  ForEachObject* current_ = nullptr;
  ForEachObject* last_ = nullptr;
  bool isAtFirst_ = true;
};

}  // namespace ibis
