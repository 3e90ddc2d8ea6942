#pragma once

#include <iosfwd>
#include <vector>

#include "conversion.h"
#include "source_list.h"

namespace ibis::cli {

/// The result of each source, for the end of a long run.
class ResultTable {
 public:
  /// The source must outlive the table.
  void add(const Source& source, const Conversion& conversion, int status);

  /// Writes a line for each source and a line of totals.
  void print(std::ostream& out) const;

 private:
  struct Row {
    const Source* source;
    int status;
    std::size_t files;
    std::size_t warnings;
    std::size_t errors;
    std::size_t findings;
  };

  std::size_t nameColumns() const;
  void printTotals(std::ostream& out) const;

  std::vector<Row> rows_;
};

}  // namespace ibis::cli
