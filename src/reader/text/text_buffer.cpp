#include "reader/text/text_buffer.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <limits>

namespace ibis {
namespace {

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using OpenFile = std::unique_ptr<std::FILE, FileCloser>;

bool isRegular(const struct stat& status) { return S_ISREG(status.st_mode); }

// Looks before it opens, since opening a pipe that nobody writes to would block the host.
OpenFile openRegularFile(const std::string& name, OpenFunction open, struct stat& status) {
  if (stat(name.c_str(), &status) != 0 || !isRegular(status)) return nullptr;
  std::FILE* file = nullptr;
  if (open(&file, name.c_str(), "rb") != 0) return nullptr;
  OpenFile opened(file);
  if (fstat(fileno(file), &status) != 0 || !isRegular(status)) return nullptr;
  return opened;
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
  const auto size = static_cast<std::size_t>(status.st_size);
  auto bytes = std::make_unique_for_overwrite<char[]>(size + 1);
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
