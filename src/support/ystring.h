#pragma once

#include <cstdint>

#include "support/export.h"

/// The host's string: one pointer to a shared block of a four-byte count and the text after it.
///
/// Copies share the block and its count. The text is NUL-terminated 8-bit and never changes. Every
/// operation may be called on any thread; one object belongs to one thread at a time. Running out
/// of memory raises std::bad_alloc.
class IBIS_SUPPORT_API YString {
 public:
  YString();                    ///< The empty text.
  YString(const char* text);    ///< A copy of the text; null counts as empty.
  YString(std::int32_t value);  ///< The decimal text of the value.
  YString(const YString& other) noexcept;
  YString& operator=(const YString& other) noexcept;
  ~YString();

  /// A new heap copy of the text; the caller owns it and releases it with free().
  char* copy() const;

  /// Returns the text as a heap string, which the caller owns and releases with free().
  ///
  /// The object is empty afterwards; other copies keep their text.
  char* detach();

  /// The text itself, never null; valid until the last copy is destroyed.
  const char* text() const { return reinterpret_cast<const char*>(block_) + textOffset; }

 private:
  static constexpr std::int32_t textOffset = 4;

  void release() noexcept;

  void* block_;
};

/// A heap copy of a text as YString::copy makes it; released with free(). Never null.
IBIS_SUPPORT_API char* duplicateText(const char* text);
