/// Thread-safety attributes of clang, empty for other compilers.
#pragma once

#if defined(__clang__)
#define BUSQUILL_THREAD_ATTRIBUTE(x) __attribute__((x))
#else
#define BUSQUILL_THREAD_ATTRIBUTE(x)
#endif

#define BUSQUILL_CAPABILITY(name) BUSQUILL_THREAD_ATTRIBUTE(capability(name))
#define BUSQUILL_SCOPED_CAPABILITY BUSQUILL_THREAD_ATTRIBUTE(scoped_lockable)
#define BUSQUILL_GUARDED_BY(lock) BUSQUILL_THREAD_ATTRIBUTE(guarded_by(lock))
#define BUSQUILL_ACQUIRED_BEFORE(...) BUSQUILL_THREAD_ATTRIBUTE(acquired_before(__VA_ARGS__))
#define BUSQUILL_ACQUIRED_AFTER(...) BUSQUILL_THREAD_ATTRIBUTE(acquired_after(__VA_ARGS__))
#define BUSQUILL_ACQUIRE(...) BUSQUILL_THREAD_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define BUSQUILL_RELEASE(...) BUSQUILL_THREAD_ATTRIBUTE(release_capability(__VA_ARGS__))
#define BUSQUILL_TRY_ACQUIRE(...) BUSQUILL_THREAD_ATTRIBUTE(try_acquire_capability(__VA_ARGS__))
#define BUSQUILL_REQUIRES(...) BUSQUILL_THREAD_ATTRIBUTE(requires_capability(__VA_ARGS__))
#define BUSQUILL_EXCLUDES(...) BUSQUILL_THREAD_ATTRIBUTE(locks_excluded(__VA_ARGS__))
#define BUSQUILL_UNCHECKED BUSQUILL_THREAD_ATTRIBUTE(no_thread_safety_analysis)
