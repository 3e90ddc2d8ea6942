#include "reader/text/text_buffer.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <limits>

namespace ibis {
namespace {

// Tells how much of a file holds its text: all, or up to the piece with the first NUL, where the
// text ends for the scanner. A file may be padded with far more than anybody wrote, and memory for
// that is never asked for. False if fewer bytes come than there are.
bool measureText(std::FILE* file, std::size_t fileSize, std::size_t& size) {
  char piece[4096];
  for (size = 0; size < fileSize;) {
    const std::size_t count = std::min(sizeof piece, fileSize - size);
    if (std::fread(piece, 1, count, file) != count) return false;
    size += count;
    if (std::memchr(piece, '\0', count) != nullptr) break;
  }
  return true;
}

// The scanner knows line feeds alone. A carriage return before one stays; the scanner drops it.
void convertLoneCarriageReturns(char* text, std::size_t size) {
  char* const end = text + size;
  for (char* c = text; c != end; ++c) {
    c = static_cast<char*>(std::memchr(c, '\r', static_cast<std::size_t>(end - c)));
    if (c == nullptr) return;
    if (c + 1 == end || c[1] != '\n') *c = '\n';
  }
}

}  // namespace

bool TextBuffer::loadFile(const std::string& name, OpenFunction open) {
  clear();
  struct stat status {};
  const OpenFile file = openRegularFile(name, open, status);
  if (!file || status.st_size >= std::numeric_limits<std::int32_t>::max()) return false;
  std::size_t size = 0;
  if (!measureText(file.get(), static_cast<std::size_t>(status.st_size), size)) return false;
  auto bytes = std::make_unique_for_overwrite<char[]>(size + 1);
  std::rewind(file.get());
  if (std::fread(bytes.get(), 1, size, file.get()) != size) return false;
  bytes[size] = '\0';
  convertLoneCarriageReturns(bytes.get(), size);
  bytes_ = std::move(bytes);
  size_ = static_cast<std::int32_t>(size);
  return true;
}

void TextBuffer::clear() {
  bytes_.reset();
  size_ = 0;
  position_ = 0;
}

void TextBuffer::assign(std::string_view text) {
  clear();
  bytes_ = std::make_unique_for_overwrite<char[]>(text.size() + 1);
  std::copy(text.begin(), text.end(), bytes_.get());
  bytes_[text.size()] = '\0';
  size_ = static_cast<std::int32_t>(text.size());
}

void TextBuffer::convertLineEnds() {
  convertLoneCarriageReturns(bytes_.get(), static_cast<std::size_t>(size_));
}

void TextBuffer::seek(std::int32_t index) { position_ = std::clamp(index, 0, size_); }

}  // namespace ibis
