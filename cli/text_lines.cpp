#include "text_lines.h"

#include <algorithm>

namespace ibis::cli {

TextLines::TextLines(std::string_view text) : text_(text) {
  const char end = text.find('\n') == text.npos ? '\r' : '\n';
  std::size_t begin = 0;
  while (begin < text.size()) {
    const std::size_t stop = std::min(text.find(end, begin), text.size());
    begins_.push_back(begin);
    ends_.push_back(stop);
    begin = stop + 1;
  }
}

std::string_view TextLines::at(std::int32_t number) const {
  const auto index = static_cast<std::size_t>(number) - 1;
  if (number < 1 || index >= begins_.size()) return {};
  std::string_view line = text_.substr(begins_[index], ends_[index] - begins_[index]);
  while (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

}  // namespace ibis::cli
