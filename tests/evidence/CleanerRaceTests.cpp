#include "cleaning/Cleaner.h"

#include "Churner.h"
#include "base/FileDescriptor.h"
#include "fs/MountTable.h"
#include "fs/PathTools.h"
#include "support/Mount.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <utility>
#include <vector>

/// The cleaner against another program that changes the tree under its hands: whatever it meets, nothing but
/// its targets is touched. Needs the right to mount: runs in the box as root.
namespace korvanti {
namespace {

using namespace korvanti::testing;

/// Everything below a folder by its path from there: what the system knows of each entry, but for the time of
/// the last reading, and what is in it.
using Listing = std::map<std::string, std::string>;

Listing listingOf(const std::string& folder) {
    Listing listing;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        const auto path = entry.path().string();
        struct stat status {};
        EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
        std::string facts;
        for (const auto number :
             {std::uint64_t{status.st_ino}, std::uint64_t{status.st_mode}, std::uint64_t{status.st_uid},
              std::uint64_t{status.st_gid}, std::uint64_t{status.st_nlink},
              static_cast<std::uint64_t>(status.st_size), static_cast<std::uint64_t>(status.st_mtim.tv_sec),
              static_cast<std::uint64_t>(status.st_mtim.tv_nsec),
              static_cast<std::uint64_t>(status.st_ctim.tv_sec),
              static_cast<std::uint64_t>(status.st_ctim.tv_nsec)})
            facts += std::to_string(number) + ' ';
        if (S_ISLNK(status.st_mode))
            facts += std::filesystem::read_symlink(path).string();
        else if (S_ISREG(status.st_mode))
            facts += textOf(path);
        listing.emplace(path.substr(folder.size() + 1), std::move(facts));
    }
    return listing;
}

/// What differs, for people.
std::vector<std::string> differences(const Listing& before, const Listing& now) {
    std::vector<std::string> differences;
    for (const auto& [path, facts] : before) {
        const auto found = now.find(path);
        if (found == now.end())
            differences.push_back("gone: " + path);
        else if (found->second != facts)
            differences.push_back("changed: " + path + ": " + facts + " → " + found->second);
    }
    for (const auto& [path, facts] : now) {
        if (!before.contains(path))
            differences.push_back("new: " + path);
    }
    return differences;
}

/// How the cleaning of an item ended, in few words.
std::string endOf(const CleanupOutcome& outcome) {
    if (outcome.success)
        return "succeeded";
    constexpr std::array<std::pair<std::string_view, std::string_view>, 8> ends = {{
        {"jalurnya melewati symlink", "refused: a link on the way"},
        {"udah tidak ada", "refused: gone"},
        {"Ini repository git", "refused: a repository"},
        {"Berisi volume lain", "refused: a volume inside"},
        {"berubah selagi diproses", "failed: exchanged"},
        {"ada isi baru", "failed: new entries"},
        {"berada di volume lain", "failed: a volume met"},
        {"sedang dipakai", "failed: mounted on"},
    }};
    for (const auto& [words, end] : ends) {
        if (outcome.message.contains(words))
            return std::string(end);
    }
    return "failed: " + outcome.message.substr(outcome.message.rfind(':') + 1);
}

class CleanerRaceTests : public ::testing::Test {
protected:
    CleanerRaceTests() {
        for (const auto* folder : {"precious", "home/.ssh", "home/Projects/repository"}) {
            links.push_back(temp.path(folder));
            temp.file(std::string(folder) + "/file", {.text = "irreplaceable"});
            for (std::size_t target = 0; target < targetCount; ++target)
                makeLookalike(std::string(folder) + "/q/", target);
        }
        temp.file("home/Projects/repository/.git/HEAD", {.text = "ref: refs/heads/main\n"});
        temp.file("home/beside/folder/file", {.text = "irreplaceable"});
        temp.folder("volume");
        volume.emplace(temp.path("volume"));
        temp.file("volume/file", {.text = "on a volume"});
        kept = listingOfKept();
        churner = std::make_unique<Churner>(temp.path(), links);
    }

    ~CleanerRaceTests() override {
        churner.reset();
        for (const auto& end : ends)
            std::printf("%8zu %s\n", end.second, end.first.c_str());
    }

    /// Cleans targets until there were so many removals, tried or done.
    void run(Race race, std::size_t removals) {
        while (attempts < removals && !HasFailure()) {
            build(race);
            const auto repositories = openRepositories();
            const auto targets = race == Race::trashing ? openTargets() : std::vector<FileDescriptor>();
            const auto keptOnTheWay = listingOnTheWay();
            churner->start(race);
            clean(race);
            churner->stop();
            expectNothingIsMounted();
            if (HasFailure())
                return; // before what is mounted is removed with the tree
            expectKeptIsUntouched();
            if (race != Race::emptyingTrash)
                expectIntact(repositories, 3, "repository");
            expectIntact(targets, treeSize, "target");
            EXPECT_THAT(differences(keptOnTheWay, listingOnTheWay()), ::testing::IsEmpty());
            waysHeld.clear();
        }
        for (const auto& [change, made] : churner->counts())
            std::printf("%8zu × %s\n", static_cast<std::size_t>(made), std::string(change).c_str());
    }

    [[nodiscard]] std::size_t count(const std::string& end) const {
        const auto found = ends.find(end);
        return found == ends.end() ? 0 : found->second;
    }

private:
    static constexpr std::size_t treeSize = 6;

    void makeTree(const std::string& path) const {
        temp.file(path + "/file", {.text = "text"});
        temp.file(path + "/sub/file", {.text = "text"});
        temp.file(path + "/sub/deep/file", {.text = "text"});
        temp.symlink(path + "/link", links.front());
    }

    /// What is precious, under the names that a target has.
    void makeLookalike(const std::string& folder, std::size_t target) const {
        const auto path = folder + "t" + std::to_string(target);
        if (kindOfTarget(target) == TargetKind::file)
            temp.file(path, {.text = "irreplaceable"});
        else
            makeTree(path);
    }

    void makeTarget(const std::string& path, std::size_t target) const {
        switch (kindOfTarget(target)) {
        case TargetKind::tree:
            return makeTree(path);
        case TargetKind::file:
            static_cast<void>(temp.file(path));
            return;
        case TargetKind::link:
            static_cast<void>(temp.symlink(path, temp.path("precious/q")));
            return;
        case TargetKind::emptyFolder:
            static_cast<void>(temp.folder(path));
            return;
        }
    }

    [[nodiscard]] std::string targetPath(Race race, std::size_t target) const {
        const auto name = "t" + std::to_string(target);
        return race == Race::emptyingTrash
                   ? "home/.Trash/" + name
                   : "home/arena/p" + std::to_string(target % parentCount) + "/q/" + name;
    }

    /// The tree as it is before a race; the churner rests.
    void build(Race race) {
        for (const auto* folder : {"home/arena", "home/.Trash", "spare"}) {
            std::filesystem::remove_all(temp.path(folder));
            temp.folder(folder);
        }
        for (std::size_t target = 0; target < targetCount; ++target)
            makeTarget(targetPath(race, target), target);
        for (std::size_t i = 0; i < repositoryCount; ++i) {
            temp.file("spare/repository" + std::to_string(i) + "/.git/HEAD", {.text = "ref"});
            temp.file("spare/repository" + std::to_string(i) + "/source", {.text = "text"});
        }
        for (std::size_t i = 0; i < parentCount; ++i) {
            const auto way = "home/arena/p" + std::to_string(i) + "/q";
            temp.file(way + "/beside/folder/file", {.text = "irreplaceable"});
            waysHeld.push_back(openPassage(temp.path(way)));
        }
    }

    [[nodiscard]] static FileDescriptor openPassage(const std::string& path) {
        return FileDescriptor(::open(path.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    }
    /// A path that leads to what is held open, wherever that is.
    [[nodiscard]] static std::string pathOf(const FileDescriptor& held) {
        return "/proc/self/fd/" + std::to_string(held.get()) + "/.";
    }

    [[nodiscard]] std::vector<FileDescriptor> openRepositories() const {
        std::vector<FileDescriptor> held;
        for (std::size_t i = 0; i < repositoryCount; ++i)
            held.push_back(openPassage(temp.path("spare/repository" + std::to_string(i))));
        return held;
    }

    [[nodiscard]] std::vector<FileDescriptor> openTargets() const {
        std::vector<FileDescriptor> held;
        for (std::size_t target = 0; target < targetCount; ++target) {
            if (kindOfTarget(target) == TargetKind::tree)
                held.push_back(openPassage(temp.path(targetPath(Race::trashing, target))));
        }
        return held;
    }

    [[nodiscard]] Listing listingOnTheWay() const {
        Listing all;
        for (std::size_t i = 0; i < waysHeld.size(); ++i) {
            for (auto& [path, facts] : listingOf(pathOf(waysHeld[i]) + "/beside"))
                all.emplace(std::to_string(i) + "/" + path, facts);
        }
        return all;
    }

    /// All but the targets and what the other program plays with.
    [[nodiscard]] Listing listingOfKept() const {
        Listing all;
        for (const auto* folder : {"precious", "home/.ssh", "home/Projects", "home/beside", "volume"}) {
            for (auto& [path, facts] : listingOf(temp.path(folder)))
                all.emplace(std::string(folder) + "/" + path, facts);
        }
        return all;
    }

    void clean(Race race) {
        const auto progress = [&](std::size_t index, std::size_t, const std::string&) {
            churner->look(index);
        };
        const auto outcomes = cleaner.run(itemsOf(race), progress);
        if (race == Race::emptyingTrash)
            return countEmptying(outcomes.front());
        for (const auto& outcome : outcomes)
            ++ends[endOf(outcome)];
        attempts += outcomes.size();
    }

    [[nodiscard]] std::vector<CleanupItem> itemsOf(Race race) const {
        const auto item = [](std::string path, CleanupAction action) {
            return CleanupItem{.title = "target",
                               .path = std::move(path),
                               .category = ItemCategory::appCaches,
                               .safety = Safety::regenerable,
                               .action = std::move(action)};
        };
        if (race == Race::emptyingTrash)
            return {item(temp.path("home/.Trash"), CleanupAction::emptyTrash())};
        std::vector<CleanupItem> items;
        for (std::size_t target = 0; target < targetCount; ++target)
            items.push_back(item(temp.path(targetPath(race, target)),
                                 race == Race::deleting ? CleanupAction::delete_() : CleanupAction::trash()));
        return items;
    }

    /// One item with many removals: how many failed stands in its text.
    void countEmptying(const CleanupOutcome& outcome) {
        std::size_t failures = 0;
        if (!outcome.success)
            std::from_chars(outcome.message.data(), outcome.message.data() + outcome.message.size(),
                            failures);
        struct stat status {};
        std::size_t left = 0;
        for (std::size_t target = 0; target < targetCount; ++target)
            left += ::lstat(temp.path(targetPath(Race::emptyingTrash, target)).c_str(), &status) == 0 ? 1 : 0;
        if (left == targetCount && failures == 0)
            ++ends["the Trash could not be listed"];
        ends["succeeded"] += targetCount - left;
        ends["refused or failed"] += failures;
        attempts += targetCount - left + failures;
    }

    void expectNothingIsMounted() const {
        EXPECT_EQ(MountTable::mountPoints(temp.path()), std::vector{temp.path("volume")});
    }

    void expectKeptIsUntouched() const {
        EXPECT_THAT(differences(kept, listingOfKept()), ::testing::IsEmpty()) << "after " << attempts;
    }

    /// With so many entries, wherever they are now.
    static void expectIntact(const std::vector<FileDescriptor>& folders, std::size_t size,
                             const std::string& what) {
        for (std::size_t i = 0; i < folders.size(); ++i)
            EXPECT_EQ(listingOf(pathOf(folders[i])).size(), size) << what << " " << i;
    }

protected:
    TempFolder temp;
    std::vector<std::string> links;
    std::optional<Mount> volume;
    Listing kept;
    std::unique_ptr<Churner> churner;
    Cleaner cleaner{temp.path("home"), ActivityLog(temp.path("log"))};
    std::vector<FileDescriptor> waysHeld;
    std::map<std::string, std::size_t> ends;
    std::size_t attempts = 0;
};

// How often the two meet is up to the machine: the least numbers are a small part of what is usual.

TEST_F(CleanerRaceTests, deletingTouchesNothingButItsTargets) {
    run(Race::deleting, 24'000);
    EXPECT_GE(count("succeeded"), 10'000U);
    EXPECT_GE(count("refused: a link on the way"), 20U);
    EXPECT_GE(count("refused: a repository"), 10U);
    EXPECT_GE(count("refused: a volume inside"), 10U);
    EXPECT_GE(count("refused: gone"), 20U);
    EXPECT_GE(count("failed: exchanged"), 10U);
    EXPECT_GE(count("failed: new entries"), 5U);
    EXPECT_GE(count("failed: a volume met"), 1U);
}

TEST_F(CleanerRaceTests, trashingMovesNothingButItsTargetsAndThoseAsAWhole) {
    run(Race::trashing, 12'000);
    EXPECT_GE(count("succeeded"), 5'000U);
    EXPECT_GE(count("refused: a link on the way"), 10U);
    EXPECT_GE(count("refused: a repository"), 5U);
    EXPECT_GE(count("refused: a volume inside"), 5U);
    EXPECT_GE(count("refused: gone"), 10U);
    EXPECT_GE(count("failed: exchanged"), 10U);
}

TEST_F(CleanerRaceTests, emptyingTheTrashTouchesNothingButWhatIsInIt) {
    run(Race::emptyingTrash, 12'000);
    EXPECT_GE(count("succeeded"), 5'000U);
    EXPECT_GE(count("refused or failed"), 20U);
}

} // namespace
} // namespace korvanti
