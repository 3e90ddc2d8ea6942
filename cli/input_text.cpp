#include "input_text.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string_view>
#include <system_error>

namespace ibis::cli {
namespace {

constexpr std::string_view gzipFront = "\x1f\x8b";

std::string readAll(std::istream& in) {
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// A pipe or a device is for the load to refuse.
std::string readGzipFile(const std::string& source) {
  std::error_code fault;
  if (!std::filesystem::is_regular_file(source, fault)) return {};
  std::ifstream file(source, std::ios::binary);
  std::string front(gzipFront.size(), '\0');
  file.read(front.data(), static_cast<std::streamsize>(front.size()));
  if (!file || front != gzipFront) return {};
  return front + readAll(file);
}

}  // namespace

InputText readInputText(const std::string& source) {
  const bool isStandardInput = source == standardInput;
  std::string bytes = isStandardInput ? readAll(std::cin) : readGzipFile(source);
  if (bytes.starts_with(gzipFront)) return unpackGzip(bytes);
  if (isStandardInput) {
    return {.text = std::make_shared<const std::string>(std::move(bytes)), .fault = {}};
  }
  const std::optional<MemberName> name = splitMemberName(source);
  return name ? unpackMember(name->archive, name->member) : InputText{};
}

}  // namespace ibis::cli
