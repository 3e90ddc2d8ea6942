#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ibis/diagnostic.h"

namespace ibis::cli {

/// A text of more bytes is not unpacked: packed, it may be a thousandth of that.
inline constexpr std::size_t maxUnpacked = std::size_t{1} << 29U;

/// An archive of more files is not read: each is searched for from its front.
inline constexpr std::size_t maxMembers = 2000;

/// The text of a source that no load can read by itself.
struct InputText {
  std::shared_ptr<const std::string> text;  ///< Null for any other source.
  std::optional<Diagnostic> fault;          ///< Why there is no text.
};

/// Unpacks gzip data, of several parts too.
InputText unpackGzip(std::string_view packed, std::size_t limit = maxUnpacked);

/// Unpacks one member of a zip archive.
InputText unpackMember(const std::string& archive, const std::string& member,
                       std::size_t limit = maxUnpacked);

/// The members of a zip archive.
struct MemberList {
  std::vector<std::string> names;   ///< Sorted; folders are not among them.
  std::optional<Diagnostic> fault;  ///< Why there are none, or not all.
};

MemberList listMembers(const std::string& archive);

/// Whether a name is that of a regular file that begins as a zip archive does.
bool isZipArchive(const std::string& name);

/// A name as ARCHIVE/MEMBER, if a zip archive has the name in front of a slash.
struct MemberName {
  std::string archive;
  std::string member;
};

std::optional<MemberName> splitMemberName(const std::string& name);

}  // namespace ibis::cli
