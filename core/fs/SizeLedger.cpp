#include "fs/SizeLedger.h"

#include "base/Text.h"
#include "fs/PathTools.h"
#include "fs/SlidingWindow.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace korvanti {

std::unordered_map<std::string, SizeResult> SizeLedger::measureAll(const std::vector<std::string>& paths,
                                                                   SizeCalculator::BatchOptions options) {
    std::unique_lock lock(mutex_);
    const auto isUnknown = [this](const std::string& path) { return !known(path); };
    std::ranges::copy_if(paths, std::back_inserter(next_.paths), isUnknown);
    next_.concurrency = std::max(next_.concurrency, options.concurrency);
    while (std::ranges::any_of(paths, isUnknown)) {
        if (walking_) {
            roundEnded_.wait(lock);
            continue;
        }
        walking_ = true;
        run(std::exchange(next_, {}), lock);
        walking_ = false;
        roundEnded_.notify_all();
    }

    std::unordered_map<std::string, SizeResult> results;
    for (const auto& path : paths) {
        auto size = *known(path);
        if (!options.trackNewest && PathTools::isDirectory(path))
            size.newest.reset();
        results.insert_or_assign(path, std::move(size));
    }
    return results;
}

SizeResult SizeLedger::measure(const std::string& path, SizeCalculator::BatchOptions options) {
    return measureAll({path}, options)[path];
}

const SizeResult* SizeLedger::known(const std::string& path) const {
    const auto* folder = root_.find(path);
    return folder && folder->size ? &*folder->size : nullptr;
}

bool SizeLedger::isInsideOfWanted(const std::string& path) const {
    const auto* folder = &root_;
    for (const auto name : Text::pieces(path, '/')) {
        if (folder->wanted && !folder->size)
            return true;
        folder = folder->children.find(name)->second.get();
    }
    return false;
}

void SizeLedger::run(Round round, std::unique_lock<std::mutex>& lock) {
    std::ranges::sort(round.paths);
    const auto repeated = std::ranges::unique(round.paths);
    round.paths.erase(repeated.begin(), repeated.end());
    for (const auto& path : round.paths)
        root_.at(path).wanted = true;

    // Mostly one pass does it. What a walk did not come to (a file, or what lies behind a link or a mount
    // inside of another of these) is next.
    for (Paths& rest = round.paths; !rest.empty();) {
        Paths outermost;
        std::ranges::remove_copy_if(rest, std::back_inserter(outermost),
                                    [this](const std::string& path) { return isInsideOfWanted(path); });

        std::vector<std::pair<std::string, SizeResult>> measured;
        std::mutex mutex;
        const auto tell = [&](const std::string& path, SizeResult size) {
            const std::scoped_lock own(mutex);
            measured.emplace_back(path, std::move(size));
        };
        lock.unlock();
        runInSlidingWindow(outermost.size(), round.concurrency, [&](std::size_t index) {
            tell(outermost[index],
                 TreeWalk::measure(outermost[index], {.trackNewest = true, .known = &root_, .told = tell}));
        });
        lock.lock();
        for (auto& [path, size] : measured)
            root_.at(path).size = std::move(size);
        std::erase_if(rest, [this](const std::string& path) { return known(path) != nullptr; });
    }
}

} // namespace korvanti
