// Which lock protects which data, in a form that clang checks (-Wthread-safety). The macros are
// empty for other compilers.
#pragma once

#if defined(__clang__)
#define NY_THREAD_ANNOTATION(attribute) __attribute__((attribute))
#else
#define NY_THREAD_ANNOTATION(attribute)
#endif

// A class whose objects are locks; `name` is for the compiler's messages.
#define NY_LOCK_TYPE(name) NY_THREAD_ANNOTATION(capability(name))

// A class whose objects hold a lock from their constructor to their destructor.
#define NY_SCOPED_LOCK NY_THREAD_ANNOTATION(scoped_lockable)

// Data that is read and written only while `lock` is held.
#define NY_GUARDED_BY(lock) NY_THREAD_ANNOTATION(guarded_by(lock))

// The caller holds the lock.
#define NY_REQUIRES(...) NY_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))

// The function locks, or unlocks.
#define NY_ACQUIRES(...) NY_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define NY_RELEASES(...) NY_THREAD_ANNOTATION(release_capability(__VA_ARGS__))
