#pragma once

// The worker's signals reach the interface thread through blocking queued connections. Qt hands the
// arguments over and waits inside its own (uninstrumented) library, so the thread sanitizer cannot see
// that the two sides take turns. These marks tell it: the sender releases before it emits and acquires
// once the receiver is done; the receiver acquires on entry and releases on exit. In other builds they
// are nothing.
#if defined(__SANITIZE_THREAD__)
extern "C" void __tsan_acquire(void* addr);
extern "C" void __tsan_release(void* addr);
#endif

namespace TThreadSync {
inline char token;

inline void acquire() {
#if defined(__SANITIZE_THREAD__)
    __tsan_acquire(&token);
#endif
}

inline void release() {
#if defined(__SANITIZE_THREAD__)
    __tsan_release(&token);
#endif
}

// Held by every slot that a worker's blocking signal calls.
struct Receiver {
    Receiver() { acquire(); }
    ~Receiver() { release(); }
};

// Emits a blocking signal from a worker: fn performs the emit.
template <class Fn> void emitBlocking(Fn fn) {
    release();
    fn();
    acquire();
}
} // namespace TThreadSync
