#include "TreeMaker.h"

#include "base/FileDescriptor.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fmt/format.h>
#include <iterator>
#include <mutex>
#include <numbers>
#include <string_view>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace korvanti::bench {
namespace {

/// Part of the folder names: another one makes all trees anew.
constexpr int formatVersion = 1;
constexpr int deepest = 12;
constexpr std::int64_t hollowParents = 4;

/// splitmix64: the same numbers with every library.
class Random {
public:
    explicit Random(std::uint64_t seed) : state_(seed) {}

    std::uint64_t next() {
        state_ += 0x9e3779b97f4a7c15;
        std::uint64_t mixed = state_;
        mixed = (mixed ^ (mixed >> 30)) * 0xbf58476d1ce4e5b9;
        mixed = (mixed ^ (mixed >> 27)) * 0x94d049bb133111eb;
        return mixed ^ (mixed >> 31);
    }
    /// Above 0, at most 1.
    double unit() { return (static_cast<double>(next() >> 11) + 1) * 0x1p-53; }
    std::uint64_t below(std::uint64_t limit) { return next() % limit; }
    double logNormal(double median, double sigma) {
        const double normal = std::sqrt(-2 * std::log(unit())) * std::cos(2 * std::numbers::pi * unit());
        return median * std::exp(sigma * normal);
    }

private:
    std::uint64_t state_;
};

struct PlannedFolder {
    int depth = 1; ///< 1 right below the root
    std::int64_t files = 0;
};

/// Folders in the order of a depth-first walk: each one's parent is the last one before it that is a level
/// higher.
std::vector<PlannedFolder> planRealistic(const TreePlan& plan) {
    Random random(20240229);
    std::vector<PlannedFolder> folders(static_cast<std::size_t>(plan.folders));
    std::vector<double> weights(folders.size());
    int depth = 0;
    for (std::size_t index = 0; index < folders.size(); ++index) {
        const auto step = random.below(100);
        if (depth == 0 || random.below(200) == 0)
            depth = 1;
        else if (step < 34 && depth < deepest)
            ++depth;
        else if (step >= 76)
            depth -= static_cast<int>(random.below(static_cast<std::uint64_t>(std::min(depth, 4))));
        folders[index].depth = depth;
        weights[index] = random.below(6) == 0 ? 0 : random.logNormal(5, 1.35);
    }

    double total = 0;
    for (const double weight : weights)
        total += weight;
    double sum = 0;
    std::int64_t given = 0;
    for (std::size_t index = 0; index < folders.size(); ++index) {
        sum += weights[index];
        const bool last = index + 1 == folders.size();
        const auto due =
            last ? plan.files : static_cast<std::int64_t>(sum / total * static_cast<double>(plan.files));
        folders[index].files = due - given;
        given = due;
    }
    return folders;
}

class Failure {
public:
    void report(std::string_view what, std::string_view name, int error) {
        const std::scoped_lock lock(mutex_);
        if (!failed_.exchange(true))
            text_ = fmt::format("{} {}: {}", what, name, std::strerror(error));
    }
    [[nodiscard]] bool seen() const { return failed_; }
    [[nodiscard]] const std::string& text() const { return text_; }

private:
    std::mutex mutex_;
    std::atomic<bool> failed_ = false;
    std::string text_;
};

std::string folderName(Random& random, std::int64_t number) {
    constexpr auto stems = std::to_array<std::string_view>(
        {"lib",     "src",      "dist",        "node_modules", "core",    "test",     "assets",
         "com",     "internal", "esm",         "cjs",          "util",    "types",    "locale",
         "release", "debug",    "incremental", "generated",    "objects", "snapshots"});
    return fmt::format("{}-{:x}", stems[random.below(stems.size())], number);
}

std::string fileName(Random& random, std::int64_t number) {
    constexpr auto stems = std::to_array<std::string_view>(
        {"index", "package", "README", "util", "main", "helpers", "constants", "component", "parser",
         "styles", "messages", "template", "libcore", "classes", "module.prefs", "Localizable"});
    constexpr auto extensions =
        std::to_array<std::string_view>({"js", "d.ts", "js.map", "json", "md", "o", "d", "rmeta", "class",
                                         "jar", "png", "swift", "plist", "lock"});
    return fmt::format("{}-{:x}.{}", stems[random.below(stems.size())], number,
                       extensions[random.below(extensions.size())]);
}

/// One file in eight has contents and so occupies blocks; the rest only have a length.
bool makeFile(int folder, Random& random, std::int64_t number, Failure& failure) {
    static constexpr std::array<char, 12 * 1024> contents{};
    const std::string name = fileName(random, number);
    const FileDescriptor file(
        ::openat(folder, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0644));
    if (!file) {
        failure.report("create", name, errno);
        return false;
    }
    if (random.below(8) == 0) {
        const auto length = std::clamp<std::size_t>(static_cast<std::size_t>(random.logNormal(1500, 1.3)), 1,
                                                    contents.size());
        if (::write(file.get(), contents.data(), length) != static_cast<ssize_t>(length)) {
            failure.report("write", name, errno);
            return false;
        }
    } else if (random.below(2) == 0) {
        if (::ftruncate(file.get(), static_cast<off_t>(random.logNormal(2500, 1.8))) != 0) {
            failure.report("lengthen", name, errno);
            return false;
        }
    }
    return true;
}

bool makeFiles(int folder, Random& random, std::int64_t count, Failure& failure) {
    for (std::int64_t number = 0; number < count; ++number)
        if (!makeFile(folder, random, number, failure))
            return false;
    return true;
}

FileDescriptor openFolder(int parent, const std::string& name, Failure& failure) {
    FileDescriptor folder(::openat(parent, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!folder)
        failure.report("open", name, errno);
    return folder;
}

FileDescriptor makeFolder(int parent, const std::string& name, Failure& failure) {
    if (::mkdirat(parent, name.c_str(), 0755) != 0) {
        failure.report("create folder", name, errno);
        return {};
    }
    return openFolder(parent, name, failure);
}

/// Runs `part` for the numbers below `count`, on two threads.
template <typename Part> void inTwoThreads(std::size_t count, const Failure& failure, Part part) {
    std::atomic<std::size_t> next = 0;
    const auto work = [&] {
        for (std::size_t number = next++; number < count && !failure.seen(); number = next++)
            part(number);
    };
    std::thread second(work);
    work();
    second.join();
}

void makeRealistic(int root, const TreePlan& plan, Failure& failure) {
    const std::vector<PlannedFolder> folders = planRealistic(plan);
    std::vector<std::size_t> starts; // of the subtrees right below the root
    for (std::size_t index = 0; index < folders.size(); ++index)
        if (folders[index].depth == 1)
            starts.push_back(index);
    starts.push_back(folders.size());

    inTwoThreads(starts.size() - 1, failure, [&](std::size_t part) {
        std::vector<FileDescriptor> open;
        for (std::size_t index = starts[part]; index < starts[part + 1] && !failure.seen(); ++index) {
            Random random(index);
            open.resize(static_cast<std::size_t>(folders[index].depth - 1));
            const int parent = open.empty() ? root : open.back().get();
            open.push_back(makeFolder(parent, folderName(random, static_cast<std::int64_t>(index)), failure));
            if (!open.back() || !makeFiles(open.back().get(), random, folders[index].files, failure))
                return;
        }
    });
}

void makeFlat(int root, const TreePlan& plan, Failure& failure) {
    Random random(1);
    makeFiles(root, random, plan.files, failure);
}

void makeChain(int root, const TreePlan& plan, Failure& failure) {
    Random random(2);
    FileDescriptor last;
    for (std::int64_t number = 0; number < plan.folders; ++number) {
        last = makeFolder(last ? last.get() : root, folderName(random, number), failure);
        if (!last || !makeFiles(last.get(), random, plan.files / plan.folders, failure))
            return;
    }
}

void makeHollow(int root, const TreePlan& plan, Failure& failure) {
    inTwoThreads(hollowParents, failure, [&](std::size_t part) {
        Random random(100 + part);
        const FileDescriptor parent = makeFolder(root, fmt::format("part-{}", part), failure);
        if (!parent)
            return;
        for (std::int64_t number = 0; number < plan.folders / hollowParents - 1; ++number) {
            const std::string name = folderName(random, number);
            if (::mkdirat(parent.get(), name.c_str(), 0755) != 0) {
                failure.report("create folder", name, errno);
                return;
            }
        }
    });
}

std::string treeName(const TreePlan& plan) {
    switch (plan.shape) {
    case TreeShape::realistic:
        return fmt::format("realistic-{}-{}-v{}", plan.files, plan.folders, formatVersion);
    case TreeShape::flat:
        return fmt::format("flat-{}-v{}", plan.files, formatVersion);
    case TreeShape::chain:
        return fmt::format("chain-{}-{}-v{}", plan.files, plan.folders, formatVersion);
    case TreeShape::hollow:
        return fmt::format("hollow-{}-v{}", plan.folders, formatVersion);
    }
    std::unreachable();
}

} // namespace

std::expected<std::string, std::string> makeTree(const std::string& cache, const TreePlan& plan) {
    namespace fs = std::filesystem;
    const fs::path finished = fs::path(cache) / treeName(plan);
    const fs::path unfinished = finished.string() + ".unfinished";
    std::error_code error;
    // Only a complete tree has its final name.
    if (fs::is_directory(finished, error))
        return finished.string();

    fs::remove_all(unfinished, error);
    if (!error)
        fs::create_directories(unfinished, error);
    if (error)
        return std::unexpected(fmt::format("{}: {}", unfinished.string(), error.message()));

    Failure failure;
    const FileDescriptor root = openFolder(AT_FDCWD, unfinished.string(), failure);
    if (root) {
        switch (plan.shape) {
        case TreeShape::realistic:
            makeRealistic(root.get(), plan, failure);
            break;
        case TreeShape::flat:
            makeFlat(root.get(), plan, failure);
            break;
        case TreeShape::chain:
            makeChain(root.get(), plan, failure);
            break;
        case TreeShape::hollow:
            makeHollow(root.get(), plan, failure);
            break;
        }
    }
    if (failure.seen())
        return std::unexpected(fmt::format("{}: {}", unfinished.string(), failure.text()));

    ::sync();
    fs::rename(unfinished, finished, error);
    if (error)
        return std::unexpected(fmt::format("{}: {}", unfinished.string(), error.message()));
    return finished.string();
}

} // namespace korvanti::bench
