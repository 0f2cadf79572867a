#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace korvanti {

/// Calls `report` every 3 seconds on a thread of its own for as long as it lives, and once more at its end.
/// Without a thread to be had nothing is reported.
class ProgressWatcher {
public:
    explicit ProgressWatcher(std::function<void()> report);
    ~ProgressWatcher();
    ProgressWatcher(const ProgressWatcher&) = delete;
    ProgressWatcher& operator=(const ProgressWatcher&) = delete;

private:
    void watch();

    std::function<void()> report_;
    std::mutex mutex_;
    std::condition_variable cancellation_;
    bool cancelled_ = false; ///< under `mutex_`
    std::thread thread_;
};

} // namespace korvanti
