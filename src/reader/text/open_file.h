#pragma once

#include <sys/stat.h>

#include <cstdio>
#include <memory>
#include <string>

namespace ibis {

/// Opens a file by a UTF-8 name and a mode text as fopen takes it.
///
/// Returns 0 on success, and the caller closes the stream; on failure an error number that is not
/// 0, and the stream is null. A host has a function of its own.
using OpenFunction = int (*)(std::FILE** file, const char* name, const char* mode);

/// The C library's fopen in that form; programs that the process starts do not inherit the file.
int openFile(std::FILE** file, const char* name, const char* mode);

/// Keeps a file from programs that the process starts, whoever opened it.
void closeOnExec(std::FILE* file);

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using OpenFile = std::unique_ptr<std::FILE, FileCloser>;

/// Where the system keeps a name for each descriptor of the process.
inline constexpr const char* descriptorFolder = "/proc/self/fd/";

/// Opens a regular file to read, and gives its status; null for anything else.
///
/// It never waits for a pipe. Where the folder of descriptors is missing it would, for one that
/// takes the file's place at the very moment.
OpenFile openRegularFile(const std::string& name, OpenFunction open, struct stat& status,
                         const char* descriptors = descriptorFolder);

}  // namespace ibis
