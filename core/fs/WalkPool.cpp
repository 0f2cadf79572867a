#include "fs/WalkPool.h"

#include "platform/Platform.h"

#include <algorithm>
#include <oneapi/tbb/global_control.h>
#include <oneapi/tbb/task_scheduler_observer.h>
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

/// The workers stand back behind the tools that a scan waits for, and behind the user's other programs.
class StandBack : public tbb::task_scheduler_observer {
public:
    explicit StandBack(tbb::task_arena& arena) : tbb::task_scheduler_observer(arena) { observe(true); }
    StandBack(const StandBack&) = delete;
    StandBack& operator=(const StandBack&) = delete;
    ~StandBack() override { observe(false); }

    void on_scheduler_entry(bool isWorker) override {
        if (isWorker)
            Platform::giveWay();
    }
};

struct Pool {
    /// The library starts no more workers than cores unless told so.
    tbb::global_control limit{tbb::global_control::max_allowed_parallelism, width()};
    tbb::task_arena arena{static_cast<int>(width() + guests)};
    StandBack standBack{arena};
};

} // namespace

tbb::task_arena& arena() {
    // Lives as long as the process: a worker may still be going to sleep while the statics of other files
    // end.
    static auto* const pool = new Pool;
    return pool->arena;
}

} // namespace korvanti::WalkPool
