#include "drives/ProgressWatcher.h"

#include <chrono>
#include <system_error>
#include <utility>

namespace korvanti {

ProgressWatcher::ProgressWatcher(std::function<void()> report) : report_(std::move(report)) {
    try {
        thread_ = std::thread([this] { watch(); });
    } catch (const std::system_error&) {
        // The copy matters more than what is told of it.
    }
}

ProgressWatcher::~ProgressWatcher() {
    {
        const std::scoped_lock lock(mutex_);
        cancelled_ = true;
    }
    cancellation_.notify_one();
    if (thread_.joinable())
        thread_.join();
}

void ProgressWatcher::watch() {
    using namespace std::chrono_literals;
    for (bool last = false; !last;) {
        {
            std::unique_lock lock(mutex_);
            last = cancellation_.wait_for(lock, 3s, [this] { return cancelled_; });
        }
        report_();
    }
}

} // namespace korvanti
