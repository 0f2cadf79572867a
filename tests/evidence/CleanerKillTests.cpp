// The cleaner is killed at any moment of a long run: what was done is in the log, nothing but the item that
// it was at is touched without a line, and the next run takes the rest.
#include "Snapshot.h"
#include "base/FileDescriptor.h"
#include "base/Json.h"
#include "fs/PathTools.h"
#include "scan/ReportJson.h"
#include "support/RunProgram.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <optional>
#include <random>
#include <spawn.h>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

extern char** environ; // NOLINT(readability-redundant-declaration): not every system declares it

namespace korvanti::testing {
namespace {

using Clock = std::chrono::steady_clock;
using Microseconds = std::chrono::microseconds;
using Kind = CleanupAction::Kind;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool aSanitizerIsInTheWay = true;
#else
constexpr bool aSanitizerIsInTheWay = false;
#endif

constexpr int killsByTime = 130;
constexpr int killsByCall = 184;
constexpr int itemCount = 60;
constexpr int emptyTrashAt = 20;

CleanupItem itemOf(CleanupAction action, const std::string& path,
                   std::optional<std::vector<std::string>> related = std::nullopt) {
    CleanupItem item;
    item.title = std::string(PathTools::lastComponent(path));
    item.path = path;
    item.bytes = 4096;
    item.safety = Safety::regenerable;
    item.action = std::move(action);
    item.relatedPaths = std::move(related);
    return item;
}

std::string named(const char* prefix, int number) {
    return prefix + std::to_string(number);
}

/// Trees to delete, some with a related one, files and folders for the Trash, and once the Trash itself.
std::vector<CleanupItem> itemsIn(const std::string& home) {
    std::vector<CleanupItem> items;
    for (int i = 0; i < itemCount; ++i) {
        if (i == emptyTrashAt)
            items.push_back(itemOf(CleanupAction::emptyTrash(), home + "/.Trash"));
        else if (i % 3 == 0)
            items.push_back(itemOf(CleanupAction::delete_(), home + named("/Library/Caches/tree", i),
                                   std::vector{home + named("/Library/Logs/related", i)}));
        else if (i % 3 == 1)
            items.push_back(itemOf(CleanupAction::trash(), home + named("/Downloads/moved", i),
                                   std::vector{home + named("/Library/Logs/related", i)}));
        else
            items.push_back(itemOf(CleanupAction::delete_(), home + named("/Library/Caches/tree", i)));
    }
    return items;
}

/// The home of those items and what lies around it, removed at the end.
struct World : TempFolder {
    explicit World(const std::string& root) : TempFolder(root) {
        file("outside/keep", {.text = "outside"});
        file("home/Documents/letter.txt", {.text = "letter"});
        file("home/Projects/repository/.git/HEAD", {.text = "ref"});
        for (int i = 0; i < 12; ++i)
            file("home/.Trash/" + named("old", i) + "/file", {.text = named("trashed ", i)});
        for (const auto& item : itemsIn(path("home"))) {
            if (item.action.kind == Kind::emptyTrash)
                continue;
            const auto tree = item.path.substr(path().size() + 1);
            for (int i = 0; i < 10; ++i)
                file(tree + named("/folder", i / 4) + named("/file", i), {.text = item.title});
            symlink(tree + "/link", path("outside"));
            for (const auto& related : item.relatedPaths.value_or(std::vector<std::string>()))
                file(related.substr(path().size() + 1) + "/file", {.text = related});
        }
    }
};

/// The cleaner as a process that can be killed.
class Running {
public:
    explicit Running(std::vector<std::string> command) {
        int ends[2];
        EXPECT_EQ(::pipe2(ends, O_CLOEXEC), 0);
        output_ = FileDescriptor(ends[0]);
        const FileDescriptor writing(ends[1]);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, writing.get(), STDOUT_FILENO);
        std::vector<char*> arguments;
        for (auto& word : command)
            arguments.push_back(word.data());
        arguments.push_back(nullptr);
        EXPECT_EQ(::posix_spawn(&process_, arguments[0], &actions, nullptr, arguments.data(), environ), 0);
        posix_spawn_file_actions_destroy(&actions);
    }

    /// Waits until the cleaner begins with an item. False when it ended before.
    bool awaitItem(int number) {
        while (begun_ < number) {
            char byte = 0;
            if (::read(output_.get(), &byte, 1) != 1)
                return false;
            if (byte == '\n')
                ++begun_;
        }
        return true;
    }

    /// Ends it, unless it has ended by itself. True when that was by the signal.
    bool kill() {
        ::kill(process_, SIGKILL);
        int status = 0;
        EXPECT_EQ(::waitpid(process_, &status, 0), process_);
        return WIFSIGNALED(status);
    }

    /// How many items it had begun with; after its end.
    int begun() {
        awaitItem(itemCount + 1);
        return begun_;
    }

private:
    pid_t process_ = -1;
    FileDescriptor output_;
    int begun_ = 0;
};

struct Log {
    std::vector<std::string> paths;    ///< of the lines that tell of success
    std::vector<std::string> failures; ///< of the others
    int torn = 0;                      ///< lines that are none
    bool endsTorn = false;             ///< the last of them is the last of all
};

Log logIn(const std::string& file) {
    Log log;
    std::ifstream stream(file);
    for (std::string line; std::getline(stream, line);) {
        const auto json = parseJson(line);
        log.endsTorn = stream.eof() || !json;
        if (log.endsTorn) {
            ++log.torn;
            continue;
        }
        JsonObjectReader in(*json);
        (in.boolean("success") ? log.paths : log.failures).push_back(in.text("path"));
        EXPECT_FALSE(in.failed()) << line;
    }
    return log;
}

/// Where in an item the kill came.
enum class Moment { outside, untouched, inPart, done, logged };
constexpr const char* momentNames[] = {"outside", "before it", "in part", "done, no line", "line written"};

struct Place {
    Moment moment = Moment::outside;
    Kind kind = Kind::manual;
};

/// Kills the cleaner again and again in a folder of its own.
class KillRange {
public:
    KillRange() {
        Json json = Json::array();
        for (const auto& item : items_)
            json.push_back(toJson(item));
        folder_.file("items.json", {.text = json.dump()});
        before_ = snapshotOf(World(folder_.path("world")).path());
        measure();
    }

    /// Kills the cleaner somewhere about the given item, judges what is left, cleans again and judges that.
    /// `share` is of the time that the item takes.
    Place killAbout(std::size_t item, double share) const {
        std::filesystem::remove(log_);
        const World world(folder_.path("world"));
        Running cleaner(command_);
        EXPECT_TRUE(cleaner.awaitItem(static_cast<int>(item) + 1));
        const auto end = Clock::now() + durations_[item] * share;
        while (Clock::now() < end) { // a sleep is longer than an item takes
        }
        const bool killed = cleaner.kill();
        const auto place = judgeAndCleanAgain(static_cast<std::size_t>(cleaner.begun()) - 1, world);
        return killed ? place : Place();
    }

    /// The calls of a whole run, as the library of failing calls names them.
    std::vector<std::string> calls() const {
        const auto record = folder_.path("record");
        const World world(folder_.path("world"));
        EXPECT_EQ(runProgram(command_, {.environment = {{"LD_PRELOAD", KORVANTI_FAULT_PRELOAD},
                                                        {"KORVANTI_FAULT_RECORD", record}}})
                      .status,
                  0);
        std::vector<std::string> calls;
        std::ifstream stream(record);
        for (std::string line; std::getline(stream, line);) {
            std::istringstream words(line);
            std::string stage;
            std::string function;
            std::string number;
            words >> stage >> function >> number;
            calls.push_back(stage.append(" ").append(function).append(" ").append(number));
        }
        return calls;
    }

    /// The same with the cleaner killed right before one of these calls, or in the middle of what it writes.
    Place killAt(const std::string& call, bool inTheMiddle) const {
        std::filesystem::remove(log_);
        const World world(folder_.path("world"));
        const auto fault = call + (inTheMiddle ? " -2" : " -1");
        const auto program = runProgram(
            command_, {.environment = {{"LD_PRELOAD", KORVANTI_FAULT_PRELOAD}, {"KORVANTI_FAULT", fault}}});
        EXPECT_EQ(program.status, -SIGKILL) << call;
        const auto begun = std::ranges::count(program.out, '\n');
        return judgeAndCleanAgain(static_cast<std::size_t>(begun) - 1, world);
    }

private:
    Place judgeAndCleanAgain(std::size_t current, const World& world) const {
        const Snapshot after = snapshotOf(world.path());
        const Log log = logIn(log_);
        judge(current, after, log);
        cleanAgain(after, log, world);
        return placeOf(current, after, log);
    }

    void measure() {
        const World world(folder_.path("world"));
        Running cleaner(command_);
        EXPECT_TRUE(cleaner.awaitItem(1));
        for (int item = 0; item < itemCount; ++item) {
            const auto start = Clock::now();
            EXPECT_TRUE(cleaner.awaitItem(item + 2));
            durations_.push_back(Clock::now() - start);
        }
        cleaner.kill();
    }

    static std::string trashed(const std::string& path) {
        return "home/.Trash/" + std::string(PathTools::lastComponent(path));
    }

    /// In a snapshot.
    std::string placeIn(const std::string& path) const {
        return path.substr(folder_.path("world").size() + 1);
    }

    /// The item first, then its related paths; of the Trash what lay in it. As in a snapshot.
    std::vector<std::string> thingsOf(std::size_t index, const Snapshot& before) const {
        const auto& item = items_[index];
        std::vector<std::string> things;
        if (item.action.kind == Kind::emptyTrash) {
            for (const auto& [path, contents] : part(before, "home/.Trash")) {
                if (!path.empty() && !path.contains('/'))
                    things.push_back("home/.Trash/" + path);
            }
            return things;
        }
        things.push_back(placeIn(item.path));
        for (const auto& path : item.relatedPaths.value_or(std::vector<std::string>()))
            things.push_back(placeIn(path));
        return things;
    }

    static void take(Snapshot& world, const std::string& root) {
        std::erase_if(world,
                      [&](const auto& entry) { return PathTools::isSameOrAncestor(root, entry.first); });
    }

    /// The world when the first items are done and nothing else is.
    Snapshot worldAfter(std::size_t count) const {
        Snapshot world = before_;
        for (std::size_t index = 0; index < count; ++index) {
            for (const auto& thing : thingsOf(index, world)) {
                const auto moved = part(world, thing);
                take(world, thing);
                if (items_[index].action.kind == Kind::trash) {
                    for (const auto& [path, contents] : moved)
                        world[trashed(thing) + (path.empty() ? "" : "/" + path)] = contents;
                }
            }
        }
        return world;
    }

    Place placeOf(std::size_t current, const Snapshot& after, const Log& log) const {
        if (current >= items_.size())
            return {};
        Place place{.moment = Moment::inPart, .kind = items_[current].action.kind};
        if (after == worldAfter(current))
            place.moment = Moment::untouched;
        else if (after == worldAfter(current + 1))
            place.moment = log.paths.size() > current ? Moment::logged : Moment::done;
        return place;
    }

    void judge(std::size_t current, const Snapshot& after, const Log& log) const {
        // The log: every finished item, at most the current one, in their order.
        EXPECT_TRUE(log.failures.empty()) << log.failures.front();
        EXPECT_TRUE(log.paths.size() == current || log.paths.size() == current + 1)
            << log.paths.size() << " lines at item " << current;
        for (std::size_t i = 0; i < std::min(log.paths.size(), items_.size()); ++i)
            EXPECT_EQ(log.paths[i], items_[i].path);
        EXPECT_LE(log.torn, log.endsTorn && log.paths.size() == current ? 1 : 0);
        if (log.paths.size() > current) {
            EXPECT_EQ(differences(worldAfter(current + 1), after), "") << "told as done: " << current;
        }

        // The world: what is finished is gone, what comes later is whole, and so is everything else.
        Snapshot expected = worldAfter(current);
        Snapshot seen = after;
        if (current < items_.size()) {
            const auto things = thingsOf(current, expected);
            judgeCurrent(current, things, expected, after);
            for (const auto& thing : things) {
                for (const auto& root : {thing, trashed(thing)}) {
                    take(expected, root);
                    take(seen, root);
                }
            }
        }
        EXPECT_EQ(differences(expected, seen), "") << "killed at item " << current;
    }

    /// Removed in part at most, moved wholly or not at all, and the related paths behind it.
    void judgeCurrent(std::size_t current, const std::vector<std::string>& things, const Snapshot& before,
                      const Snapshot& after) const {
        const auto kind = items_[current].action.kind;
        for (const auto& thing : things) {
            const auto was = part(before, thing);
            const auto is = part(after, thing);
            EXPECT_TRUE(std::ranges::includes(was, is)) << thing << differences(was, is);
            if (kind == Kind::emptyTrash)
                continue;
            const bool stands = is == was && part(after, trashed(thing)).empty();
            const bool moved = is.empty() && part(after, trashed(thing)) == was;
            EXPECT_TRUE(kind != Kind::trash || stands || moved) << thing << " is moved in part";
            EXPECT_TRUE(thing == things.front() || stands || !after.contains(things.front()))
                << thing << " went before its item";
        }
    }

    /// The same items once more, with nobody who kills.
    void cleanAgain(const Snapshot& before, const Log& log, const World& world) const {
        const auto program = runProgram(command_);
        EXPECT_EQ(program.status, 0) << program.err;

        const Snapshot after = snapshotOf(world.path());
        std::vector<std::string> done = log.paths;
        std::vector<std::string> missing;
        Snapshot expected = before;
        for (std::size_t index = 0; index < items_.size(); ++index) {
            const auto& item = items_[index];
            const auto things = thingsOf(index, expected);
            if (item.action.kind != Kind::emptyTrash && !expected.contains(things.front())) {
                missing.push_back(item.path);
                continue; // what is related to it stays
            }
            done.push_back(item.path);
            for (const auto& thing : things) {
                const auto moved = part(expected, thing);
                take(expected, thing);
                for (const auto& [path, contents] : moved) {
                    if (item.action.kind == Kind::trash)
                        expected[trashed(thing) + (path.empty() ? "" : "/" + path)] = contents;
                }
            }
        }
        EXPECT_EQ(differences(expected, after), "") << "cleaned again";

        auto second = logIn(log_);
        EXPECT_EQ(second.torn, log.torn);
        if (log.torn > 0) { // the line behind the torn one is lost with it
            if (before.contains(placeIn(items_.front().path)))
                done.erase(done.begin() + std::ssize(log.paths));
            else
                missing.erase(missing.begin());
        }
        EXPECT_EQ(second.paths, done);
        EXPECT_EQ(second.failures, missing);
        std::size_t told = 0;
        for (auto at = program.out.find("Sudah tidak ada: "); at != std::string::npos;
             at = program.out.find("Sudah tidak ada: ", at + 1))
            ++told;
        EXPECT_GE(told, missing.size());
    }

    TempFolder folder_;
    std::vector<CleanupItem> items_ = itemsIn(folder_.path("world/home"));
    std::string log_ = folder_.path("activity.jsonl");
    std::vector<std::string> command_ = {KORVANTI_CLEAN_ONCE, folder_.path("items.json"),
                                         folder_.path("world/home"), log_};
    Snapshot before_;
    std::vector<Clock::duration> durations_; ///< of each item
};

unsigned seedOfTheRun() {
    const char* const given = std::getenv("KORVANTI_SEED");
    return given ? static_cast<unsigned>(std::strtoul(given, nullptr, 10)) : std::random_device()();
}

/// How many kills came where.
class Table {
public:
    void add(Place place) {
        ++all;
        ++counts_[place.kind][static_cast<std::size_t>(place.moment)];
    }

    int count(Moment moment) const {
        int sum = 0;
        for (const auto& [kind, counts] : counts_)
            sum += counts[static_cast<std::size_t>(moment)];
        return sum;
    }

    bool has(Kind kind) const { return counts_.contains(kind); }

    void print() const {
        std::printf("%-22s", "killed in");
        for (const auto* name : momentNames)
            std::printf(" %14s", name);
        std::printf("\n");
        for (const auto& [kind, counts] : counts_) {
            const std::string name(CleanupAction{.kind = kind, .payload = {}}.verb());
            std::printf("%-22s", kind == Kind::manual ? "no item" : name.c_str());
            for (const int number : counts)
                std::printf(" %14d", number);
            std::printf("\n");
        }
    }

    int all = 0;

private:
    std::map<Kind, std::array<int, std::size(momentNames)>> counts_;
};

class CleanerKillTests : public ::testing::Test {
protected:
    CleanerKillTests() : random(seed) { std::printf("KORVANTI_SEED=%u\n", seed); }
    ~CleanerKillTests() override { table.print(); }

    unsigned seed = seedOfTheRun();
    std::mt19937 random;
    KillRange range;
    Table table;
};

TEST_F(CleanerKillTests, atAnyTimeOnlyTheCurrentItemIsTouchedAndTheNextRunGoesOn) {
    while (table.all < killsByTime && !HasFailure()) {
        // Emptying the Trash is but one of the items, and the longest.
        const bool emptying = std::uniform_int_distribution(0, 7)(random) == 0;
        const int item = std::uniform_int_distribution(0, itemCount - 2)(random);
        const double share = std::uniform_real_distribution(0.3, 1.3)(random);
        table.add(range.killAbout(static_cast<std::size_t>(emptying ? emptyTrashAt : item), share));
    }

    EXPECT_LE(table.count(Moment::outside), killsByTime / 10);
}

TEST_F(CleanerKillTests, beforeAnyCallOnlyTheCurrentItemIsTouchedAndTheNextRunGoesOn) {
    if (aSanitizerIsInTheWay)
        GTEST_SKIP() << "a sanitizer stands in front of the same functions";
    // Half of the kills come anywhere, the others before what changes something and about the log's line.
    const std::vector<std::string> all = range.calls();
    std::vector<std::string> changing;
    std::vector<std::string> writing;
    std::vector<std::string> lastOfItem;
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (all[i].contains("unlinkat") || all[i].contains("renameat2") || all[i].contains("mkdirat"))
            changing.push_back(all[i]);
        if (all[i].contains("write"))
            writing.push_back(all[i]);
        if (i + 1 == all.size() || all[i + 1].substr(0, 2) != all[i].substr(0, 2))
            lastOfItem.push_back(all[i]);
    }
    ASSERT_FALSE(changing.empty() || writing.empty());
    while (table.all < killsByCall && !HasFailure()) {
        const std::vector<std::string>* const turns[] = {&all, &changing, &all, &lastOfItem,
                                                         &all, &changing, &all, &writing};
        const auto& calls = *turns[table.all % 8];
        const auto& call = calls[std::uniform_int_distribution<std::size_t>(0, calls.size() - 1)(random)];
        table.add(range.killAt(call, &calls == &writing));
    }

    EXPECT_GE(table.count(Moment::inPart), killsByCall / 5);
    EXPECT_GE(table.count(Moment::done), killsByCall / 10);
    EXPECT_GE(table.count(Moment::logged), killsByCall / 10);
    for (const auto kind : {Kind::delete_, Kind::trash, Kind::emptyTrash})
        EXPECT_TRUE(table.has(kind));
}

TEST_F(CleanerKillTests, inTheMiddleOfALineTheLogLosesThatOneAndTheNext) {
    if (aSanitizerIsInTheWay)
        GTEST_SKIP() << "a sanitizer stands in front of the same functions";
    for (const int item : {1, emptyTrashAt + 1, itemCount})
        table.add(range.killAt(std::to_string(item) + " write 1", true));

    EXPECT_EQ(table.count(Moment::done), 3);
}

} // namespace
} // namespace korvanti::testing
