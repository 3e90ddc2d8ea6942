#pragma once

/// @file
/// IBIS_HAS_SANITIZER: 1 in a build under a sanitizer of addresses or threads, else 0. Such a build
/// has a malloc of its own, takes more addresses than a limit leaves, and forks slowly.

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define IBIS_HAS_SANITIZER 1
#endif
#elif defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define IBIS_HAS_SANITIZER 1
#endif

#ifndef IBIS_HAS_SANITIZER
#define IBIS_HAS_SANITIZER 0
#endif
