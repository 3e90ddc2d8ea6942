#include "program/packing.h"

#include <archive.h>
#include <archive_entry.h>
#include <gtest/gtest.h>

namespace ibis::testing {
namespace {

la_ssize_t append(::archive*, void* to, const void* bytes, std::size_t count) {
  static_cast<std::string*>(to)->append(static_cast<const char*>(bytes), count);
  return static_cast<la_ssize_t>(count);
}

void addMember(::archive* writer, const Member& member) {
  archive_entry* entry = archive_entry_new();
  archive_entry_set_pathname_utf8(entry, member.name.c_str());
  archive_entry_set_size(entry, static_cast<la_int64_t>(member.text.size()));
  archive_entry_set_filetype(entry, AE_IFREG);
  archive_entry_set_perm(entry, 0644);
  EXPECT_EQ(archive_write_header(writer, entry), ARCHIVE_OK) << archive_error_string(writer);
  archive_write_data(writer, member.text.data(), member.text.size());
  archive_entry_free(entry);
}

// Writes members with a writer that has its format.
std::string pack(::archive* writer, const std::vector<Member>& members) {
  std::string packed;
  archive_write_set_bytes_in_last_block(writer, 1);
  archive_write_open2(writer, &packed, nullptr, append, nullptr, nullptr);
  for (const Member& member : members) addMember(writer, member);
  EXPECT_EQ(archive_write_close(writer), ARCHIVE_OK);
  archive_write_free(writer);
  return packed;
}

}  // namespace

std::string packedByGzip(const std::string& text) {
  ::archive* writer = archive_write_new();
  archive_write_set_format_raw(writer);
  archive_write_add_filter_gzip(writer);
  return pack(writer, {{.name = "text", .text = text}});
}

std::string packedByZip(const std::vector<Member>& members) {
  ::archive* writer = archive_write_new();
  archive_write_set_format_zip(writer);
  return pack(writer, members);
}

}  // namespace ibis::testing
