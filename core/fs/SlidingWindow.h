#pragma once

#include "fs/WalkPool.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdlib>

namespace korvanti {

/// Calls `work(0)` … `work(count - 1)` on the pool, at most `concurrency` of them at once, the next as soon
/// as one has ended. Blocks until all have. Zero concurrency calls nothing; a negative one is a fault of the
/// caller and aborts.
template <class Work> void runInSlidingWindow(std::size_t count, int concurrency, const Work& work) {
    if (concurrency < 0)
        std::abort();
    std::atomic<std::size_t> next = 0;
    const auto runners = std::min(count, static_cast<std::size_t>(concurrency));
    WalkPool::run([&] {
        WalkPool::Tasks tasks;
        for (std::size_t runner = 0; runner < runners; ++runner) {
            tasks.start([&] {
                for (auto index = next++; index < count; index = next++)
                    work(index);
            });
        }
        tasks.wait();
    });
}

} // namespace korvanti
