#pragma once

// Names for clang's thread-safety attributes, checked by -Wthread-safety;
// empty for other compilers.

#if defined(__clang__)
#define VASK_THREAD_ATTRIBUTE(x) __attribute__((x))
#else
#define VASK_THREAD_ATTRIBUTE(x)
#endif

#define VASK_CAPABILITY(name) VASK_THREAD_ATTRIBUTE(capability(name))
#define VASK_SCOPED_CAPABILITY VASK_THREAD_ATTRIBUTE(scoped_lockable)
#define VASK_GUARDED_BY(lock) VASK_THREAD_ATTRIBUTE(guarded_by(lock))
#define VASK_PT_GUARDED_BY(lock) VASK_THREAD_ATTRIBUTE(pt_guarded_by(lock))
#define VASK_REQUIRES(...) VASK_THREAD_ATTRIBUTE(requires_capability(__VA_ARGS__))
#define VASK_EXCLUDES(...) VASK_THREAD_ATTRIBUTE(locks_excluded(__VA_ARGS__))
#define VASK_ACQUIRE(...) VASK_THREAD_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define VASK_TRY_ACQUIRE(...) VASK_THREAD_ATTRIBUTE(try_acquire_capability(__VA_ARGS__))
#define VASK_RELEASE(...) VASK_THREAD_ATTRIBUTE(release_capability(__VA_ARGS__))
#define VASK_NO_THREAD_SAFETY_ANALYSIS VASK_THREAD_ATTRIBUTE(no_thread_safety_analysis)
