#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace ibis::cli {

/// The value on one line; bytes that are not UTF-8 become U+FFFD.
template <class Json>
std::string jsonLine(const Json& value) {
  return value.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n';
}

}  // namespace ibis::cli
