#include "process/Toolchain.h"
#include "providers/ProjectArtifactProvider.h"
#include "scanner/Scanner.h"
#include "support/Environment.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <functional>
#include <mutex>
#include <pthread.h>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

namespace korvanti {
namespace {

using testing::TempFolder;
using namespace std::chrono_literals;
using Found = Scanner::Found;
using Items = std::vector<CleanupItem>;

constexpr const char* indexing = "Mengindeks proyek…";
constexpr const char* readingDisk = "Membaca kondisi disk…";

CleanupItem item(std::string path, std::int64_t bytes, std::string title = {},
                 Safety safety = Safety::regenerable) {
    CleanupItem made;
    made.title = std::move(title);
    made.path = std::move(path);
    made.bytes = bytes;
    made.safety = safety;
    made.action = CleanupAction::delete_();
    return made;
}

CleanupItem related(CleanupItem item, std::vector<std::string> paths) {
    item.relatedPaths = std::move(paths);
    return item;
}

std::vector<std::string> pathsOf(const Items& items) {
    std::vector<std::string> paths;
    for (const CleanupItem& one : items)
        paths.push_back(one.path);
    return paths;
}

std::vector<std::string> titlesOf(const Items& items) {
    std::vector<std::string> titles;
    for (const CleanupItem& one : items)
        titles.push_back(one.title);
    return titles;
}

using Paths = std::vector<std::string>;

// Merging

TEST(ScannerMergeTests, nothingGivesNothing) {
    EXPECT_TRUE(Scanner::merge({}).empty());
    EXPECT_TRUE(Scanner::merge({{10, {}}, {20, {}}}).empty());
}

TEST(ScannerMergeTests, unrelatedItemsAllStayAsTheyAre) {
    const CleanupItem one = related(item("/a", 1, "satu", Safety::review), {"/x"});
    const CleanupItem two = item("/b", 2, "dua", Safety::costly);
    EXPECT_EQ(Scanner::merge({{10, {one}}, {20, {two}}}), (Items{two, one}));
}

TEST(ScannerMergeTests, theLargerOfTwoItemsWithOnePathStays) {
    EXPECT_EQ(titlesOf(Scanner::merge({{50, {item("/a", 1, "kecil"), item("/a", 2, "besar")}}})),
              Paths{"besar"});
}

TEST(ScannerMergeTests, theFirstOfTwoEqualItemsWithOnePathStays) {
    EXPECT_EQ(titlesOf(Scanner::merge({{50, {item("/a", 2, "pertama"), item("/a", 2, "kedua")}}})),
              Paths{"pertama"});
}

TEST(ScannerMergeTests, anItemInsideAClaimedFolderIsDropped) {
    EXPECT_EQ(pathsOf(Scanner::merge({{10, {item("/a/b/c", 100)}}, {50, {item("/a/b", 1)}}})), Paths{"/a/b"});
}

TEST(ScannerMergeTests, anItemAroundAClaimedFolderIsDropped) {
    EXPECT_EQ(pathsOf(Scanner::merge({{10, {item("/a/b", 100)}}, {50, {item("/a/b/c", 1)}}})),
              Paths{"/a/b/c"});
}

TEST(ScannerMergeTests, anItemAtTheClaimedPathIsDropped) {
    EXPECT_EQ(titlesOf(Scanner::merge({{10, {item("/a", 100, "rendah")}}, {50, {item("/a", 1, "tinggi")}}})),
              Paths{"tinggi"});
}

TEST(ScannerMergeTests, onlyWholeComponentsNest) {
    EXPECT_EQ(pathsOf(Scanner::merge({{50, {item("/a/b", 2)}}, {10, {item("/a/bc", 1)}}})),
              (Paths{"/a/b", "/a/bc"}));
}

TEST(ScannerMergeTests, caseTellsPathsApart) {
    EXPECT_EQ(pathsOf(Scanner::merge({{50, {item("/a/B", 2)}}, {10, {item("/a/b", 1)}}})),
              (Paths{"/a/B", "/a/b"}));
}

TEST(ScannerMergeTests, linksAreNotResolved) {
    TempFolder temp;
    const std::string folder = temp.folder("real");
    temp.symlink("link", folder);
    EXPECT_EQ(Scanner::merge({{50, {item(folder, 2)}}, {10, {item(temp.path("link"), 1)}}}).size(), 2U);
}

TEST(ScannerMergeTests, aClaimedPathWithATrailingSlashHoldsWhatLiesUnderIt) {
    EXPECT_EQ(pathsOf(Scanner::merge({{50, {item("/a/", 1)}}, {10, {item("/a/b", 2)}}})), Paths{"/a/"});
}

TEST(ScannerMergeTests, aTrailingSlashIsNotDoubled) {
    EXPECT_EQ(pathsOf(Scanner::merge({{50, {item("/a/", 2)}}, {10, {item("/ab", 1)}}})),
              (Paths{"/a/", "/ab"}));
}

TEST(ScannerMergeTests, theRootHoldsEverything) {
    EXPECT_EQ(
        pathsOf(Scanner::merge({{50, {item("/", 1)}}, {10, {item("/a", 2), item("apfs:Data:Data", 3)}}})),
        (Paths{"apfs:Data:Data", "/"}));
}

TEST(ScannerMergeTests, anItemWhoseRelatedPathAloneCollidesIsDroppedWhole) {
    EXPECT_EQ(pathsOf(Scanner::merge({{50, {item("/a", 1)}}, {10, {related(item("/free", 9), {"/a/x"})}}})),
              Paths{"/a"});
}

TEST(ScannerMergeTests, eachRelatedPathIsCompared) {
    EXPECT_EQ(pathsOf(Scanner::merge(
                  {{50, {item("/a/x", 1)}}, {10, {related(item("/free", 9), {"/other", "/third", "/a"})}}})),
              Paths{"/a/x"});
}

TEST(ScannerMergeTests, relatedPathsAreClaimedToo) {
    EXPECT_EQ(pathsOf(Scanner::merge({{50, {related(item("/main", 1), {"/extra", "/more"})}},
                                      {10, {item("/extra/x", 5), item("/more", 4), item("/else", 3)}}})),
              (Paths{"/else", "/main"}));
}

TEST(ScannerMergeTests, anItemDoesNotCollideWithItsOwnRelatedPaths) {
    EXPECT_EQ(pathsOf(Scanner::merge({{50, {related(item("/a/b", 1), {"/a", "/a/b", "/a/b/c"})}}})),
              Paths{"/a/b"});
}

TEST(ScannerMergeTests, aDroppedItemClaimsNothing) {
    const Items merged = Scanner::merge(
        {{90, {item("/a", 1)}}, {50, {related(item("/a/inner", 9), {"/spot"})}}, {10, {item("/spot", 5)}}});
    EXPECT_EQ(pathsOf(merged), (Paths{"/spot", "/a"}));
}

TEST(ScannerMergeTests, aDroppedItemDoesNotClaimItsFreePathEither) {
    const Items merged = Scanner::merge(
        {{90, {item("/a", 1)}}, {50, {related(item("/free", 9), {"/a"})}}, {10, {item("/free", 5)}}});
    EXPECT_EQ(pathsOf(merged), (Paths{"/free", "/a"}));
}

TEST(ScannerMergeTests, priorityGoesBeforeTheClass) {
    const Items merged = Scanner::merge(
        {{10, {item("/a", 9, "simpan", Safety::keep)}}, {50, {item("/a", 1, "buang", Safety::regenerable)}}});
    EXPECT_EQ(titlesOf(merged), Paths{"buang"});
}

TEST(ScannerMergeTests, priorityGoesBeforeTheSize) {
    const Items merged = Scanner::merge(
        {{10, {item("/a", 1'000'000)}}, {100, {item("/a/small", 1)}}, {50, {item("/a/x", 5)}}});
    EXPECT_EQ(pathsOf(merged), (Paths{"/a/x", "/a/small"}));
}

TEST(ScannerMergeTests, ofEqualPrioritiesTheEarlierPairClaimsFirst) {
    EXPECT_EQ(titlesOf(Scanner::merge({{80, {item("/a", 1, "dulu")}}, {80, {item("/a", 9, "nanti")}}})),
              Paths{"dulu"});
}

TEST(ScannerMergeTests, nestedItemsOfOneProviderAreReducedToTheLarger) {
    EXPECT_EQ(pathsOf(Scanner::merge({{50, {item("/a/b", 3), item("/a", 7)}}})), Paths{"/a"});
}

TEST(ScannerMergeTests, aLargeChildTakesTheParentAwayWithinOneProvider) {
    EXPECT_EQ(pathsOf(Scanner::merge({{50, {item("/a", 3), item("/a/b", 7), item("/a/c", 5)}}})),
              (Paths{"/a/b", "/a/c"}));
}

TEST(ScannerMergeTests, theSafestComeFirstAndTheLargestOfEach) {
    const Items merged = Scanner::merge(
        {{90,
          {item("/1", 900, "managed", Safety::managed),
           item("/2", 5, "regenerable small", Safety::regenerable), item("/3", 800, "keep", Safety::keep)}},
         {10,
          {item("/4", 50, "regenerable large", Safety::regenerable),
           item("/5", 700, "review", Safety::review), item("/6", 600, "costly small", Safety::costly),
           item("/7", 601, "costly large", Safety::costly)}}});
    EXPECT_EQ(titlesOf(merged), (Paths{"regenerable large", "regenerable small", "costly large",
                                       "costly small", "review", "keep", "managed"}));
}

TEST(ScannerMergeTests, equalItemsStayInTheOrderInWhichTheyClaimed) {
    std::vector<Found> found;
    Paths expected;
    for (int priority = 100; priority > 0; priority -= 10) {
        Items items;
        for (int index = 0; index < 4; ++index) {
            const std::string path = "/" + std::to_string(priority) + "-" + std::to_string(index);
            items.push_back(item(path, 7));
            expected.push_back(path);
        }
        found.emplace_back(priority, items);
    }
    std::ranges::reverse(found);
    EXPECT_EQ(pathsOf(Scanner::merge(found)), expected);
}

// Running

/// A provider whose work is a function.
class WorkingProvider final : public ItemProvider {
public:
    using Work = std::function<Items(const ScanContext&)>;
    WorkingProvider(int priority, std::string name, Work work)
        : priority_(priority), name_(std::move(name)), work_(std::move(work)) {}

    [[nodiscard]] int priority() const override { return priority_; }
    [[nodiscard]] std::string name() const override { return name_; }
    [[nodiscard]] Items items(const ScanContext& context) const override { return work_(context); }

private:
    int priority_;
    std::string name_;
    Work work_;
};

/// What `progress` was told so far; a provider can wait for a line.
class Lines {
public:
    void add(const std::string& line) {
        const std::lock_guard lock(mutex_);
        lines_.push_back(line);
        changed_.notify_all();
    }
    [[nodiscard]] Paths all() const {
        const std::lock_guard lock(mutex_);
        return lines_;
    }
    /// False when the line does not come within half a minute.
    [[nodiscard]] bool waitFor(const std::string& line) const {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, 30s, [&] { return std::ranges::count(lines_, line) > 0; });
    }

private:
    mutable std::mutex mutex_;
    mutable std::condition_variable changed_;
    Paths lines_;
};

class ScannerTests : public ::testing::Test {
protected:
    TempFolder home;
    Lines lines;
    Scanner::Providers providers;
    KorvantiSettings settings;

    void add(int priority, std::string name, WorkingProvider::Work work) {
        providers.push_back(std::make_unique<WorkingProvider>(priority, std::move(name), std::move(work)));
    }
    ScanReport run() {
        return Scanner{settings, home.path()}.run(providers,
                                                  [this](const std::string& line) { lines.add(line); });
    }
};

Items nothing(const ScanContext& /*context*/) {
    return {};
}

TEST_F(ScannerTests, withoutProvidersTheReportStillHasTheDiskAndTheNotes) {
    const ScanReport report = run();

    EXPECT_TRUE(report.items.empty());
    EXPECT_GT(report.disk.total, 0);
    EXPECT_GT(report.disk.physicalMemory, 0);
    EXPECT_EQ(lines.all(), (Paths{indexing, readingDisk}));
}

TEST_F(ScannerTests, theNotesTellWhatIsMissingAndNothingElse) {
    const ScanReport report = run();

    Paths expected;
    if (!report.disk.hasFullDiskAccess)
        expected.push_back("Full Disk Access belum aktif: Tong Sampah, Containers, dan media "
                           "WhatsApp/Telegram tidak bisa diukur. "
                           "Aktifkan di System Settings › Privacy & Security › Full Disk Access.");
    if (!Toolchain::developerDir())
        expected.push_back("Xcode tidak ditemukan, jadi simulator & runtime dilewati.");
    EXPECT_EQ(report.notes, expected);
}

TEST_F(ScannerTests, aProviderWithoutItemsIsFinishedLikeAnyOther) {
    add(50, "Kosong", nothing);
    EXPECT_TRUE(run().items.empty());
    EXPECT_EQ(lines.all(), (Paths{indexing, "Selesai: Kosong", readingDisk}));
}

TEST_F(ScannerTests, everyProviderIsNamedOnceBetweenIndexAndDisk) {
    Paths expected;
    for (int index = 0; index < 14; ++index) {
        const std::string name = "P" + std::to_string(10 + index);
        add(index, name, nothing);
        expected.push_back("Selesai: " + name);
    }
    run();

    Paths told = lines.all();
    ASSERT_EQ(told.size(), 16U);
    EXPECT_EQ(told.front(), indexing);
    EXPECT_EQ(told.back(), readingDisk);
    std::sort(told.begin() + 1, told.end() - 1);
    EXPECT_EQ(Paths(told.begin() + 1, told.end() - 1), expected);
}

TEST_F(ScannerTests, theIndexIsAnnouncedBeforeAnyProviderStarts) {
    std::atomic<bool> announced = false;
    add(50, "A", [&](const ScanContext&) {
        announced = lines.all() == Paths{indexing};
        return Items{};
    });
    run();
    EXPECT_TRUE(announced);
}

TEST_F(ScannerTests, allProvidersRunAtTheSameTime) {
    constexpr int count = 24; // more than the machine has cores
    std::mutex mutex;
    std::condition_variable changed;
    int started = 0;
    std::atomic<int> met = 0;
    for (int index = 0; index < count; ++index)
        add(index, "P" + std::to_string(index), [&](const ScanContext&) {
            std::unique_lock lock(mutex);
            ++started;
            changed.notify_all();
            if (changed.wait_for(lock, 30s, [&] { return started == count; }))
                ++met;
            return Items{};
        });
    run();
    EXPECT_EQ(met, count);
}

#ifdef __GLIBC__ // where a test can take the threads away
TEST_F(ScannerTests, withoutThreadsTheProvidersRunOneAfterTheOther) {
    for (int index = 0; index < 3; ++index) {
        const auto path = "/" + std::to_string(index);
        add(index, "P", [path](const ScanContext&) { return Items{item(path, 1)}; });
    }
    pthread_attr_t usual;
    pthread_attr_t impossible;
    ASSERT_EQ(::pthread_getattr_default_np(&usual), 0);
    ASSERT_EQ(::pthread_getattr_default_np(&impossible), 0);
    ASSERT_EQ(::pthread_attr_setstacksize(&impossible, std::size_t{1} << 60), 0);
    ASSERT_EQ(::pthread_setattr_default_np(&impossible), 0);

    const ScanReport report = run();

    EXPECT_EQ(::pthread_setattr_default_np(&usual), 0);
    EXPECT_EQ(pathsOf(report.items), (Paths{"/2", "/1", "/0"}));
}
#endif

TEST_F(ScannerTests, providersAreToldInTheOrderInWhichTheyFinish) {
    std::atomic<bool> waited = true;
    const auto after = [&](std::string line) {
        return [&, line](const ScanContext&) {
            if (!lines.waitFor(line))
                waited = false;
            return Items{};
        };
    };
    add(100, "A", after("Selesai: B"));
    add(90, "B", after("Selesai: C"));
    add(80, "C", nothing);
    run();
    EXPECT_TRUE(waited);
    EXPECT_EQ(lines.all(), (Paths{indexing, "Selesai: C", "Selesai: B", "Selesai: A", readingDisk}));
}

TEST_F(ScannerTests, progressIsCalledOneAtATime) {
    for (int index = 0; index < 24; ++index)
        add(index, "P", nothing);
    std::atomic<int> inside = 0;
    std::atomic<int> most = 0;
    const auto progress = [&](const std::string&) {
        most = std::max(most.load(), ++inside);
        std::this_thread::sleep_for(2ms);
        --inside;
    };
    std::ignore = Scanner{settings, home.path()}.run(providers, progress);
    EXPECT_EQ(most, 1);
}

TEST_F(ScannerTests, ofEqualPrioritiesTheProviderThatFinishedFirstWins) {
    std::atomic<bool> waited = false;
    add(80, "lambat", [&](const ScanContext&) {
        waited = lines.waitFor("Selesai: cepat");
        return Items{item("/same", 9, "lambat")};
    });
    add(80, "cepat", [](const ScanContext&) { return Items{item("/same", 1, "cepat")}; });

    const ScanReport report = run();
    EXPECT_TRUE(waited);
    EXPECT_EQ(titlesOf(report.items), Paths{"cepat"});
}

TEST_F(ScannerTests, aHigherPriorityWinsAlsoWhenItFinishesLast) {
    std::atomic<bool> waited = false;
    add(100, "lambat", [&](const ScanContext&) {
        waited = lines.waitFor("Selesai: cepat");
        return Items{item("/same", 1, "lambat")};
    });
    add(10, "cepat", [](const ScanContext&) { return Items{item("/same/inner", 9, "cepat")}; });

    const ScanReport report = run();
    EXPECT_TRUE(waited);
    EXPECT_EQ(titlesOf(report.items), Paths{"lambat"});
}

TEST_F(ScannerTests, theItemsOfAllProvidersComeMergedAndSorted) {
    add(10, "A", [](const ScanContext&) {
        return Items{item("/x", 1, "managed", Safety::managed), item("/y", 2, "kecil"),
                     item("/z/in", 5, "buang")};
    });
    add(90, "B", [](const ScanContext&) { return Items{item("/z", 3, "besar")}; });
    EXPECT_EQ(titlesOf(run().items), (Paths{"besar", "kecil", "managed"}));
}

TEST_F(ScannerTests, everyProviderIsToldTheSameContext) {
    settings.devRoots = {"~/Developer", "/opt/x", "~/Developer"};
    settings.inactiveDays = 34;
    std::mutex mutex;
    std::vector<ScanContext> contexts;
    for (int index = 0; index < 5; ++index)
        add(index, "P", [&](const ScanContext& context) {
            const std::lock_guard lock(mutex);
            contexts.push_back(context);
            return Items{};
        });

    const Instant before = currentInstant();
    const ScanReport report = run();
    const Instant after = currentInstant();

    ASSERT_EQ(contexts.size(), 5U);
    for (const ScanContext& context : contexts) {
        EXPECT_EQ(context.home, home.path());
        EXPECT_EQ(context.devRoots, (Paths{home.path("Developer"), "/opt/x", home.path("Developer")}));
        EXPECT_EQ(context.inactiveDays, 34);
        EXPECT_EQ(context.now, report.startedAt);
        EXPECT_EQ(context.projects, contexts.front().projects);
    }
    EXPECT_LE(before, report.startedAt);
    EXPECT_LE(report.startedAt, after);
}

TEST_F(ScannerTests, whatTwoSpellingsOfARootFindIsListedOnce) {
    home.file("Developer/web/package.json");
    home.file("Developer/web/node_modules/x", {.allocatedBytes = 30'000'000});
    home.folder("Documents");
    settings.devRoots = {"~/Developer", "~/Documents/../Developer", "~/./Developer//", "relative/x"};
    add(70, "P", [](const ScanContext& context) { return ProjectArtifactProvider().items(context); });
    EXPECT_EQ(pathsOf(run().items), Paths{home.path("Developer/web/node_modules")});
}

TEST_F(ScannerTests, theDurationIsThatOfTheWholeRunInSeconds) {
    add(50, "A", [](const ScanContext&) {
        std::this_thread::sleep_for(120ms);
        return Items{};
    });
    const Instant before = currentInstant();
    const ScanReport report = run();
    const Instant after = currentInstant();
    EXPECT_GE(report.duration, 0.12);
    EXPECT_LE(report.duration, secondsBetween(before, after));
}

TEST_F(ScannerTests, aScannerRunsAgain) {
    add(50, "A", [](const ScanContext&) { return Items{item("/a", 1)}; });
    const Scanner scanner{settings, home.path()};
    const auto silent = [](const std::string&) {};
    const ScanReport first = scanner.run(providers, silent);
    const ScanReport second = scanner.run(providers, silent);
    EXPECT_EQ(first.items, second.items);
    EXPECT_EQ(second.items.size(), 1U);
    EXPECT_LT(first.startedAt, second.startedAt);
}

TEST_F(ScannerTests, aScanWritesNothing) {
    const testing::ScopedHome usersHome(home.path());
    home.file(".claude/notes", {.text = "x"});
    const auto everything = [&] {
        std::vector<std::string> paths;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(home.path()))
            paths.push_back(entry.path().string());
        return paths;
    };
    const auto before = everything();
    std::ignore = Scanner{settings, home.path()}.run(Scanner::defaultProviders(), [](const std::string&) {});
    EXPECT_EQ(everything(), before);
}

TEST_F(ScannerTests, theSourcesOfItemsHaveTheirPrioritiesAndTheirOrder) {
    std::vector<std::pair<std::string, int>> sources;
    for (const auto& provider : Scanner::defaultProviders())
        sources.emplace_back(provider->name(), provider->priority());

    EXPECT_EQ(sources, (std::vector<std::pair<std::string, int>>{{"Simulator", 100},
                                                                 {"Device Support", 95},
                                                                 {"Gradle", 90},
                                                                 {"Android SDK", 90},
                                                                 {"Toolchain", 85},
                                                                 {"Ekstensi editor", 80},
                                                                 {"Riwayat Codex", 80},
                                                                 {"Artefak proyek", 70},
                                                                 {"Katalog lokasi dikenal", 50},
                                                                 {"File pribadi", 40},
                                                                 {"Aplikasi", 60},
                                                                 {"Sisa app", 30},
                                                                 {"Cache app", 20},
                                                                 {"Sistem", 10}}));
}

TEST_F(ScannerTests, theCatalogAmongTheSourcesKnowsItsRows) {
    home.file(".npm/_logs/old.log", {.allocatedBytes = 5'001'216});
    const ScanReport report =
        Scanner{settings, home.path()}.run(Scanner::defaultProviders(), [](const std::string&) {});
    ASSERT_EQ(pathsOf(report.items), Paths{home.path(".npm/_logs")});
    EXPECT_EQ(report.items[0].title, "Log npm");
    EXPECT_TRUE(report.items[0].recommended);
}

} // namespace
} // namespace korvanti
