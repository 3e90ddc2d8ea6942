#pragma once

#include <cstdint>
#include <memory>
#include <memory_resource>
#include <string_view>
#include <utility>
#include <vector>

#include "output/output_stream.h"
#include "reader/ibis_string.h"
#include "reader/text_buffer.h"

namespace ibis {

/// Where a template keyword stands.
struct KeywordPosition {
  std::int32_t line = 1;
  std::int32_t column = 1;         ///< Of the opening percent sign, from 1, tabs expanded.
  std::int32_t pendingSpaces = 0;  ///< Blanks held back in front, for the handler to write.
};

/// A keyword's text cut at commas; item 0 is the keyword's name.
using KeywordArguments = std::vector<IBISString>;

/// One pass of a template loop: answers the keywords that mean something inside it.
class ForEachObject {
 public:
  virtual ~ForEachObject() = default;

  /// Without a stream, tells whether the keyword is known; with one, writes it and gives false.
  virtual bool value(std::string_view keywordText, OutputStream* out,
                     const KeywordPosition& position, TextBuffer& text) const = 0;

  /// Whether the name is a condition here.
  virtual bool isCondition(std::string_view) const { return false; }

  /// What the condition says of the object.
  virtual bool evaluate(std::string_view, const KeywordArguments&) const { return false; }
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
    void* place = memory_.allocate(sizeof(Object), alignof(Object));
    items_.push_back(new (place) Object(std::forward<Arguments>(arguments)...));
  }

  std::size_t size() const { return items_.size(); }
  bool empty() const { return items_.empty(); }
  const ForEachObject& operator[](std::size_t place) const { return *items_[place]; }

  void clear() {
    for (ForEachObject* item : items_) item->~ForEachObject();
    items_.clear();
    memory_.release();
  }

 private:
  std::pmr::monotonic_buffer_resource memory_;
  std::vector<ForEachObject*> items_;
};

}  // namespace ibis
