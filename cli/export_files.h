#pragma once

#include "export_request.h"

namespace ibis::cli {

/// Reads the file and writes what is asked for, one file a corner, and a bench beside it.
Export exportFile(const ExportRequest& request);

}  // namespace ibis::cli
