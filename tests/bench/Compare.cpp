// Sets SizeCalculator beside other programs and prints what came out beside what is wanted. All programs of a
// table take turns within one run, so that whatever else the machine does hits them alike.

#include "HomeMaker.h"
#include "Machine.h"
#include "ProgramRun.h"
#include "TreeMaker.h"
#include "analysis/StorageMapper.h"
#include "fs/FileContents.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace korvanti::bench {
namespace {

namespace fs = std::filesystem;

struct Arguments {
    bool quick = false;
    int runs = 0; ///< 0: as many as the size asks for
    std::string trees = "build/bench/trees";
    std::string korvanti = KORVANTI_PROGRAM; ///< empty: not built, not measured
    std::string only;                        ///< one of the sections; empty: all
};

/// One of those who take turns.
struct Contender {
    std::string name;
    std::function<Command(const std::string& tree, int times)> command;
    bool repeats = false; ///< walks the tree as often as asked within one process
};

Contender measureTree() {
    return {"measure",
            [](const std::string& tree, int times) {
                return Command{{KORVANTI_MEASURE_TREE, tree, std::to_string(times)}, {}};
            },
            true};
}

Contender bareLoop() {
    return {"bare loop",
            [](const std::string& tree, int times) {
                return Command{{KORVANTI_BARE_LOOP, std::to_string(times), tree}, {}};
            },
            true};
}

/// A program of the system that takes the folder as its last argument; none if it is not installed.
std::optional<Contender> systemProgram(const std::string& name, const std::vector<std::string>& options) {
    std::string path = findProgram(name);
    // Homebrew renames it, since coreutils has a gdu too.
    if (name == "gdu" && !findProgram("gdu-go").empty())
        path = findProgram("gdu-go");
    if (path.empty())
        return std::nullopt;
    std::string title = name;
    for (const std::string& option : options)
        title += " " + option;
    return Contender{title, [path, options](const std::string& tree, int) {
                         std::vector<std::string> arguments{path};
                         arguments.insert(arguments.end(), options.begin(), options.end());
                         arguments.push_back(tree);
                         return Command{std::move(arguments), {}};
                     }};
}

double median(std::vector<double> values) {
    std::ranges::sort(values);
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

struct Series {
    std::string name;
    std::vector<double> milliseconds;    ///< each for one walk
    std::vector<double> cpuMilliseconds; ///< hardly changed by what else the machine does
    std::int64_t peakMemory = 0;         ///< the highest of all runs, bytes

    [[nodiscard]] double time() const { return median(milliseconds); }
};

using Preparation = std::function<bool(const Contender&)>;

/// A B C A B C …; nothing when a program could not be run.
std::optional<std::vector<Series>> takeTurns(const std::vector<Contender>& contenders,
                                             const std::string& tree, int runs, int times,
                                             const Preparation& prepare = {}) {
    std::vector<Series> all;
    for (const Contender& contender : contenders)
        all.push_back({.name = contender.name});
    for (int round = 0; round < runs; ++round) {
        for (std::size_t index = 0; index < contenders.size(); ++index) {
            const Contender& contender = contenders[index];
            if (prepare && !prepare(contender))
                return std::nullopt;
            const auto result = run(contender.command(tree, times));
            if (!result)
                return std::nullopt;
            const double walks = contender.repeats ? times : 1;
            all[index].milliseconds.push_back(result->milliseconds / walks);
            all[index].cpuMilliseconds.push_back(result->cpuMilliseconds / walks);
            all[index].peakMemory = std::max(all[index].peakMemory, result->peakMemory);
        }
    }
    return all;
}

std::string megabytes(std::int64_t bytes) {
    return fmt::format("{:.1f} MB", static_cast<double>(bytes) / 1e6);
}

/// "1234567" as "1,234,567".
std::string grouped(std::int64_t number) {
    std::string digits = std::to_string(number);
    for (auto position = static_cast<std::ptrdiff_t>(digits.size()) - 3; position > 0; position -= 3)
        digits.insert(static_cast<std::size_t>(position), ",");
    return digits;
}

void printSeries(const std::vector<Series>& all) {
    fmt::print("  {:<24}{:>12}{:>12}{:>12}{:>12}{:>14}\n", "", "median ms", "best", "worst", "CPU ms",
               "peak memory");
    for (const Series& series : all)
        fmt::print("  {:<24}{:>12.2f}{:>12.2f}{:>12.2f}{:>12.2f}{:>14}\n", series.name, series.time(),
                   std::ranges::min(series.milliseconds), std::ranges::max(series.milliseconds),
                   median(series.cpuMilliseconds), megabytes(series.peakMemory));
}

/// What was wanted and did not come out, for the last lines.
class Verdicts {
public:
    void print(const std::string& what, const std::string& found, const std::string& wanted, bool met) {
        fmt::print("  {:<48}{:>14}   wanted {:<14}{}\n", what, found, wanted, met ? "ok" : "MISSED");
        ++count_;
        if (!met)
            missed_.push_back(what);
        std::fflush(stdout);
    }
    void atLeast(const std::string& what, double factor, double wanted) {
        print(what, fmt::format("{:.2f}x", factor), fmt::format(">= {:.2f}x", wanted), factor >= wanted);
    }
    void atMost(const std::string& what, double factor, double wanted) {
        print(what, fmt::format("{:.2f}x", factor), fmt::format("<= {:.2f}x", wanted), factor <= wanted);
    }
    void disagreed() { agreed_ = false; }

    [[nodiscard]] bool summary() const {
        if (count_ > 0)
            fmt::print("\n{} of {} as wanted{}\n", count_ - missed_.size(), count_,
                       missed_.empty() ? "" : "; missed:");
        for (const std::string& what : missed_)
            fmt::print("  {}\n", what);
        if (!agreed_)
            fmt::print("The programs do NOT agree on what they measured; the times above mean nothing.\n");
        return agreed_;
    }

private:
    std::vector<std::string> missed_;
    std::size_t count_ = 0;
    bool agreed_ = true;
};

class Bench {
public:
    explicit Bench(const Arguments& arguments)
        : arguments_(arguments), trees_(fs::absolute(arguments.trees).lexically_normal().string()),
          runs_(arguments.runs > 0 ? arguments.runs : (arguments.quick ? 3 : 7)) {}

    int run() {
        std::error_code error;
        fs::create_directories(trees_, error);
        if (error) {
            fmt::print(stderr, "{}: {}\n", trees_, error.message());
            return 1;
        }
        fmt::print("{}", machineFacts(trees_));
        fmt::print("cores used   {}\n", keepToTwoCores() ? "2" : "all: this system can't be told to use two");
        fmt::print("runs         {} of each, taking turns; medians\n", runs_);

        const bool done =
            (!chosen("warm") || warm()) && (!chosen("cold") || cold()) && (!chosen("shapes") || shapes()) &&
            (!chosen("growth") || growth()) && (!chosen("start") || start()) && (!chosen("scan") || scan()) &&
            (!chosen("map") || map()) && (!chosen("removal") || removal()) && (!chosen("guard") || guard()) &&
            (!chosen("speed") || speed()) && (!chosen("window") || window());
        return done && verdicts_.summary() ? 0 : 1;
    }

private:
    [[nodiscard]] bool chosen(std::string_view section) const {
        return arguments_.only.empty() || arguments_.only == section;
    }
    [[nodiscard]] std::int64_t scaled(std::int64_t full) const { return arguments_.quick ? full / 10 : full; }
    [[nodiscard]] TreePlan realistic() const {
        return {TreeShape::realistic, scaled(1'000'000), scaled(80'000)};
    }

    std::optional<std::string> tree(const TreePlan& plan) {
        auto path = makeTree(trees_, plan);
        if (path)
            return std::move(*path);
        fmt::print(stderr, "{}\n", path.error());
        return std::nullopt;
    }

    /// Makes the tree, warms the cache, and compares the sums of all programs that tell one.
    std::optional<std::string> checkedTree(const std::string& title, const TreePlan& plan) {
        fmt::print("\n{}\n", title);
        std::fflush(stdout);
        const auto path = tree(plan);
        if (!path)
            return std::nullopt;
        const auto measured = bench::run(measureTree().command(*path, 1));
        const auto bare = bench::run(bareLoop().command(*path, 1));
        if (!measured || !bare)
            return std::nullopt;
        auto ours = numbersByName(measured->output);
        auto theirs = numbersByName(bare->output);
        const bool same = ours["bytes"] == theirs["bytes"] &&
                          ours["logicalBytes"] == theirs["logicalBytes"] && ours["files"] == plan.files &&
                          theirs["files"] == plan.files && ours["unreadable"] == 0 &&
                          theirs["unreadable"] == 0 && theirs["folders"] == plan.folders;
        fmt::print("  bytes of files: measure {}, bare loop {}; files: {}, {}   {}\n", grouped(ours["bytes"]),
                   grouped(theirs["bytes"]), grouped(ours["files"]), grouped(theirs["files"]),
                   same ? "agree" : "DISAGREE");
        const bool whole = agreesWithDu(*path, theirs["bytes"], theirs["folderBytes"]);
        if (!same || !whole)
            verdicts_.disagreed();
        std::fflush(stdout);
        return path;
    }

    /// du counts the folders' own blocks as well; the trees have no hard links, which it would count once.
    static bool agreesWithDu(const std::string& path, std::int64_t fileBytes, std::int64_t folderBytes) {
#ifdef __APPLE__
        const Command du{{"du", "-sk", path}, {}};
        constexpr std::int64_t unit = 1024;
        folderBytes = 0; // on this system the bulk listing tells no blocks of folders, and they have none
#else
        const Command du{{"du", "-s", "-B1", path}, {}};
        constexpr std::int64_t unit = 1;
#endif
        const auto result = bench::run(du);
        if (!result)
            return false;
        std::int64_t told = 0;
        std::from_chars(result->output.data(), result->output.data() + result->output.size(), told);
        told *= unit;
        const bool same = told == fileBytes + folderBytes;
        fmt::print("  with the folders' own blocks: bare loop {}, du {}   {}\n",
                   grouped(fileBytes + folderBytes), grouped(told), same ? "agree" : "DISAGREE");
        return same;
    }

    static std::string folderOf(const std::string& title, const TreePlan& plan) {
        return fmt::format("{}: {} files in {} folders", title, grouped(plan.files), grouped(plan.folders));
    }

    bool warm() {
        const TreePlan plan = realistic();
        const auto path = checkedTree(folderOf("Warm cache", plan), plan);
        if (!path)
            return false;
        struct Rival {
            std::string name;
            std::vector<std::string> options;
            double wanted;
        };
        const std::vector<Rival> rivals = {
            {"du", {"-s"}, 1.9}, {"gdu", {"-npc"}, 2.3}, {"ncdu", {"-0", "-o", "/dev/null"}, 2.0}};
        std::vector<Contender> contenders = {measureTree(), bareLoop()};
        std::vector<double> wanted;
        for (const Rival& rival : rivals) {
            if (auto contender = systemProgram(rival.name, rival.options)) {
                contenders.push_back(std::move(*contender));
                wanted.push_back(rival.wanted);
            } else {
                fmt::print("  {} is not installed\n", rival.name);
            }
        }
        const auto all = takeTurns(contenders, *path, runs_, 1);
        if (!all)
            return false;
        printSeries(*all);
        const double ours = all->front().time();
        for (std::size_t index = 2; index < all->size(); ++index)
            verdicts_.atLeast("faster than " + (*all)[index].name, (*all)[index].time() / ours,
                              wanted[index - 2]);
        verdicts_.atMost("time of the bare loop", ours / (*all)[1].time(), 1.10);
        verdictOnMemory(all->front());
        return true;
    }

    void verdictOnMemory(const Series& ours) {
        verdicts_.print("peak memory", megabytes(ours.peakMemory), "< 40 MB", ours.peakMemory < 40'000'000);
    }

    bool cold() {
        const TreePlan plan = realistic();
        if (!canDropCaches()) {
            fmt::print("\nCold cache: not measured, it takes root to empty the system's cache\n");
            return true;
        }
        const auto path = checkedTree(folderOf("Cold cache", plan), plan);
        if (!path)
            return false;
        std::vector<Contender> contenders = {measureTree(), bareLoop()};
        const auto du = systemProgram("du", {"-s"});
        if (!du)
            return false;
        contenders.push_back(*du);
        const std::string empty = trees_ + "/empty";
        std::error_code error;
        fs::create_directories(empty, error);
        // The program itself shall not be cold: it goes through an empty folder first.
        const auto prepare = [&](const Contender& contender) {
            return dropCaches() && bench::run(contender.command(empty, 1)).has_value();
        };
        const auto all = takeTurns(contenders, *path, runs_, 1, prepare);
        if (!all)
            return false;
        printSeries(*all);
        verdicts_.atLeast("cold: faster than du -s", all->back().time() / all->front().time(), 1.7);
        return true;
    }

    bool shapes() {
        struct Shape {
            std::string title;
            TreePlan plan;
            int times;
        };
        const int often = arguments_.quick ? 10 : 1;
        const std::vector<Shape> all = {
            {"One folder", {TreeShape::flat, scaled(1'000'000), 0}, often},
            {"A chain of folders", {TreeShape::chain, 2'000, 1'000}, 100},
            {"Empty folders", {TreeShape::hollow, 0, scaled(200'000)}, 2 * often},
        };
        for (const Shape& shape : all) {
            const auto path = checkedTree(folderOf(shape.title, shape.plan), shape.plan);
            const auto series =
                path ? takeTurns({measureTree(), bareLoop()}, *path, runs_, shape.times) : std::nullopt;
            if (!series)
                return false;
            printSeries(*series);
            verdicts_.atMost(shape.title + ": time of the bare loop",
                             series->front().time() / series->back().time(), 1.15);
            if (shape.plan.shape == TreeShape::flat)
                verdictOnMemory(series->front());
        }
        return true;
    }

    bool growth() {
        fmt::print("\nGrowth, warm cache\n");
        std::string table = fmt::format("  {:>12}{:>12}{:>14}{:>14}{:>22}\n", "files", "folders",
                                        "measure ms", "ns per file", "bare, ns per file");
        const std::int64_t most = scaled(1'000'000);
        for (std::int64_t files = most / 100; files <= most; files *= 10) {
            const TreePlan plan{TreeShape::realistic, files, files * 8 / 100};
            const auto path = tree(plan);
            const int times = static_cast<int>(1'000'000 / files);
            if (!path || !bench::run(bareLoop().command(*path, 1)))
                return false;
            const auto series = takeTurns({measureTree(), bareLoop()}, *path, runs_, times);
            if (!series)
                return false;
            const auto perFile = [&](const Series& one) {
                return one.time() * 1e6 / static_cast<double>(files);
            };
            table += fmt::format("  {:>12}{:>12}{:>14.2f}{:>14.0f}{:>22.0f}\n", grouped(files),
                                 grouped(plan.folders), series->front().time(), perFile(series->front()),
                                 perFile(series->back()));
        }
        fmt::print("{}", table);
        return true;
    }

    bool start() {
        fmt::print("\nWhole program on an empty home\n");
        if (arguments_.korvanti.empty()) {
            fmt::print("  korvanti is not built here\n");
            return true;
        }
        const std::string home = trees_ + "/empty-home";
        const auto korvanti = [&](const std::string& option) {
            return Contender{"korvanti " + option, [this, option](const std::string& folder, int) {
                                 return Command{{arguments_.korvanti, option}, {"HOME=" + folder}};
                             }};
        };
        const auto emptyHome = [&](const Contender&) {
            std::error_code error;
            fs::remove_all(home, error);
            return !error && fs::create_directories(home, error);
        };
        const auto all =
            takeTurns({korvanti("--help"), korvanti("--json")}, home, std::max(runs_, 3) * 3, 1, emptyHome);
        if (!all)
            return false;
        printSeries(*all);
        const auto verdict = [this](const Series& series, double limit) {
            verdicts_.print(series.name, fmt::format("{:.1f} ms", series.time()),
                            fmt::format("< {} ms", limit), series.time() < limit);
        };
        verdict(all->front(), 25);
        verdict(all->back(), 60);
        return true;
    }

    bool scan() {
        const HomePlan plan{scaled(1'000'000), 200};
        fmt::print("\nWhole scan of a developer's home: {} files, {} repositories\n", grouped(plan.files),
                   plan.repositories);
        std::fflush(stdout);
        if (arguments_.korvanti.empty()) {
            fmt::print("  korvanti is not built here\n");
            return true;
        }
        const auto home = makeHome(trees_, plan);
        if (!home) {
            fmt::print(stderr, "{}\n", home.error());
            return false;
        }
        const Contender korvanti{"korvanti --json", [&](const std::string&, int) {
                                     return Command{{arguments_.korvanti, "--json"}, {"HOME=" + home->path}};
                                 }};
        const auto over = [&](const std::string& name, std::vector<std::string> words) {
            words.insert(words.end(), home->measured.begin(), home->measured.end());
            return Contender{name, [words](const std::string&, int) { return Command{words, {}}; }};
        };
        const std::vector<Contender> contenders = {korvanti, over("bare loop", {KORVANTI_BARE_LOOP, "1"}),
                                                   over("du -s", {"du", "-s"})};
        if (!bench::run(contenders[1].command({}, 1))) // warms the cache
            return false;
        const auto all = takeTurns(contenders, {}, runs_, 1);
        if (!all)
            return false;
        printSeries(*all);
        const double ours = (*all)[0].time();
        verdicts_.atMost("scan: time of the bare loop", ours / (*all)[1].time(), 1.5);
        verdicts_.atLeast("scan: faster than du -s", (*all)[2].time() / ours, 1);
        const auto memory = (*all)[0].peakMemory;
        verdicts_.print("scan: peak memory", megabytes(memory), "< 80 MB", memory < 80'000'000);
        return visits(*home);
    }

    /// How often the scan opens each of the folders that it measures.
    bool visits(const BenchHome& home) {
#ifndef __APPLE__
        const std::string log = trees_ + "/visits";
        if (!bench::run(
                {{arguments_.korvanti, "--json"},
                 {"HOME=" + home.path, "LD_PRELOAD=" KORVANTI_FOLDER_VISITS, "KORVANTI_VISITS=" + log}}))
            return false;
        std::int64_t folders = 0;
        std::int64_t opened = 0;
        std::int64_t most = 0;
        std::string mostVisited;
        std::ifstream lines(log);
        std::int64_t count = 0;
        for (std::string path; lines >> count && std::getline(lines >> std::ws, path);) {
            const bool measured = std::ranges::any_of(
                home.measured, [&](const std::string& root) { return (path + "/").starts_with(root + "/"); });
            if (!measured)
                continue;
            ++folders;
            opened += count;
            if (count > most) {
                most = count;
                mostVisited = path;
            }
        }
        fmt::print("  measured folders {}, opened {} times: {:.3f} visits a folder; most: {} of {}\n",
                   grouped(folders), grouped(opened),
                   static_cast<double>(opened) / static_cast<double>(std::max<std::int64_t>(folders, 1)),
                   most, mostVisited);
#endif
        return true;
    }

    bool map() {
        const HomePlan plan{scaled(1'000'000), 200};
        fmt::print("\nMap of a developer's home: {} files, {} repositories\n", grouped(plan.files),
                   plan.repositories);
        std::fflush(stdout);
        if (arguments_.korvanti.empty()) {
            fmt::print("  korvanti is not built here\n");
            return true;
        }
        const auto home = makeHome(trees_, plan);
        if (!home) {
            fmt::print(stderr, "{}\n", home.error());
            return false;
        }
        // What else this machine has of the map's roots is walked by all but gdu, which takes one folder.
        const auto roots = StorageMapper::defaultRoots(home->path);
        fmt::print("  {}\n", fmt::join(roots, ", "));
        const Contender korvanti{"korvanti --map", [&](const std::string&, int) {
                                     return Command{{arguments_.korvanti, "--map"}, {"HOME=" + home->path}};
                                 }};
        const auto over = [&](const std::string& name, std::vector<std::string> words) {
            words.insert(words.end(), roots.begin(), roots.end());
            return Contender{name, [words](const std::string&, int) { return Command{words, {}}; }};
        };
        std::vector<Contender> contenders = {korvanti, over("bare loop", {KORVANTI_BARE_LOOP, "1"}),
                                             over("du -d2", {"du", "-d2"})};
        if (auto gdu = systemProgram("gdu", {"-npc"}))
            contenders.push_back(std::move(*gdu));
        else
            fmt::print("  gdu is not installed\n");
        if (!mapAgreesWithBareLoop(korvanti, home->path)) // warms the cache, too
            verdicts_.disagreed();
        const auto all = takeTurns(contenders, home->path, runs_, 1);
        if (!all)
            return false;
        printSeries(*all);
        const double ours = (*all)[0].time();
        verdicts_.atMost("map: time of the bare loop", ours / (*all)[1].time(), 1.15);
        for (std::size_t index = 2; index < all->size(); ++index)
            verdicts_.atLeast("map: faster than " + (*all)[index].name, (*all)[index].time() / ours, 1);
        const auto memory = (*all)[0].peakMemory;
        verdicts_.print("map: peak memory", megabytes(memory), "< 60 MB", memory < 60'000'000);
        return true;
    }

    /// Whether the map that the program saves holds as many bytes of the home as the bare loop counts.
    static bool mapAgreesWithBareLoop(const Contender& korvanti, const std::string& home) {
        // The second run counts the map that the first one saved, as the bare loop does.
        for (int time = 0; time < 2; ++time) {
            if (!bench::run(korvanti.command(home, 1)))
                return false;
        }
        const auto bare = bench::run(bareLoop().command(home, 1));
        const auto text = FileContents::read(home + "/Library/Application Support/Korvanti/storage-map.json");
        const auto json = parseJson(text.value_or(""));
        const auto saved = json ? storageMapFromJson(*json) : std::unexpected(json.error());
        if (!bare || !saved)
            return false;
        const auto root = std::ranges::find(saved->roots, home, &MapNode::path);
        const auto mapped = root == saved->roots.end() ? -1 : root->bytes;
        const auto counted = numbersByName(bare->output)["bytes"];
        fmt::print("  bytes of files in the home: map {}, bare loop {}   {}\n", grouped(mapped),
                   grouped(counted), mapped == counted ? "agree" : "DISAGREE");
        return mapped == counted;
    }

    bool removal() {
        const TreePlan plan{TreeShape::realistic, scaled(200'000), scaled(20'000)};
        fmt::print("\n{}\n", folderOf("Removal", plan));
        std::fflush(stdout);
        const std::string home = trees_ + "/removal";
        std::string path; // of the tree that is to go, made anew each time
        const auto freshTree = [&](const Contender&) {
            std::error_code error;
            fs::remove_all(home, error);
            fs::create_directories(home + "/trees", error);
            auto made = makeTree(home + "/trees", plan);
            path = made.value_or("");
            ::sync(); // what the last one left to be written is not for the next to wait for
            return made.has_value();
        };
        const std::vector<Contender> contenders = {
            {"remove",
             [&](const std::string&, int) {
                 return Command{{KORVANTI_REMOVE_TREE, home, path}, {}};
             }},
            {"rm -rf", [&](const std::string&, int) {
                 return Command{{"rm", "-rf", path}, {}};
             }}};
        const auto all = takeTurns(contenders, {}, runs_, 1, freshTree);
        if (!all)
            return false;
        printSeries(*all);
        verdicts_.atLeast("faster than rm -rf", all->back().time() / all->front().time(), 1);
        return true;
    }

    bool guard() {
        fmt::print("\nThe guard's verdict on 10,000 items\n");
        const auto result = bench::run({{KORVANTI_GUARD_VERDICTS, trees_ + "/guard-home"}, {}});
        if (!result)
            return false;
        auto numbers = numbersByName(result->output);
        const auto milliseconds = [&](const std::string& name) {
            return static_cast<double>(numbers[name]) / 1e3;
        };
        const double verdicts = milliseconds("microsecondsVerdicts");
        const double table = milliseconds("microsecondsMountTable");
        fmt::print("  {} accepted; {:.1f} ms, of which {:.1f} ms to read the mount table as often\n",
                   grouped(numbers["accepted"]), verdicts, table);
        verdicts_.print("guard: beside the mount table", fmt::format("{:.1f} ms", verdicts - table),
                        "< 50 ms", verdicts - table < 50);
        return true;
    }

    /// A memory file system is as fast as a device can be, so that what is left is the programs' own cost.
    bool speed() {
#ifdef __APPLE__
        fmt::print("\nSpeed of a drive: not measured, this system's dd can't pass the cache by\n");
        return true;
#else
        const std::int64_t megabytes = arguments_.quick ? 128 : 512;
        const std::string folder = fs::exists("/dev/shm") ? "/dev/shm" : trees_;
        const std::string file = folder + "/korvanti-bench-dd";
        fmt::print("\nSpeed of a drive: {} MiB in blocks of 8 MiB, past the cache and flushed, on {}\n",
                   megabytes, folder);
        const auto dd = [&](std::vector<std::string> options) -> std::optional<double> {
            std::vector<std::string> words = {"dd", "bs=8388608", "status=none"};
            words.insert(words.end(), options.begin(), options.end());
            const auto result = bench::run({words, {}});
            if (!result)
                return std::nullopt;
            return static_cast<double>(megabytes) * 1048.576 / result->milliseconds;
        };
        const auto count = "count=" + std::to_string(megabytes / 8);
        std::vector<double> writes, reads, ddWrites, ddReads;
        for (int round = 0; round < runs_; ++round) {
            const auto ours = bench::run({{KORVANTI_SPEED_ONCE, folder, std::to_string(megabytes)}, {}});
            const auto written = dd({"if=/dev/zero", "of=" + file, count, "oflag=direct", "conv=fdatasync"});
            const auto read = dd({"if=" + file, "of=/dev/null", "iflag=direct"});
            std::error_code error;
            fs::remove(file, error);
            if (!ours || !written || !read)
                return false;
            auto numbers = numbersByName(ours->output);
            writes.push_back(static_cast<double>(numbers["writeMBps"]));
            reads.push_back(static_cast<double>(numbers["readMBps"]));
            ddWrites.push_back(*written);
            ddReads.push_back(*read);
        }
        fmt::print("  {:<24}{:>14}{:>14}\n", "median MB/s", "written", "read");
        fmt::print("  {:<24}{:>14.0f}{:>14.0f}\n", "speed test", median(writes), median(reads));
        fmt::print("  {:<24}{:>14.0f}{:>14.0f}\n", "dd", median(ddWrites), median(ddReads));
        verdicts_.atLeast("speed test: writes as fast as dd", median(writes) / median(ddWrites), 0.95);
        verdicts_.atLeast("speed test: reads as fast as dd", median(reads) / median(ddReads), 0.95);
        return true;
#endif
    }

    /// The window with a saved report: from the start of the program to the picture, at rest, and with a long
    /// list. Drawn by the processor alone.
    bool window() {
#ifndef KORVANTI_LIST_SPEED
        fmt::print("\nThe window: not measured, this system has no screen for it or it was not built\n");
        return true;
#else
        if (findProgram("Xvfb").empty()) {
            fmt::print("\nThe window: not measured, Xvfb is not installed\n");
            return true;
        }
        const std::string home = trees_ + "/window-home";
        std::error_code error;
        fs::create_directories(home, error);
        const std::int64_t items = 10'000;
        fmt::print("\nThe window: a saved report, drawn by the processor, list of {} items\n",
                   grouped(items));
        std::vector<double> starts, idle, memory, resets, keystrokes, frames, late;
        for (int round = 0; round < runs_; ++round) {
            const auto started = bench::run({{KORVANTI_WINDOW_START, arguments_.korvanti, home}, {}});
            const auto listed = bench::run({{KORVANTI_LIST_SPEED, home, std::to_string(items)}, {}});
            if (!started || !listed)
                return false;
            auto numbers = numbersByName(started->output);
            numbers.merge(numbersByName(listed->output));
            const auto number = [&](const char* name) { return static_cast<double>(numbers[name]); };
            starts.push_back(number("millisecondsToPicture"));
            idle.push_back(number("idleMicroseconds") / 1000);
            memory.push_back(number("peakMemory"));
            resets.push_back(number("resetMicroseconds") / 1000);
            keystrokes.push_back(number("keystrokeMicroseconds") / 1000);
            frames.push_back(number("slowestFrameMicroseconds") / 1000);
            late.push_back(number("framesLate"));
        }
        const auto below = [&](const std::string& what, double value, double wanted) {
            verdicts_.print("window: " + what, fmt::format("{:.1f} ms", value),
                            fmt::format("< {} ms", wanted), value < wanted);
        };
        below("painted after its start", median(starts), 500);
        below("processor time of 5 s at rest", median(idle), 10);
        below("filter changed and painted", median(resets), 100);
        below("keystroke painted, the longest", median(keystrokes), 50);
        below("scrolling, the slowest frame", median(frames), 34);
        verdicts_.print("window: late frames of 150", fmt::format("{:.0f}", median(late)), "0",
                        median(late) == 0);
        fmt::print("  peak memory of the program {}\n", megabytes(static_cast<std::int64_t>(median(memory))));
        return true;
#endif
    }

    Arguments arguments_;
    std::string trees_;
    int runs_;
    Verdicts verdicts_;
};

constexpr std::string_view usage =
    "usage: korvanti_bench [--quick] [--runs N] [--trees FOLDER] [--korvanti PROGRAM]\n"
    "                      [--only warm|cold|shapes|growth|start|scan|map|removal|guard|speed|window]\n"
    "  --quick   trees of a tenth of the size, three runs\n"
    "  --trees   where the trees are kept from one run to the next (3 GB)\n";

std::optional<Arguments> parse(const std::vector<std::string>& words) {
    Arguments arguments;
    for (std::size_t index = 0; index < words.size(); ++index) {
        const std::string& word = words[index];
        if (word == "--quick") {
            arguments.quick = true;
            continue;
        }
        if (++index == words.size())
            return std::nullopt;
        const std::string& value = words[index];
        if (word == "--trees") {
            arguments.trees = value;
        } else if (word == "--korvanti") {
            arguments.korvanti = value;
        } else if (word == "--only") {
            constexpr std::string_view sections[] = {"warm", "cold",    "shapes", "growth", "start", "scan",
                                                     "map",  "removal", "guard",  "speed",  "window"};
            if (std::ranges::find(sections, value) == std::end(sections))
                return std::nullopt;
            arguments.only = value;
        } else if (word == "--runs") {
            const auto [end, error] =
                std::from_chars(value.data(), value.data() + value.size(), arguments.runs);
            if (error != std::errc{} || end != value.data() + value.size() || arguments.runs < 1)
                return std::nullopt;
        } else {
            return std::nullopt;
        }
    }
    return arguments;
}

} // namespace
} // namespace korvanti::bench

int main(int argc, char** argv) {
    using namespace korvanti::bench;
    const auto arguments = parse(std::vector<std::string>(argv + 1, argv + argc));
    if (!arguments) {
        fmt::print(stderr, "{}", usage);
        return 2;
    }
    return Bench(*arguments).run();
}
