#pragma once

#include <string>
#include <vector>

namespace ibis::testing {

/// The text as gzip packs it.
std::string packedByGzip(const std::string& text);

/// A file of an archive.
struct Member {
  std::string name;
  std::string text;
};

/// A zip archive of these files.
std::string packedByZip(const std::vector<Member>& members);

}  // namespace ibis::testing
