#pragma once

#include <cstdio>

#include "support/export.h"
#include "support/ystring.h"

/// Opens a file by a UTF-8 name and a mode text as fopen takes it.
///
/// 0 on success, with the stream in `file` for the caller to close; on failure an error number that
/// is not 0, and `file` is null. Any thread.
IBIS_SUPPORT_API int fopen_s_utf8(std::FILE** file, const char* name, const char* mode);

/// The absolute path of a file with symbolic links resolved, whether or not the file exists.
///
/// Where the file system gives no answer the name comes back as it is. Any thread.
IBIS_SUPPORT_API YString sp_GetFullPath(const YString& name);
