#include "input_text.h"

#include <iostream>
#include <iterator>

namespace ibis::cli {

std::shared_ptr<const std::string> inputText(const std::string& source) {
  if (source != standardInput) return nullptr;
  return std::make_shared<const std::string>(std::istreambuf_iterator<char>(std::cin),
                                             std::istreambuf_iterator<char>());
}

}  // namespace ibis::cli
