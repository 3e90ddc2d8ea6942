#include "packed_input.h"

#include <archive.h>
#include <archive_entry.h>
#include <locale.h>

#include <algorithm>
#include <cstdio>

#include "messages.h"
#include "reader/text/open_file.h"

namespace ibis::cli {
namespace {

constexpr std::string_view zipFront = "PK\x03\x04";
constexpr std::size_t blockSize = std::size_t{1} << 16U;

struct Closer {
  void operator()(::archive* handle) const { archive_read_free(handle); }
};
using Handle = std::unique_ptr<::archive, Closer>;

Diagnostic fault(const char* reason) {
  return tell(Severity::error, message::cannotUnpack, reason);
}

Diagnostic faultOf(::archive* handle) {
  const char* reason = archive_error_string(handle);
  return fault(reason == nullptr ? "it is damaged" : reason);
}

// Warnings of the library are about names and times that nothing here needs.
bool isDone(int status) { return status == ARCHIVE_OK || status == ARCHIVE_WARN; }

// The data of the entry that was reached.
InputText readData(::archive* handle, std::size_t limit) {
  auto text = std::make_shared<std::string>();
  std::string block(blockSize, '\0');
  for (;;) {
    const la_ssize_t count = archive_read_data(handle, block.data(), block.size());
    if (count < 0) return {.text = {}, .fault = faultOf(handle)};
    if (count == 0) return {.text = std::move(text), .fault = {}};
    text->append(block, 0, static_cast<std::size_t>(count));
    if (text->size() > limit) return {.text = {}, .fault = fault("it holds too much")};
  }
}

// Names are UTF-8, whatever the caller's locale; it holds for one thread and goes with the object.
class Utf8Names {
 public:
  Utf8Names() : locale_(newlocale(LC_CTYPE_MASK, "C.UTF-8", locale_t{})) {
    if (locale_ != locale_t{}) before_ = uselocale(locale_);
  }
  ~Utf8Names() {
    if (locale_ == locale_t{}) return;
    uselocale(before_);
    freelocale(locale_);
  }
  Utf8Names(const Utf8Names&) = delete;
  Utf8Names& operator=(const Utf8Names&) = delete;

 private:
  const locale_t locale_;
  locale_t before_{};
};

// Calls for each member that is a file, until one is taken.
template <class Take>
std::optional<Diagnostic> walk(const std::string& name, Take take) {
  const Utf8Names utf8;
  const Handle handle(archive_read_new());
  if (!handle) return fault("no memory");
  archive_read_support_format_zip(handle.get());
  if (!isDone(archive_read_open_filename(handle.get(), name.c_str(), blockSize))) {
    return faultOf(handle.get());
  }
  for (archive_entry* entry = nullptr;;) {
    const int status = archive_read_next_header(handle.get(), &entry);
    if (status == ARCHIVE_EOF) return std::nullopt;
    if (!isDone(status)) return faultOf(handle.get());
    const char* member = archive_entry_pathname(entry);
    // A name in a character set that cannot be told is passed over.
    if (member == nullptr || archive_entry_filetype(entry) != AE_IFREG) continue;
    if (take(handle.get(), member)) return std::nullopt;
  }
}

}  // namespace

InputText unpackGzip(std::string_view packed, std::size_t limit) {
  const Handle handle(archive_read_new());
  if (!handle) return {.text = {}, .fault = fault("no memory")};
  archive_read_support_filter_gzip(handle.get());
  archive_read_support_format_raw(handle.get());
  archive_entry* entry = nullptr;
  const bool isOpen =
      isDone(archive_read_open_memory(handle.get(), packed.data(), packed.size())) &&
      isDone(archive_read_next_header(handle.get(), &entry));
  // Data that the library does not know as gzip would be passed on as it is.
  if (!isOpen || archive_filter_count(handle.get()) < 2) {
    return {.text = {}, .fault = isOpen ? fault("it is damaged") : faultOf(handle.get())};
  }
  return readData(handle.get(), limit);
}

InputText unpackMember(const std::string& archive, const std::string& member, std::size_t limit) {
  std::optional<InputText> input;
  std::optional<Diagnostic> obstacle = walk(archive, [&](::archive* handle, std::string_view name) {
    if (name == member) input = readData(handle, limit);
    return input.has_value();
  });
  if (input) return std::move(*input);
  if (!obstacle) obstacle = tell(Severity::error, message::noSuchMember);
  return {.text = {}, .fault = std::move(obstacle)};
}

MemberList listMembers(const std::string& archive) {
  MemberList list;
  list.fault = walk(archive, [&](::archive*, std::string_view name) {
    list.names.emplace_back(name);
    return list.names.size() > maxMembers;
  });
  if (list.names.size() > maxMembers) {
    list = {.names = {}, .fault = fault("it holds too many files")};
  }
  std::ranges::sort(list.names);
  return list;
}

bool isZipArchive(const std::string& name) {
  struct stat status {};
  const OpenFile file = openRegularFile(name, openFile, status);
  std::string front(zipFront.size(), '\0');
  return file && std::fread(front.data(), 1, front.size(), file.get()) == front.size() &&
         front == zipFront;
}

std::optional<MemberName> splitMemberName(const std::string& name) {
  struct stat status {};
  if (::stat(name.c_str(), &status) == 0) return std::nullopt;  // no archive need be looked for
  for (std::size_t slash = name.find('/', 1); slash != name.npos;
       slash = name.find('/', slash + 1)) {
    const std::string front = name.substr(0, slash);
    if (isZipArchive(front)) return MemberName{.archive = front, .member = name.substr(slash + 1)};
  }
  return std::nullopt;
}

}  // namespace ibis::cli
