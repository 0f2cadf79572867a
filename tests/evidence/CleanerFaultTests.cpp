// Every system call of the cleaner fails once, in every way that is to be feared.
//
// A scenario is a home with a list of items. A first run records the calls that the cleaner makes; then each
// of them fails in a run of its own, in a fresh home. What must hold in each of these runs is in `Judge`.
#include "FaultRun.h"
#include "FaultScenarios.h"
#include "fs/PathTools.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace korvanti::testing {
namespace {

using ::testing::IsEmpty;
using Kind = CleanupAction::Kind;

constexpr std::pair<int, const char*> reasons[] = {
    {EACCES, "tidak ada izin"},
    {EPERM, "tidak ada izin"},
    {EIO, "kesalahan baca/tulis pada disk"},
    {EBUSY, "sedang dipakai"},
    {ENOSPC, "ruang disk habis"},
    {ENOENT, "sudah tidak ada"},
    {EROFS, "volume hanya bisa dibaca"},
};
constexpr int half = 0; ///< as an error: a read or a write that does part of it

const std::string partly = "Sebagian dilewati: ";

/// What a run with a fault came to, for the table.
enum class Ending { asWithout, itemFailed, itemPartlyGone, relatedLeft, taken, logLineLost };
constexpr const char* endingNames[] = {"as without",   "failed,whole", "failed,part",
                                       "related left", "passed over",  "log line lost"};

/// Judges one run with a fault by the run without.
class Judge {
public:
    Judge(const Stage& stage, const Traces& without, const Fault& fault, const Traces& ran)
        : stage_(stage), without_(without), fault_(fault), ran_(ran) {}

    /// One text for each thing that is not as it must be.
    std::vector<std::string> complaints() {
        complainIf(ran_.status != 0 || !ran_.err.empty() || ran_.begun != without_.begun,
                   "did not end normally: " + std::to_string(ran_.status) + " " + ran_.err);
        complainIf(ran_.calls != std::vector{fault_.call}, "the call that failed was another one");
        complainIf(ran_.outcomes.size() != stage_.items().size(), "not an outcome for each item");
        if (!complaints_.empty())
            return complaints_;
        judgeWorld();
        for (std::size_t index = 0; index < stage_.items().size(); ++index) {
            judgeOutcome(index);
            if (!isConcerned(index))
                complainIf(ran_.outcomes[index] != without_.outcomes[index],
                           "another item ended otherwise: " + ran_.outcomes[index].message);
        }
        judgeLog();
        if (fault_.error == EINTR || fault_.error == half)
            judgeUnchanged();
        return complaints_;
    }

    Ending ending() const {
        if (ran_.outcomes == without_.outcomes && ran_.world == without_.world)
            return ran_.log == ran_.outcomes ? Ending::asWithout : Ending::logLineLost;
        for (std::size_t index = 0; index < stage_.items().size(); ++index) {
            const auto& now = ran_.outcomes[index];
            if (now == without_.outcomes[index])
                continue;
            if (now.message.starts_with(partly))
                return Ending::relatedLeft;
            if (now.success)
                return Ending::taken;
            for (const auto& path : thingsOf(stage_.items()[index])) {
                if (!isWhole(path))
                    return Ending::itemPartlyGone;
            }
            return Ending::itemFailed;
        }
        return Ending::taken;
    }

private:
    void complainIf(bool wrong, const std::string& what) {
        if (wrong)
            complaints_.push_back(what);
    }

    /// The item during which the call failed. Xcode is looked for once for all simulators.
    bool isConcerned(std::size_t index) const {
        if (std::cmp_equal(fault_.call.stage, index + 1))
            return true;
        return isOfSimulator(index) && std::cmp_less(fault_.call.stage, index + 1) &&
               fault_.call.stage >= 1 && isOfSimulator(static_cast<std::size_t>(fault_.call.stage) - 1) &&
               ran_.outcomes[index].message == "Xcode tidak ditemukan";
    }

    bool isOfSimulator(std::size_t index) const {
        const auto kind = stage_.items()[index].action.kind;
        return kind == Kind::simulatorErase || kind == Kind::simulatorDelete ||
               kind == Kind::simulatorRuntimeDelete;
    }

    // Paths are those of snapshots from here on: from the folder above the home.

    std::string inWorld(const std::string& path) const { return "home" + path.substr(stage_.home().size()); }

    /// What lies behind a link stays (`judgeWorld`), so it is there as long as the link is.
    static bool isThere(const Snapshot& world, const std::string& path) {
        for (auto slash = path.find('/'); slash != std::string::npos; slash = path.find('/', slash + 1)) {
            const auto folder = world.find(path.substr(0, slash));
            if (folder != world.end() && S_ISLNK(std::stoul(folder->second)))
                return true;
        }
        return world.contains(path);
    }
    bool wasThere(const std::string& path) const { return isThere(stage_.before(), path); }
    bool isGone(const std::string& path) const { return !isThere(ran_.world, path); }
    bool isWhole(const std::string& path) const {
        return part(ran_.world, path) == part(stage_.before(), path);
    }
    /// As it was, in the Trash under whatever name.
    bool isInTrash(const std::string& path) const {
        const auto thing = part(stage_.before(), path);
        return std::ranges::any_of(childrenOfTrash(ran_.world), [&](const std::string& child) {
            return part(ran_.world, child) == thing;
        });
    }
    static std::vector<std::string> childrenOfTrash(const Snapshot& world) {
        std::vector<std::string> children;
        for (const auto& [path, contents] : part(world, "home/.Trash")) {
            if (!path.empty() && !path.contains('/'))
                children.push_back("home/.Trash/" + path);
        }
        return children;
    }

    bool mayGo(std::string_view path) const {
        return std::ranges::any_of(stage_.scenario().mayGo, [&](const std::string& root) {
            return PathTools::isSameOrAncestor("home/" + root, path);
        });
    }

    /// What an item takes: itself, its related paths, what lies in the Trash.
    std::vector<std::string> thingsOf(const CleanupItem& item) const {
        if (item.action.kind == Kind::emptyTrash)
            return childrenOfTrash(stage_.before());
        std::vector<std::string> paths;
        if (item.path.starts_with(stage_.home() + "/"))
            paths.push_back(inWorld(item.path));
        for (const auto& path : item.relatedPaths.value_or(std::vector<std::string>()))
            paths.push_back(inWorld(path));
        return paths;
    }

    /// Nothing else than what the items may take is touched, and what is left of that is as it was.
    void judgeWorld() {
        Snapshot before = stage_.before();
        Snapshot after = ran_.world;
        std::erase_if(before, [&](const auto& entry) {
            return mayGo(entry.first) && !ran_.world.contains(entry.first);
        });
        // What is new in the Trash came from somewhere: `judgeOutcome`.
        std::erase_if(after, [&](const auto& entry) {
            return entry.first.starts_with("home/.Trash") && !stage_.before().contains(entry.first);
        });
        complainIf(before != after, "touched what it must not:" + differences(before, after));
        std::set<std::string> moved;
        for (const auto& item : stage_.items()) {
            for (const auto& path : thingsOf(item)) {
                if (item.action.kind == Kind::trash && isInTrash(path) && isGone(path))
                    moved.insert(path);
            }
        }
        const auto old = childrenOfTrash(stage_.before());
        const auto now = childrenOfTrash(ran_.world);
        const auto fresh = std::ranges::count_if(
            now, [&](const std::string& child) { return std::ranges::find(old, child) == old.end(); });
        complainIf(std::cmp_not_equal(fresh, moved.size()), "more in the Trash than was moved there");
    }

    void judgeOutcome(std::size_t index) {
        const auto& item = stage_.items()[index];
        const auto& outcome = ran_.outcomes[index];
        complainIf(outcome.path != item.path, "outcomes in another order");
        const bool moves = item.action.kind == Kind::trash;
        complainIf(outcome.freedBytes != (outcome.success && !moves ? item.bytes : 0),
                   "bytes of " + item.path);
        if (item.action.kind == Kind::emptyTrash)
            judgeEmptied(index);
        else if (isOfSimulator(index))
            judgeSimulator(index);
        else if (item.path.starts_with(stage_.home() + "/"))
            judgeRemoved(index);
        if (isConcerned(index) && outcome != without_.outcomes[index] && !outcome.success)
            judgeMessage(index);
    }

    /// Said to be done exactly when done.
    void judgeRemoved(std::size_t index) {
        const auto& item = stage_.items()[index];
        const auto& outcome = ran_.outcomes[index];
        const bool moves = item.action.kind == Kind::trash;
        const auto isDone = [&](const std::string& path) {
            return isGone(path) && (!moves || isInTrash(path));
        };
        const auto things = thingsOf(item);
        for (const auto& path : things) {
            if (!wasThere(path))
                continue;
            complainIf(moves && !isDone(path) && !isWhole(path), "moved in part: " + path);
            complainIf(path != things.front() && !isDone(things.front()) && !isWhole(path),
                       "related path taken without its item: " + path);
        }
        std::string left;
        for (std::size_t i = 1; i < things.size(); ++i) {
            if (wasThere(things[i]) && !isDone(things[i]) && !isPassedOver(index, things[i]))
                left += (left.empty() ? "" : ", ") + std::string(PathTools::lastComponent(things[i]));
        }
        if (outcome.success) {
            complainIf(!isDone(things.front()), "told as done, but not done: " + things.front());
            complainIf(!left.empty(), "told as done, but related paths are left: " + left);
        } else if (isDone(things.front()) && wasThere(things.front())) {
            complainIf(left.empty(), "told as failed, but done: " + things.front());
            complainIf(outcome.message != partly + left, "related paths told wrong: " + outcome.message);
        } else {
            complainIf(outcome.message.starts_with(partly), "the item itself is left: " + things.front());
        }
    }

    /// A related path that can't be asked whether it is there is passed over in silence. That is the first
    /// question that is put to it.
    bool isPassedOver(std::size_t index, const std::string& path) const {
        if (!isConcerned(index) || fault_.call.function != "lstat" || fault_.error == EINTR || !isWhole(path))
            return false;
        const auto first = std::ranges::find_if(without_.calls, [&](const Call& call) {
            return call.stage == fault_.call.stage && call.function == "lstat" &&
                   call.target == stage_.home() + path.substr(std::string_view("home").size());
        });
        return first != without_.calls.end() && *first == fault_.call;
    }

    void judgeEmptied(std::size_t index) {
        const auto& outcome = ran_.outcomes[index];
        const auto children = thingsOf(stage_.items()[index]);
        const auto left =
            std::ranges::count_if(children, [&](const std::string& child) { return !isGone(child); });
        // A Trash that can't be listed counts as empty.
        const bool unlisted = isConcerned(index) && std::ranges::all_of(children, [&](const auto& child) {
                                  return isWhole(child);
                              });
        if (outcome.success)
            complainIf(left > 0 && !unlisted, "the Trash is told to be empty and is not");
        else
            complainIf(outcome.message !=
                           std::to_string(left) + " item tidak bisa dihapus (butuh Full Disk Access?)",
                       std::to_string(left) + " are left: " + outcome.message);
    }

    void judgeSimulator(std::size_t index) {
        const auto& item = stage_.items()[index];
        const auto& outcome = ran_.outcomes[index];
        const std::string verb = item.action.kind == Kind::simulatorErase    ? "simctl erase "
                                 : item.action.kind == Kind::simulatorDelete ? "simctl delete "
                                                                             : "simctl runtime delete ";
        const bool done = std::ranges::count(ran_.simulatorCalls, verb + item.action.payload) == 1;
        complainIf(outcome.success && !done, "told as done, but the tool was not called");
        // How a tool ended can't be learned, then.
        const bool unheard = fault_.call.function == "read" || fault_.call.function == "waitpid";
        complainIf(!outcome.success && done && !unheard, "told as failed, but done: " + outcome.message);
    }

    void judgeMessage(std::size_t index) {
        const auto& item = stage_.items()[index];
        const auto& message = ran_.outcomes[index].message;
        if (item.action.kind == Kind::emptyTrash || message.starts_with(partly))
            return; // has been judged
        if (isOfSimulator(index)) {
            complainIf(message.empty(), "no message");
            return;
        }
        const auto reason = std::ranges::find(reasons, fault_.error, &std::pair<int, const char*>::first);
        const auto shortPath = "~" + item.path.substr(stage_.home().size());
        const auto& call = fault_.call;
        std::set<std::string> right;
        if (fault_.error == EACCES || fault_.error == EPERM)
            right = {item.path.ends_with(".app")
                         ? "Butuh izin admin. Hapus lewat Finder (seret ke Tong Sampah) atau Launchpad."
                         : "Tidak ada izin. Aktifkan Full Disk Access untuk Korvanti."};
        else if (message.starts_with("Gagal pada " + item.path))
            right = {message.substr(0, message.rfind(": ") + 2) +
                     (reason == std::end(reasons) ? "?" : reason->second)};
        // The guard sees what it can't ask as missing.
        if (call.function == "lstat")
            right = {"Sudah tidak ada: " + shortPath};
        if (fault_.error == ENOENT)
            right.insert("Sudah tidak ada: " + shortPath);
        // What is said to be gone and is there.
        if (fault_.error == ENOENT && message.ends_with(": ada isi baru selagi dihapus"))
            right.insert(message);
        // One that is refused anyway may be told by what the system said first.
        if (!without_.outcomes[index].success && message.starts_with("Gagal pada " + item.path))
            right.insert(message);
        // Without the table of mounts nothing is safe to go.
        if (call.target == "/proc/self/mountinfo" || call.target.ends_with("/mountinfo"))
            right = {"Gagal pada " + item.path + ": kesalahan baca/tulis pada disk"};
        complainIf(!right.contains(message), "message: " + message);
    }

    /// The lines tell exactly the outcomes, but for the one of the item during which the log itself failed.
    void judgeLog() {
        auto expected = ran_.outcomes;
        const bool ofTheLog = fault_.call.target == stage_.logPath();
        if (ofTheLog && ran_.log != expected) {
            const auto lost = expected.begin() + (fault_.call.stage - 1);
            // A line that is cut short takes the next one with it.
            const bool torn = fault_.error == half && fault_.call.function == "write";
            expected.erase(lost, lost + (torn && std::cmp_less(fault_.call.stage, expected.size()) ? 2 : 1));
            complainIf(ran_.tornLines != (torn ? 1 : 0), "torn lines in the log");
        } else {
            complainIf(ran_.tornLines != 0, "torn lines in the log");
        }
        complainIf(ran_.log != expected, "the log tells something else");
    }

    void judgeUnchanged() {
        for (std::size_t index = 0; index < ran_.outcomes.size(); ++index)
            complainIf(ran_.outcomes[index] != without_.outcomes[index],
                       "ended otherwise: " + ran_.outcomes[index].message);
        complainIf(ran_.world != without_.world,
                   "not the same is left:" + differences(without_.world, ran_.world));
        complainIf(fault_.error == EINTR && ran_.log != without_.log, "not the same log");
    }

    const Stage& stage_;
    const Traces& without_;
    const Fault& fault_;
    const Traces& ran_;
    std::vector<std::string> complaints_;
};

/// How many runs of each function ended how, over all tests of this process.
class Table : public ::testing::Environment {
public:
    static Table& shared() {
        static auto* const table = new Table; // given to the test framework, which deletes it
        return *table;
    }

    void add(const std::string& scenario, const std::string& function, Ending ending) {
        const std::scoped_lock lock(mutex_);
        ++counts_[scenario][function][static_cast<std::size_t>(ending)];
    }

    void TearDown() override {
        int total = 0;
        for (const auto& [scenario, functions] : counts_) {
            std::printf("%-12s", scenario.c_str());
            for (const auto* name : endingNames)
                std::printf(" %14s", name);
            std::printf("\n");
            for (const auto& [function, endings] : functions) {
                std::printf("%-12s", function.c_str());
                for (const int count : endings) {
                    std::printf(" %14d", count);
                    total += count;
                }
                std::printf("\n");
            }
        }
        if (total > 0)
            std::printf("%d pairs of a call and an error tried\n", total);
    }

private:
    std::mutex mutex_;
    std::map<std::string, std::map<std::string, std::array<int, std::size(endingNames)>>> counts_;
};
[[maybe_unused]] const auto* const tableOfAll = ::testing::AddGlobalTestEnvironment(&Table::shared());

std::string described(const Fault& fault) {
    return fault.call.function + " " + std::to_string(fault.call.number) + " (" + fault.call.target + ") " +
           (fault.error == half ? "half" : std::generic_category().message(fault.error)) + " at item " +
           std::to_string(fault.call.stage);
}

/// How often a tool is waited for and in how many pieces it speaks differs from run to run.
bool dependsOnTime(const Call& call) {
    return call.function == "poll" || call.function == "waitpid" || call.function == "nanosleep" ||
           call.target == "pipe";
}

/// Plays a scenario once for each call and each error for which `wanted` holds, on all processors.
void playAll(const Scenario& scenario, const std::vector<int>& errors,
             const std::function<bool(const Call&)>& wanted) {
    const auto workers = std::max(1U, std::thread::hardware_concurrency());
    std::atomic<std::size_t> next = 0;
    std::mutex mutex;
    std::vector<std::string> all;
    const auto work = [&] {
        const Stage stage(scenario);
        const Traces without = stage.play(std::nullopt);
        std::vector<Fault> faults;
        for (const auto& call : without.calls) {
            for (const int error : errors) {
                if (wanted(call))
                    faults.push_back({call, error});
            }
        }
        for (std::size_t i = next++; i < faults.size(); i = next++) {
            const auto ran = stage.play(faults[i]);
            if (ran.calls.empty() && dependsOnTime(faults[i].call))
                continue;
            Judge judge(stage, without, faults[i], ran);
            const auto complaints = judge.complaints();
            if (complaints.empty())
                Table::shared().add(scenario.name, faults[i].call.function, judge.ending());
            const std::scoped_lock lock(mutex);
            for (const auto& complaint : complaints)
                all.push_back(described(faults[i]) + ": " + complaint);
        }
        if (faults.empty()) {
            const std::scoped_lock lock(mutex);
            all.emplace_back("nothing to try");
        }
    };
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < workers; ++i)
        threads.emplace_back(work);
    for (auto& thread : threads)
        thread.join();

    std::string text;
    for (std::size_t i = 0; i < std::min<std::size_t>(all.size(), 40); ++i)
        text += "\n  " + all[i];
    EXPECT_THAT(all.size(), 0U) << text;
}

class CleanerFaultTests : public ::testing::TestWithParam<Scenario> {
protected:
    void SetUp() override {
        if (aSanitizerIsInTheWay)
            GTEST_SKIP() << "a sanitizer stands in front of the same functions";
    }
};

std::string nameOf(const ::testing::TestParamInfo<Scenario>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(, CleanerFaultTests, ::testing::Values(removals(), refusals(), tools(), deepTree()),
                         nameOf);

TEST_P(CleanerFaultTests, withoutAFaultEachItemEndsAsTheScenarioSays) {
    const Stage stage(GetParam());
    const auto ran = stage.play(std::nullopt);

    std::vector<std::string> messages;
    for (const auto& outcome : ran.outcomes)
        messages.push_back(outcome.message);
    auto expected = GetParam().messages;
    for (auto& message : expected) {
        if (const auto at = message.find('@'); at != std::string::npos)
            message.replace(at, 1, stage.home());
    }
    EXPECT_EQ(messages, expected);
    EXPECT_EQ(ran.log, ran.outcomes);
    EXPECT_EQ(ran.status, 0);
    EXPECT_EQ(ran.err, "");
    for (const auto& path : GetParam().mayGo)
        EXPECT_THAT(part(ran.world, "home/" + path), IsEmpty()) << path;
}

/// The levels in the middle of a deep tree are all alike.
bool isUnlikeOthers(const Call& call) {
    int depth = 0;
    for (auto at = call.target.find("/f/"); at != std::string::npos; at = call.target.find("/f/", at + 2))
        ++depth;
    return depth < 6 || depth > 62;
}

TEST_P(CleanerFaultTests, aFailingCallConcernsItsItemAlone) {
    playAll(GetParam(), {EACCES, EPERM, EIO, EBUSY, ENOSPC, ENOENT, EROFS}, isUnlikeOthers);
}

TEST_P(CleanerFaultTests, anInterruptedCallChangesNothing) {
    // No signal interrupts these.
    const std::set<std::string> uninterruptible = {"fcntl", "pipe", "posix_spawn", "realpath"};
    playAll(GetParam(), {EINTR}, [&](const Call& call) {
        return isUnlikeOthers(call) && !uninterruptible.contains(call.function);
    });
}

TEST_P(CleanerFaultTests, aCallThatDoesHalfOfItTearsNothingButALineOfTheLog) {
    playAll(GetParam(), {half},
            [](const Call& call) { return call.function == "read" || call.function == "write"; });
}

// The other way round: not one call fails, but every one about the same path, as on a damaged disk.

TEST_P(CleanerFaultTests, aPlaceThatCanNeverBeAskedMakesNoRefusedItemGo) {
    const Stage stage(GetParam());
    const Traces without = stage.play(std::nullopt);
    std::set<std::string> targets;
    for (const auto& call : without.calls) {
        if (call.target.starts_with('/') && isUnlikeOthers(call))
            targets.insert(call.target);
    }
    // An application that can't be asked whose it is counts as the user's.
    targets.erase(stage.home() + "/Applications/System.app/Contents/Info.plist");

    for (const auto& target : targets) {
        for (const int error : {EACCES, EIO}) {
            SCOPED_TRACE(target + ": " + std::generic_category().message(error));
            const auto ran = stage.play(Fault{.call = {.target = target}, .error = error, .always = true});
            EXPECT_EQ(ran.status, 0) << ran.err;
            EXPECT_GT(ran.calls.size(), 0U);
            ASSERT_EQ(ran.outcomes.size(), without.outcomes.size());
            for (std::size_t index = 0; index < ran.outcomes.size(); ++index)
                // A related path, or a Trash, that can't be asked is passed over.
                EXPECT_TRUE(without.outcomes[index].success || !ran.outcomes[index].success ||
                            without.outcomes[index].message.starts_with(partly) ||
                            stage.items()[index].action.kind == Kind::emptyTrash)
                    << ran.outcomes[index].path;
            for (const auto& [path, contents] : stage.before()) {
                const bool mayGo = std::ranges::any_of(GetParam().mayGo, [&](const std::string& root) {
                    return PathTools::isSameOrAncestor("home/" + root, path);
                });
                const auto found = ran.world.find(path);
                EXPECT_TRUE(mayGo || (found != ran.world.end() && found->second == contents)) << path;
            }
        }
    }
}

TEST(CleanerFaultMountTests, withoutTheTableOfMountsNoFolderGoes) {
    if (aSanitizerIsInTheWay)
        GTEST_SKIP() << "a sanitizer stands in front of the same functions";
    const Stage stage(removals());
    const auto ran =
        stage.play(Fault{.call = {.target = "/proc/self/mountinfo"}, .error = EIO, .always = true});

    std::vector<bool> gone;
    for (const auto& path : stage.scenario().mayGo)
        gone.push_back(part(ran.world, "home/" + path).empty());
    // Of the Trash, the file and the link; then the two reports and the link. An application is not asked.
    EXPECT_EQ(gone, (std::vector<bool>{false, false, false, true, false, true, true, false, true, true, true,
                                       false}));
}

} // namespace
} // namespace korvanti::testing
