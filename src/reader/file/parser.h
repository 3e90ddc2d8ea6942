#pragma once

#include "ibis/read_options.h"
#include "reader/file/file.h"
#include "reader/scanner.h"

namespace ibis {

/// Reads the header and the sections into the file; what stops it is told in the file's errors.
void parseFile(IBISFile& file, IBISRecords records, std::int32_t& index);

/// The same piece by piece, with what a caller allows; the scanner's texts stay in use.
void parseFile(IBISFile& file, IBISScanner& scanner, const ReadOptions& options = {});

/// Ties pins to models and checks the named component, or all of them for an empty name.
///
/// Runs once, on a file without errors.
void postParse(IBISFile& file, std::string_view componentName,
               std::span<const IBISString> pinFilter);

}  // namespace ibis
