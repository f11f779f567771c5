#pragma once

#ifndef __has_feature
#    define __has_feature(feature) 0
#endif
#if defined(__SANITIZE_ADDRESS__) || __has_feature(address_sanitizer)
#    include <sanitizer/lsan_interface.h>
#else
inline void __lsan_disable() {}
inline void __lsan_enable() {}
#endif

/// Stands in tests in which a load fails, or a library with another owner is loaded again: the loader of the
/// first is kept for the rest of the run, that of the second loses its place in the table. While one of these
/// lives, what is never freed is no leak.
class KeptLoaders
{
public:
    KeptLoaders() { __lsan_disable(); }
    ~KeptLoaders() { __lsan_enable(); }

    KeptLoaders(const KeptLoaders &) = delete;
    KeptLoaders &operator=(const KeptLoaders &) = delete;
};
