#pragma once

#include <cstdio>

#include "support/export.h"
#include "support/ystring.h"

/// Opens a file by a UTF-8 name and a mode text as fopen takes it.
///
/// Returns 0 on success, and the caller closes the stream in `file`; on failure an error number
/// that is not 0, and `file` is null. Any thread.
IBIS_SUPPORT_API int fopen_s_utf8(std::FILE** file, const char* name, const char* mode);

/// The absolute path of a file with symbolic links resolved, whether or not the file exists.
///
/// The name itself if the file system cannot answer. Any thread.
IBIS_SUPPORT_API YString sp_GetFullPath(const YString& name);
