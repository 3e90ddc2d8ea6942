#pragma once

#include <cstdio>

namespace ibis {

/// Opens a file by a UTF-8 name and a mode text as fopen takes it.
///
/// Returns 0 on success, and the caller closes the stream; on failure an error number that is not
/// 0, and the stream is null. A host has a function of its own.
using OpenFunction = int (*)(std::FILE** file, const char* name, const char* mode);

/// The C library's fopen in that form.
int openFile(std::FILE** file, const char* name, const char* mode);

}  // namespace ibis
