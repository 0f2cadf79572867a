#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <system_error>
#include <thread>
#include <vector>

namespace korvanti {

/// Calls `work(0)` … `work(count - 1)`, at most `concurrency` of them at once (at least one), the next as
/// soon as one has ended. Blocks until all have. For work that mostly waits and must not throw: it runs on
/// plain threads and this one, so that the pool that walks folders stays free.
template <class Work> void runSideBySide(std::size_t count, std::size_t concurrency, const Work& work) {
    std::atomic<std::size_t> next = 0;
    const auto takeTurns = [&] {
        for (auto index = next++; index < count; index = next++)
            work(index);
    };
    std::vector<std::thread> helpers;
    try {
        while (helpers.size() + 1 < std::min(count, concurrency))
            helpers.emplace_back(takeTurns);
    } catch (const std::system_error&) {
        // No more threads to be had: those that there are do it all.
    }
    takeTurns();
    for (auto& helper : helpers)
        helper.join();
}

} // namespace korvanti
