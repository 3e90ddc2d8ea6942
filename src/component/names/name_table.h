#pragma once

#include <string_view>
#include <vector>

#include "ibis/ibis_string.h"
#include "reader/text/name_index.h"

namespace ibis {

/// Maps source names to SPICE-legal names that are unique in the table, whatever their case.
///
/// An entry never changes. Names must outlive the table, which keeps no copies of them; the texts
/// that it returns are those names or live as long as the table.
class IBISNameTable {
 public:
  /// Makes a SPICE name for the name, if it has none yet.
  void registerName(std::string_view name);

  /// Registers the name, or the first of name_1, name_2, ... that is new, and returns it.
  IBISString makeUniqueName(std::string_view name);

  /// The SPICE name; empty for a name that is not registered.
  IBISString spiceName(std::string_view name) const;

  /// Makes room for this many names.
  void reserve(std::size_t count);

  /// Forgets the names; the texts that it returned stay.
  void forgetNames();

 private:
  std::string_view legalForm(std::string_view name);
  std::string_view freeSourceName(std::string_view name);
  std::string_view freeSpiceName(std::string_view base);

  StringPool strings_;
  NameIndex<ExactCase> sources_;
  NameIndex<IgnoringCase> spiceNames_;  // same indices as sources_
  // The last number given to a contested name; no smaller one is ever free again.
  NameMap<ExactCase, std::int32_t> sourceCounters_;
  NameMap<IgnoringCase, std::int32_t> spiceCounters_;
};

}  // namespace ibis
