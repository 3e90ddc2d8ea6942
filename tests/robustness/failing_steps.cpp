// The linker sends the calls of the static libraries here.
//
// The functions are visible beyond the program: a sanitizer's library calls some by the same names,
// and the linker takes such a call for one to send here.

#include "robustness/failing_steps.h"

#include <fcntl.h>

#include <cstdarg>
#include <cstdio>

using ibis::testing::FailingStep;

#pragma GCC visibility push(default)

extern "C" {

int __real_open(const char* name, int flags, ...);
std::FILE* __real_fopen(const char* name, const char* mode);
std::size_t __real_fwrite(const void* text, std::size_t size, std::size_t count, std::FILE* file);
int __real_fclose(std::FILE* file);
int __real_rename(const char* from, const char* to);

int __wrap_open(const char* name, int flags, ...) {
  if (FailingStep::fails(EMFILE)) return -1;
  std::va_list rest;
  va_start(rest, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
  va_end(rest);
  return __real_open(name, flags, mode);
}

std::FILE* __wrap_fopen(const char* name, const char* mode) {
  return FailingStep::fails(EMFILE) ? nullptr : __real_fopen(name, mode);
}

std::size_t __wrap_fwrite(const void* text, std::size_t size, std::size_t count, std::FILE* file) {
  return FailingStep::fails(ENOSPC) ? 0 : __real_fwrite(text, size, count, file);
}

// A stream is gone after its close, whether that failed or not.
int __wrap_fclose(std::FILE* file) {
  const int result = __real_fclose(file);
  return FailingStep::fails(EIO) ? EOF : result;
}

int __wrap_rename(const char* from, const char* to) {
  return FailingStep::fails(EIO) ? -1 : __real_rename(from, to);
}
}

#pragma GCC visibility pop
