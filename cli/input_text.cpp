#include "input_text.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <limits>
#include <string_view>
#include <system_error>
#include <utility>

#include "messages.h"
#include "reader/text/open_file.h"

namespace ibis::cli {
namespace {

constexpr std::string_view gzipFront = "\x1f\x8b";

InputText failure(Diagnostic fault) { return {.text = nullptr, .fault = std::move(fault)}; }

// Adds what can be read next; nothing more stands behind a NUL of a text that is not packed.
bool readPiece(std::string& bytes) {
  char piece[1 << 15];
  ssize_t count = 0;
  do count = ::read(STDIN_FILENO, piece, sizeof piece);
  while (count < 0 && errno == EINTR);
  if (count < 0) throw std::system_error(errno, std::generic_category());
  bytes.append(piece, static_cast<std::size_t>(count));
  const std::string_view added(piece, static_cast<std::size_t>(count));
  return count > 0 && (bytes.starts_with(gzipFront) || added.find('\0') == added.npos);
}

InputText readStandardInput() {
  constexpr std::size_t tooMany = std::numeric_limits<std::int32_t>::max();
  std::string bytes;
  try {
    while (readPiece(bytes)) {
      if (bytes.size() >= tooMany) return failure(tell(Severity::error, message::fileTooLarge));
    }
  } catch (const std::system_error&) {
    return failure(tell(Severity::error, message::cannotReadFile));
  }
  if (bytes.starts_with(gzipFront)) return unpackGzip(bytes);
  return {.text = std::make_shared<const std::string>(std::move(bytes)), .fault = {}};
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
  if (source == standardInput) return readStandardInput();
  const std::string bytes = readGzipFile(source);
  if (!bytes.empty()) return unpackGzip(bytes);
  const std::optional<MemberName> name = splitMemberName(source);
  return name ? unpackMember(name->archive, name->member) : InputText{};
}

}  // namespace ibis::cli
