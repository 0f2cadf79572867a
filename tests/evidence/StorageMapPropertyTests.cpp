// Random trees, each mapped and then told a second time: one file after the other, by the rules as they are
// written down.
#include "analysis/StorageMapper.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace korvanti {
namespace {

namespace fs = std::filesystem;
using testing::TempFolder;

std::uint64_t fromEnvironment(const char* name, std::uint64_t otherwise) {
    const char* text = std::getenv(name);
    return text == nullptr ? otherwise : std::strtoull(text, nullptr, 0);
}

// The model

struct Bucket {
    std::int64_t bytes = 0;
    std::int64_t unreadable = 0;
    std::map<std::string, Bucket> children;
};

class Model {
public:
    explicit Model(std::string root) : root_(std::move(root)) {}

    MapNode node() {
        std::error_code error;
        if (!fs::is_directory(root_, error) || (fs::directory_iterator(root_, error), error))
            return {.name = fs::path(root_).filename().string(), .path = root_, .unreadable = 1};
        enumerate(root_);
        for (const auto& path : failed_)
            for (auto* bucket : bucketsOf(path + "/x"))
                ++bucket->unreadable;
        return nodeOf(bucket_, root_, root_, 0);
    }

private:
    void enumerate(const std::string& folder) {
        std::error_code error;
        fs::directory_iterator entries(folder, error);
        if (error) {
            failed_.push_back(folder);
            return;
        }
        for (const auto& entry : entries) {
            const auto path = entry.path().string();
            // By the listing's own word, so that a folder which may not be asked is one that can't be read.
            if (!entry.is_symlink(error) && entry.is_directory(error)) {
                enumerate(path);
                continue;
            }
            struct stat status {};
            if (::lstat(path.c_str(), &status) != 0)
                continue;
            for (auto* bucket : bucketsOf(path))
                bucket->bytes += std::int64_t{status.st_blocks} * 512;
        }
    }

    /// The root's, the one on the first level, and the one on the second where there is one.
    std::vector<Bucket*> bucketsOf(const std::string& path) {
        std::vector<std::string> pieces;
        auto rest = path.substr(root_.size() + 1);
        while (pieces.size() < 2 && rest.find('/') != std::string::npos) {
            pieces.push_back(rest.substr(0, rest.find('/')));
            rest = rest.substr(rest.find('/') + 1);
        }
        pieces.push_back(rest);

        std::vector<Bucket*> buckets = {&bucket_, &bucket_.children[pieces[0]]};
        if (pieces.size() == 3)
            buckets.push_back(&buckets[1]->children[pieces[1]]);
        return buckets;
    }

    static MapNode nodeOf(const Bucket& bucket, const std::string& name, const std::string& path, int depth) {
        MapNode node = {.name = name, .path = path, .bytes = bucket.bytes, .unreadable = bucket.unreadable};
        if (depth >= 2 || bucket.children.empty())
            return node;
        node.children.emplace();
        for (const auto& [childName, child] : bucket.children) // by name, which stays where sizes are equal
            if (child.bytes >= 10'000'000 || child.unreadable > 0)
                node.children->push_back(nodeOf(child, childName, path + "/" + childName, depth + 1));
        std::ranges::stable_sort(*node.children, std::ranges::greater(), &MapNode::bytes);
        return node;
    }

    std::string root_;
    Bucket bucket_;
    std::vector<std::string> failed_;
};

// The trees

/// Makes a random tree. Large files are names of a few, so that hundreds of them take no room.
class TreeMaker {
public:
    TreeMaker(const TempFolder& temp, std::uint64_t seed) : temp_(temp), random_(seed) {
        constexpr std::array<std::int64_t, 5> sizes = {0, 4096, 6'000'000, 2441LL * 4096, 2442LL * 4096};
        for (const auto size : sizes)
            files_.push_back(temp.file("files/" + std::to_string(size), {.allocatedBytes = size}));
    }

    /// Not a path but what stands behind the temporary folder's.
    void make(const std::string& folder, int depth = 0) {
        temp_.folder(folder);
        const auto entries = below(depth == 0 ? 8 : 5);
        for (int number = 0; number < entries; ++number) {
            // The number keeps the names apart.
            const auto entry = folder + "/" +
                               std::string(names[static_cast<std::size_t>(below(names.size()))]) +
                               std::to_string(number);
            if (depth < 5 && oneIn(2)) {
                make(entry, depth + 1);
            } else if (oneIn(8)) {
                temp_.symlink(entry, oneIn(2) ? temp_.path() : "nowhere");
            } else {
                temp_.hardLink(entry, files_[static_cast<std::size_t>(below(files_.size()))]);
            }
        }
        constexpr std::array<unsigned, 4> locks = {0, 0300, 0400, 0500};
        if (oneIn(depth == 0 ? 30 : 10))
            temp_.setMode(folder, locks[static_cast<std::size_t>(below(locks.size()))]);
    }

    /// 0 … `limit` - 1
    int below(std::size_t limit) { return static_cast<int>(random_() % limit); }
    bool oneIn(int chances) { return below(static_cast<std::size_t>(chances)) == 0; }

private:
    static constexpr std::array<std::string_view, 6> names = {"a", "b", ".hidden", "x", "\xff\n", "Ö ü"};

    const TempFolder& temp_;
    std::mt19937_64 random_;
    std::vector<std::string> files_;
};

/// What came up, so that no rule goes untried.
struct Met {
    int refusedRoots = 0, absentLists = 0, emptyLists = 0, unreadableBelowTheSize = 0, secondLevels = 0;

    void count(const MapNode& node, int depth) {
        if (node.children && node.children->empty())
            ++emptyLists;
        if (!node.children && depth < 2)
            ++absentLists;
        if (node.unreadable > 0 && node.bytes < 10'000'000 && depth > 0)
            ++unreadableBelowTheSize;
        if (depth == 2)
            ++secondLevels;
        if (depth == 0 && !node.name.starts_with('/'))
            ++refusedRoots;
        for (const auto& child : node.children.value_or(std::vector<MapNode>()))
            count(child, depth + 1);
    }
};

TEST(StorageMapPropertyTests, aMapIsWhatTheModelSays) {
    ASSERT_NE(::geteuid(), 0U) << "run this as an ordinary user";
    const auto seed = fromEnvironment("KORVANTI_SEED", std::random_device()() * std::uint64_t{1'000'000});
    const auto cases = fromEnvironment("KORVANTI_CASES", 300);
    Met met;
    for (std::uint64_t index = 0; index < cases && !HasFailure(); ++index) {
        SCOPED_TRACE("KORVANTI_SEED=" + std::to_string(seed + index) + " KORVANTI_CASES=1");
        const TempFolder temp;
        TreeMaker maker(temp, seed + index);
        std::vector<std::string> roots;
        for (int number = maker.below(4); number >= 0; --number) {
            const auto name = "root" + std::to_string(number);
            if (!maker.oneIn(20))
                maker.make(name);
            roots.push_back(temp.path(name));
        }

        auto expected = std::vector<MapNode>();
        for (const auto& root : roots)
            expected.push_back(Model(root).node());
        std::ranges::stable_sort(expected, std::ranges::greater(), &MapNode::bytes);
        const auto map = StorageMapper::map(roots, [](const std::string&) {});

        EXPECT_EQ(map.roots.size(), expected.size());
        for (std::size_t root = 0; root < expected.size(); ++root) {
            EXPECT_EQ(map.roots[root], expected[root]) << compactJson(toJson(map.roots[root])) << "\n"
                                                       << compactJson(toJson(expected[root]));
            met.count(map.roots[root], 0);
        }
    }
    if (cases >= 100 && !HasFailure()) {
        EXPECT_GT(met.refusedRoots, 0);
        EXPECT_GT(met.absentLists, 0);
        EXPECT_GT(met.emptyLists, 0);
        EXPECT_GT(met.unreadableBelowTheSize, 0);
        EXPECT_GT(met.secondLevels, 0);
    }
}

} // namespace
} // namespace korvanti
