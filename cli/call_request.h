#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace ibis::cli {

/// The arguments of a script function, each an array of strings.
using CallArguments = std::vector<std::vector<std::string>>;

/// What is wrong with a request.
class MalformedRequest : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The arguments that a JSON text holds; raises MalformedRequest for any other text.
CallArguments parseRequest(std::string_view text);

}  // namespace ibis::cli
