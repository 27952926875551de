/// What a lock guards and what a function needs held, in a form that clang checks (-Wthread-safety, in
/// scripts/style). Other compilers see nothing of it. The check follows no pointer to a function and no
/// condition; where that matters, a comment says so.
#pragma once

#ifdef __clang__
#define THREAD_SAFETY(attribute) __attribute__((attribute))
#else
#define THREAD_SAFETY(attribute)
#endif

/// A class of locks.
#define CAPABILITY(words) THREAD_SAFETY(capability(words))
/// A class whose objects hold a lock for as long as they live.
#define SCOPED_CAPABILITY THREAD_SAFETY(scoped_lockable)

/// Of a variable: read and written only by those who hold the lock.
#define GUARDED_BY(lock) THREAD_SAFETY(guarded_by(lock))

/// Of a function: called only by those who hold the lock.
#define REQUIRES(...) THREAD_SAFETY(requires_capability(__VA_ARGS__))
/// Of a function: it returns with the lock, or without it. No argument stands for the object itself.
#define ACQUIRE(...) THREAD_SAFETY(acquire_capability(__VA_ARGS__))
#define TRY_ACQUIRE(...) THREAD_SAFETY(try_acquire_capability(__VA_ARGS__))
#define RELEASE(...) THREAD_SAFETY(release_capability(__VA_ARGS__))

/// Of a function that the check can't follow, with the reason beside it.
#define NO_THREAD_SAFETY_ANALYSIS THREAD_SAFETY(no_thread_safety_analysis)
