#include "fs/WalkPool.h"

#include <algorithm>
#include <oneapi/tbb/global_control.h>
#include <thread>

namespace korvanti::WalkPool {
namespace {

/// Worker threads of the process at the most.
unsigned width() {
    return std::max(8U, 2 * std::thread::hardware_concurrency());
}

// A full arena hands the calls of further threads over where the sanitizer can't see it, so under it there is
// room.
#ifdef KORVANTI_THREAD_SANITIZER
constexpr unsigned guests = 64;
#else
constexpr unsigned guests = 0;
#endif

struct Pool {
    /// The library starts no more workers than cores unless told so.
    tbb::global_control limit{tbb::global_control::max_allowed_parallelism, width()};
    tbb::task_arena arena{static_cast<int>(width() + guests)};
};

} // namespace

tbb::task_arena& arena() {
    // Lives as long as the process: a worker may still be going to sleep while the statics of other files
    // end.
    static auto* const pool = new Pool;
    return pool->arena;
}

} // namespace korvanti::WalkPool
