#include "fs/SizeCalculator.h"

#include "fs/SlidingWindow.h"
#include "fs/TreeWalk.h"

#include <mutex>

namespace korvanti::SizeCalculator {

SizeResult measure(const std::string& path, Options options) {
    return TreeWalk::measure(path, {.trackNewest = options.trackNewest,
                                    .ignoreAppleDouble = options.ignoreAppleDouble,
                                    .takeStamp = options.takeStamp});
}

std::unordered_map<std::string, SizeResult> measureAll(const std::vector<std::string>& paths,
                                                       BatchOptions options) {
    std::unordered_map<std::string, SizeResult> results;
    std::mutex mutex;
    runInSlidingWindow(paths.size(), options.concurrency, [&](std::size_t index) {
        auto result = measure(paths[index], {.trackNewest = options.trackNewest});
        const std::scoped_lock lock(mutex);
        results.insert_or_assign(paths[index], std::move(result));
    });
    return results;
}

} // namespace korvanti::SizeCalculator
