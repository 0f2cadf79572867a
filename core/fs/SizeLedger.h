#pragma once

#include "fs/SizeCalculator.h"
#include "fs/TreeWalk.h"

#include <condition_variable>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

namespace korvanti {

/// The sizes that one scan measures. Providers see many folders twice: one of them the folder, another one
/// something inside it. Through the ledger each is walked once, whoever asks and in whatever order; every
/// size is the one that `SizeCalculator` gives. Safe from many threads.
///
/// It works in rounds. What is asked for while a round is under way waits for the next one. A round walks the
/// outermost of the folders that it was asked for, remembers those inside on the way, and does not enter what
/// an earlier round has counted.
class SizeLedger {
public:
    SizeLedger() = default;
    SizeLedger(const SizeLedger&) = delete;
    SizeLedger& operator=(const SizeLedger&) = delete;

    /// Absolute paths. Blocks until all are known. A round has as many measurements under way at once as the
    /// widest of its calls asks for, and one at least.
    [[nodiscard]] std::unordered_map<std::string, SizeResult>
    measureAll(const std::vector<std::string>& paths, SizeCalculator::BatchOptions options = {});
    [[nodiscard]] SizeResult measure(const std::string& path, SizeCalculator::BatchOptions options = {});

private:
    using Paths = std::vector<std::string>;
    struct Round {
        Paths paths;
        int concurrency = 1;
    };

    /// Null while it is not known. This and all below: with the lock held.
    [[nodiscard]] const SizeResult* known(const std::string& path) const;
    /// Lies in a folder that is wanted and not known yet.
    [[nodiscard]] bool isInsideOfWanted(const std::string& path) const;
    /// Makes all of them known; gives the lock back while it walks.
    void run(Round round, std::unique_lock<std::mutex>& lock);

    std::mutex mutex_;
    std::condition_variable roundEnded_;
    bool walking_ = false;
    Round next_;
    TreeWalk::KnownFolder root_; ///< changed only between walks
};

} // namespace korvanti
