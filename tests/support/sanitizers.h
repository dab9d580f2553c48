#pragma once

#if defined(__has_feature) // clang
#define BUSQUILL_HAS_FEATURE(name) __has_feature(name)
#else
#define BUSQUILL_HAS_FEATURE(name) 0
#endif

namespace busquill::test {

/// Whether the program is built with a sanitizer that needs a huge address space, so that its
/// memory cannot be limited.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) ||                               \
    BUSQUILL_HAS_FEATURE(address_sanitizer) || BUSQUILL_HAS_FEATURE(thread_sanitizer)
constexpr bool livesOnAddresses = true;
#else
constexpr bool livesOnAddresses = false;
#endif

} // namespace busquill::test

#undef BUSQUILL_HAS_FEATURE
