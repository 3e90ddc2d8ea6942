#pragma once

#include "export_files.h"
#include "message_limit.h"

namespace ibis::cli {

/// What the command line of `export` gives.
struct ExportOptions {
  ExportRequest request;
  bool asJson = false;
  bool isQuiet = false;
  bool warningsFail = false;
  MessageLimit messages;
};

/// Adds `export` to the program; the record is filled when the command line is parsed.
CLI::App* addExportCommand(CLI::App& program, ExportOptions& options);

/// Writes the files, reports, and gives the exit status.
int runExport(const ExportOptions& options);

}  // namespace ibis::cli
