#pragma once

#include "ibis/read_options.h"
#include "reader/file/file.h"
#include "reader/scanner.h"

namespace ibis {

/// Reads the header and the sections into the file; an error of the file says what stopped it.
void parseFile(IBISFile& file, IBISRecords records, std::int32_t& index);

/// The same piece by piece and with options; the file's records keep using the scanner's texts.
void parseFile(IBISFile& file, IBISScanner& scanner, const ReadOptions& options = {});

/// Resolves the models of pins and checks the named component, or all of them for an empty name.
///
/// Runs once, on a file without errors.
void postParse(IBISFile& file, std::string_view componentName,
               std::span<const IBISString> pinFilter);

}  // namespace ibis
