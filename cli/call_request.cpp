#include "call_request.h"

#include <nlohmann/json.hpp>

namespace ibis::cli {
namespace {

using nlohmann::json;

constexpr std::size_t minArguments = 2;
constexpr std::size_t maxArguments = 4;

[[noreturn]] void refuse(const std::string& reason) {
  throw MalformedRequest("malformed request: " + reason);
}

// The JSON library puts its own name and a number in brackets before the reason.
std::string withoutTag(std::string_view reason) {
  const std::size_t tag = reason.find("] ");
  return std::string(tag == reason.npos ? reason : reason.substr(tag + 2));
}

json parseJson(std::string_view text) {
  try {
    return json::parse(text);
  } catch (const json::exception& fault) {
    refuse(withoutTag(fault.what()));
  }
}

// The plug-in takes strings that end in a NUL, so one inside would cut its string short.
std::string takeString(const json& value, const std::string& place) {
  if (!value.is_string()) refuse(place + " is not a string");
  auto text = value.get<std::string>();
  if (text.find('\0') != std::string::npos) refuse(place + " holds a NUL");
  return text;
}

std::vector<std::string> takeStrings(const json& array, const std::string& place) {
  if (!array.is_array()) refuse(place + " is not an array");
  std::vector<std::string> strings;
  for (const json& value : array) {
    strings.push_back(takeString(value, place + '[' + std::to_string(strings.size()) + ']'));
  }
  return strings;
}

}  // namespace

CallArguments parseRequest(std::string_view text) {
  const json request = parseJson(text);
  if (!request.is_array()) refuse("it is not an array");
  if (request.size() < minArguments || request.size() > maxArguments) {
    refuse("it has " + std::to_string(request.size()) + " items, not two to four");
  }
  CallArguments arguments;
  for (const json& array : request) {
    arguments.push_back(takeStrings(array, '[' + std::to_string(arguments.size()) + ']'));
  }
  return arguments;
}

}  // namespace ibis::cli
