#pragma once

#include <oneapi/tbb/task_arena.h>
#include <oneapi/tbb/task_group.h>
#include <utility>

#if defined(__SANITIZE_THREAD__)
#define KORVANTI_THREAD_SANITIZER
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define KORVANTI_THREAD_SANITIZER
#endif
#endif
#ifdef KORVANTI_THREAD_SANITIZER
#include <sanitizer/tsan_interface.h>
#endif

/// The one pool that all tree walks of the process share, wider than the cores because a cold disk answers
/// faster when it is asked more at once. However many threads measure, no more than its width walk.
namespace korvanti::WalkPool {

/// The pool; made on first use. Safe from any thread.
[[nodiscard]] tbb::task_arena& arena();

/// The pool's library is not built with the thread sanitizer, which would take what it hands from thread to
/// thread for races. This tells the sanitizer of a hand-over, and is nothing without it.
class HandOver {
public:
#ifdef KORVANTI_THREAD_SANITIZER
    void give() { __tsan_release(this); }
    void take() { __tsan_acquire(this); }
#else
    void give() {}
    void take() {}
#endif
};

/// Does `work` as a part of the pool and waits for it: on this thread, or on one of the pool's own when it is
/// full.
template <class Work> void run(const Work& work) {
    HandOver handOver;
    handOver.give();
    arena().execute([&] {
        handOver.take();
        work();
        handOver.give();
    });
    handOver.take();
}

/// Tasks that may start further ones, and a wait for the last of them. To be used as a part of the pool.
class Tasks {
public:
    template <class Work> void start(Work work) {
        auto task = group_.defer([this, work = std::move(work)] {
            handOver_.take();
            work();
            handOver_.give();
        });
        handOver_.give();
        group_.run(std::move(task));
    }

    void wait() {
        group_.wait();
        handOver_.take();
    }

private:
    tbb::task_group group_;
    HandOver handOver_;
};

} // namespace korvanti::WalkPool
