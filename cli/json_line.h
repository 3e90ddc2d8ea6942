#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace ibis::cli {

// An object is made as one, by ordered_json::object() or from a list of its members: a null value
// that becomes one at its first member cannot be taken down where memory lacked for that.

/// The value in ASCII without line ends; bytes that are not UTF-8 become U+FFFD.
template <class Json>
std::string jsonText(const Json& value) {
  return value.dump(-1, ' ', true, Json::error_handler_t::replace);
}

/// The value on one line.
template <class Json>
std::string jsonLine(const Json& value) {
  return jsonText(value) + '\n';
}

}  // namespace ibis::cli
