#include "input_text.h"

#include <cstdio>
#include <iostream>
#include <iterator>
#include <string_view>

#include "reader/text/open_file.h"

namespace ibis::cli {
namespace {

constexpr std::string_view gzipFront = "\x1f\x8b";

std::string readAll(std::istream& in) {
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// A pipe or a device is for the load to refuse.
std::string readGzipFile(const std::string& source) {
  struct stat status {};
  const OpenFile file = openRegularFile(source, openFile, status);
  if (!file) return {};
  std::string bytes(gzipFront.size(), '\0');
  bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file.get()));
  if (bytes != gzipFront) return {};
  char piece[1 << 15];
  while (const std::size_t count = std::fread(piece, 1, sizeof piece, file.get())) {
    bytes.append(piece, count);
    if (bytes.size() > maxUnpacked) break;  // so much is refused anyway
  }
  return bytes;
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
