#pragma once

/// Marks what the shared library exports; all else in it is hidden.
#if defined(__GNUC__)
#define IBIS_API __attribute__((visibility("default")))
#else
#define IBIS_API
#endif
