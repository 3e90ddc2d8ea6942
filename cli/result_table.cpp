#include "result_table.h"

#include <algorithm>
#include <iomanip>
#include <ostream>

#include "exit_status.h"
#include "printable.h"
#include "report.h"
#include "text_columns.h"

namespace ibis::cli {
namespace {

constexpr std::string_view nameTitle = "file";

// One long name does not widen the rows of all.
constexpr std::size_t mostColumns = 80;

void printName(std::ostream& out, std::string_view name, std::size_t columns) {
  const std::size_t taken = columnsOf(name);
  out << name << std::string(taken < columns ? columns - taken : 0, ' ');
}

}  // namespace

void ResultTable::add(const Source& source, const Conversion& conversion, int status) {
  rows_.push_back({&source, status, conversion.files.size(), conversion.warnings.size(),
                   conversion.errors.size(), conversion.findings.size()});
}

void ResultTable::print(std::ostream& out) const {
  const std::size_t columns = nameColumns();
  printName(out, nameTitle, columns);
  out << "  status   files  warnings  errors  folder\n";
  for (const Row& row : rows_) {
    printName(out, printable(row.source->name), columns);
    out << (row.status == exitStatus::done ? "  written" : "  failed ") << std::setw(7) << row.files
        << std::setw(10) << row.warnings << std::setw(8) << row.errors << "  "
        << (row.files == 0 ? "-" : printable(row.source->folder)) << '\n';
  }
  printTotals(out);
}

std::size_t ResultTable::nameColumns() const {
  std::size_t columns = nameTitle.size();
  for (const Row& row : rows_) columns = std::max(columns, columnsOf(printable(row.source->name)));
  return std::min(columns, mostColumns);
}

void ResultTable::printTotals(std::ostream& out) const {
  Row total{};
  std::size_t written = 0;
  for (const Row& row : rows_) {
    if (row.status == exitStatus::done) ++written;
    total.files += row.files;
    total.warnings += row.warnings;
    total.errors += row.errors;
    total.findings += row.findings;
  }
  out << counted(rows_.size(), "input") << ": " << written << " written, " << rows_.size() - written
      << " failed; " << counted(total.files, "file") << ", " << counted(total.warnings, "warning")
      << ", " << counted(total.errors, "error") << findingsText(total.findings) << '\n';
}

}  // namespace ibis::cli
