#include "analysis/StorageMapper.h"
#include "fs/SizeCalculator.h"
#include "support/TempFolder.h"

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

std::string brokenFolder; // changed only while nothing is walked

bool isBroken(int folder) {
    char path[4096];
    const auto link = "/proc/self/fd/" + std::to_string(folder);
    const auto length = ::readlink(link.c_str(), path, sizeof path);
    return length > 0 && brokenFolder == std::string(path, static_cast<std::size_t>(length));
}

} // namespace

/// The listing of one folder breaks off behind what the first call gave, as on a damaged disk.
extern "C" long syscall(long call, ...) noexcept {
    va_list more;
    va_start(more, call);
    long arguments[6];
    for (long& argument : arguments)
        argument = va_arg(more, long);
    va_end(more);
    // No guarded static: some libraries' guards make such a call themselves.
    static std::atomic<long (*)(long, ...)> real = nullptr;
    if (!real)
        real = reinterpret_cast<long (*)(long, ...)>(::dlsym(RTLD_NEXT, "syscall"));
    if (call == SYS_getdents64 && isBroken(static_cast<int>(arguments[0])) &&
        ::lseek(static_cast<int>(arguments[0]), 0, SEEK_CUR) != 0) {
        errno = EIO;
        return -1;
    }
    return real.load()(call, arguments[0], arguments[1], arguments[2], arguments[3], arguments[4],
                       arguments[5]);
}

namespace korvanti {
namespace {

using ::testing::ElementsAre;
using ::testing::Optional;
using testing::TempFolder;

constexpr std::int64_t large = 2442LL * 4096; // just enough to be shown

class StorageMapperListingTests : public ::testing::Test {
protected:
    ~StorageMapperListingTests() override { brokenFolder.clear(); }

    [[nodiscard]] MapNode treeWithBroken(const std::string& folder) const {
        brokenFolder = folder;
        const auto size = SizeCalculator::measure(root);
        EXPECT_EQ(size.unreadable, 1);
        auto node = StorageMapper::map({root}, [](const std::string&) {}).roots.at(0);
        EXPECT_EQ(node.bytes, size.bytes);
        return node;
    }

    TempFolder temp;
    std::string root = temp.folder("tree");
};

TEST_F(StorageMapperListingTests, aRootWhoseListingBreaksOffIsUnreadableItselfAndKeepsWhatCame) {
    temp.file("tree/a/film", {.allocatedBytes = large});
    temp.file("tree/small");
    EXPECT_EQ(treeWithBroken(root),
              (MapNode{.name = root,
                       .path = root,
                       .bytes = large,
                       .unreadable = 1,
                       .children = {{{.name = "a", .path = root + "/a", .bytes = large}}}}));
}

TEST_F(StorageMapperListingTests, aFolderWhoseListingBreaksOffIsUnreadableWithAllAboveIt) {
    temp.file("tree/a/film", {.allocatedBytes = 4096});
    const auto node = treeWithBroken(root + "/a");
    EXPECT_EQ(node.unreadable, 1);
    EXPECT_THAT(
        node.children,
        Optional(ElementsAre(MapNode{.name = "a", .path = root + "/a", .bytes = 4096, .unreadable = 1})));
}

TEST_F(StorageMapperListingTests, aListingThatBreaksOffFurtherInsideShowsOnBothLevels) {
    temp.file("tree/a/b/c/d/file", {.allocatedBytes = 4096});
    const auto node = treeWithBroken(root + "/a/b/c/d");
    const MapNode b = {.name = "b", .path = root + "/a/b", .bytes = 4096, .unreadable = 1};
    const MapNode a = {.name = "a", .path = root + "/a", .bytes = 4096, .unreadable = 1, .children = {{b}}};
    EXPECT_EQ(node, (MapNode{.name = root, .path = root, .bytes = 4096, .unreadable = 1, .children = {{a}}}));
}

TEST_F(StorageMapperListingTests, anEmptyRootWhoseListingBreaksOffHasNoMadeUpChild) {
    EXPECT_EQ(treeWithBroken(root), (MapNode{.name = root, .path = root, .unreadable = 1}));
}

} // namespace
} // namespace korvanti
