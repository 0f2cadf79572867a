#include "LivedInMac.h"

#include "base/ByteText.h"
#include "base/Instant.h"
#include "cleaning/SafetyGuard.h"
#include "fs/PathTools.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <gmock/gmock.h>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <regex>
#include <set>
#include <utility>

namespace korvanti::testing {
namespace {

using nlohmann::json;
using ::testing::AnyOf;
using ::testing::Contains;
using ::testing::Each;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;
using ::testing::UnorderedElementsAre;

/// Expects that a text is the golden file in tests/data. A difference is told as a patch, which is how the
/// golden files are renewed: read it line by line, and where it is right,
///     tests/box/enter build/debug/tests/korvanti_lived_in_mac_tests --gtest_filter='*Golden*' | patch -p1
void expectGolden(const std::string& golden, const std::string& text) {
    const TempFolder temp;
    const auto named = [&](const std::string& side) { return "--label=" + side + "/tests/data/" + golden; };
    const auto difference = runProgram({"diff", "-u", named("a"), named("b"), KORVANTI_TEST_DATA "/" + golden,
                                        temp.file("text", {.text = text})});
    if (difference.status != 0)
        ADD_FAILURE() << "not the golden one:\n" << difference.out << difference.err;
}

/// A pattern that must occur exactly once, replaced.
std::string replacedOnce(const std::string& text, const std::string& pattern,
                         const std::string& replacement) {
    const std::regex regex(pattern);
    EXPECT_EQ(std::distance(std::sregex_iterator(text.begin(), text.end(), regex), std::sregex_iterator()), 1)
        << pattern;
    return std::regex_replace(text, regex, replacement);
}

/// Every key of these scans that depends on the machine or the moment; the instants stand for their distance.
class LivedInMacTests : public LivedInMac {
protected:
    [[nodiscard]] static std::string normalizedText(std::string text) {
        text =
            replacedOnce(text, "KORVANTI · [^\n]* · pindai [0-9]+ dtk", "KORVANTI · <now> · pindai <n> dtk");
        text = replacedOnce(text, R"(Disk internal: [^\n]* kosong dari [^\n]* \(\+[^\n]* purgeable\))",
                            "Disk internal: <size> kosong dari <size> (+<size> purgeable)");
        return replacedOnce(text, "(Kesehatan SSD: [^\n]* · swap )[^\n]*", "$1<size>");
    }

    [[nodiscard]] std::string normalizedJson(std::string text) const {
        for (const std::string key :
             {"available", "availableImportant", "duration", "physicalMemory", "swapUsed", "total"})
            text = replacedOnce(text, "(\"" + key + "\" : )[0-9][0-9.e-]*", "$1<number>");
        text = replacedOnce(text, "(\"startedAt\" : )\"[^\"]*\"", "$1<now>");
        const std::regex activity("(\"lastActivity\" : )\"([^\"]*)\"");
        for (std::smatch match; std::regex_search(text, match, activity);)
            text = match.prefix().str() + match[1].str() + "<" + age(match[2]) + ">" + match.suffix().str();
        return text;
    }

    [[nodiscard]] static json items(ProgramOptions options = {}) {
        return json::parse(scan({"--json"}, std::move(options)).out).at("items");
    }

    /// No tool of the Mac has an answer from now on.
    void silenceTools() const {
        for (const auto& answer : std::filesystem::directory_iterator(mac.answers.path()))
            std::filesystem::remove(answer);
    }

private:
    [[nodiscard]] std::string age(const std::string& instant) const {
        const auto read = instantFromIso8601(instant);
        for (int days = 0; read && days < 2000; ++days) {
            if (wholeSeconds(*read) == ago(days))
                return std::to_string(days) + ".5 days ago";
        }
        ADD_FAILURE() << "no date of this Mac: " << instant;
        return instant;
    }
};

/// Its path and what else it accounts for.
std::vector<std::string> allPathsOf(const json& item) {
    std::vector<std::string> paths = {item.at("path")};
    if (item.contains("relatedPaths"))
        std::ranges::copy(item.at("relatedPaths").get<std::vector<std::string>>(), std::back_inserter(paths));
    return paths;
}

std::set<std::string> pathsOf(const json& items) {
    std::set<std::string> paths;
    for (const auto& item : items)
        paths.insert(item.at("path"));
    return paths;
}

/// What the first has and the second has not.
std::set<std::string> lost(const std::set<std::string>& first, const std::set<std::string>& second) {
    std::set<std::string> lost;
    std::ranges::set_difference(first, second, std::inserter(lost, lost.end()));
    return lost;
}

void expectEqual(const std::set<std::string>& expected, const std::set<std::string>& actual) {
    EXPECT_THAT(lost(expected, actual), IsEmpty()) << "is missing";
    EXPECT_THAT(lost(actual, expected), IsEmpty()) << "is new";
}

std::set<std::string> textsOf(const json& items) {
    std::set<std::string> texts;
    for (const auto& item : items)
        texts.insert(item.dump());
    return texts;
}

bool isOnDisk(const json& item) {
    return item.at("path").get<std::string>().starts_with('/');
}

/// The blocks of every file at or below a path, each name once.
using Blocks = std::map<std::string, std::int64_t>;
void addBlocks(Blocks& blocks, const std::string& path) {
    if (!std::filesystem::is_directory(std::filesystem::symlink_status(path))) {
        blocks[path] = blocksOf(path);
        return;
    }
    for (const auto& entry : std::filesystem::recursive_directory_iterator(path)) {
        if (!entry.is_directory() || entry.is_symlink())
            blocks[entry.path()] = blocksOf(entry.path());
    }
}

std::int64_t sumOf(const Blocks& blocks) {
    std::int64_t sum = 0;
    for (const auto& [path, bytes] : blocks)
        sum += bytes;
    return sum;
}

/// The calls that a scan makes.
constexpr std::array calls = {
    "xcode-select -p",        "xcrun simctl list devices -j", "xcrun simctl runtime list -j",
    "diskutil info -plist /", "diskutil apfs list -plist",    "tmutil listlocalsnapshots /",
    "ps -axo comm="};

/// The categories in the report's order, and the classes' labels.
constexpr std::array categories = {"xcode",   "simulators", "android", "projects", "toolchains",
                                   "aiTools", "appCaches",  "apps",    "personal", "system"};
constexpr std::array labels = {"Aman", "Aman · unduh ulang", "Periksa dulu", "Penting", "Dikelola sistem"};

std::string replaced(std::string text, const std::string& start, const std::string& with) {
    return text.starts_with(start) ? with + text.substr(start.size()) : text;
}

/// The lines of an item in the full report, made from its JSON with single blanks.
std::vector<std::string> linesFor(const json& item) {
    const auto mark = item.at("recommended").get<bool>() ? "✓ " : "";
    std::vector<std::string> lines = {mark + bytesText(item.at("bytes"), Language::english) + " " +
                                          labels.at(item.at("safety").get<std::size_t>()) + " " +
                                          item.at("title").get<std::string>(),
                                      replaced(item.at("path"), "/Users/tester/", "~/")};
    for (const std::string warning : item.at("warnings"))
        lines.push_back("⚠︎ " + warning);
    return lines;
}

std::string withSingleBlanks(const std::string& line) {
    return std::regex_replace(std::regex_replace(line, std::regex("^ +| +$"), ""), std::regex(" +"), " ");
}

/// The lines of a full report as they are without "--all".
std::vector<std::string> shortened(const std::vector<std::string>& full) {
    constexpr int most = 12;
    std::vector<std::string> lines;
    std::optional<int> items; // so far, within a section
    bool isPath = false;
    for (const auto& line : full) {
        if (line.starts_with("■ ")) {
            items = 0;
        } else if (line.empty()) {
            if (items > most)
                lines.push_back("    … " + std::to_string(*items - most) + " item lain (pakai --all)");
            items.reset();
        } else if (std::exchange(isPath, false)) {
            continue;
        } else if (items && !line.starts_with("      ⚠︎ ")) {
            ++*items;
            isPath = true;
        }
        if (!items || *items <= most)
            lines.push_back(line);
    }
    return lines;
}

// The whole report

TEST_F(LivedInMacTests, theFullReportIsTheGoldenOne) {
    expectGolden("lived-in-mac.txt", normalizedText(scan({"--report", "--all"}).out));
}

TEST_F(LivedInMacTests, theJsonIsTheGoldenOne) {
    expectGolden("lived-in-mac.json", normalizedJson(scan({"--json"}).out));
}

TEST_F(LivedInMacTests, theJsonHoldsTheItemsOfTheTextInItsOrder) {
    std::vector<std::string> expected;
    const auto all = items();
    for (const std::string category : categories) {
        for (const auto& item : all) {
            if (item.at("category") == category)
                std::ranges::copy(linesFor(item), std::back_inserter(expected));
        }
    }

    std::vector<std::string> rows;
    const auto lines = linesOf(scan({"--report", "--all"}).out);
    auto line = std::ranges::find_if(lines, [](const auto& text) { return text.starts_with("■ "); });
    for (; line != lines.end() && !line->starts_with("✓ = "); ++line) {
        if (!line->empty() && !line->starts_with("■ "))
            rows.push_back(withSingleBlanks(*line));
    }

    EXPECT_EQ(rows, expected);
}

TEST_F(LivedInMacTests, theShortReportIsTheFullOneWithoutPathsAndCutAtTwelveItems) {
    EXPECT_EQ(linesOf(normalizedText(scan({"--report"}).out)),
              shortened(linesOf(normalizedText(scan({"--report", "--all"}).out))));
}

// Nothing twice, nothing forgotten, nothing that must not be

TEST_F(LivedInMacTests, everyItemHasTheSizeOfItsFiles) {
    for (const auto& item : items()) {
        if (!isOnDisk(item))
            continue;
        Blocks blocks;
        for (const auto& path : allPathsOf(item))
            addBlocks(blocks, path);
        EXPECT_EQ(item.at("bytes"), sumOf(blocks)) << item.at("path");
    }
}

TEST_F(LivedInMacTests, noByteIsCountedTwice) {
    std::int64_t reported = 0;
    Blocks blocks;
    for (const auto& item : items()) {
        if (!isOnDisk(item))
            continue;
        reported += item.at("bytes").get<std::int64_t>();
        for (const auto& path : allPathsOf(item))
            addBlocks(blocks, path);
    }

    EXPECT_EQ(reported, sumOf(blocks));
}

TEST_F(LivedInMacTests, everySourceHasFoundSomething) {
    std::set<std::string> titles;
    for (const auto& item : items())
        titles.insert(item.at("title"));

    for (const auto* title :
         {"iPad Air (5th generation) · iOS 17.5", "Simbol debug lama iPhone14,5 iOS 16.4",
          "Distribusi gradle-7.6.3-all (tidak dipakai)", "NDK 23.1.7779620 (tidak dirujuk)",
          "Node v18.20.3 (bukan default)", "Ekstensi lama: ms-python.python 2024.8.0",
          "Riwayat sesi Codex · Maret 2024", "Dependency npm (node_modules)", "DerivedData Xcode",
          "wawancara.mov", "Insaquarium", "Sisa data com.lama.catatan",
          "Cache app: com.sindresorhus.Pasteboard", "Metal Toolchain"})
        EXPECT_THAT(titles, Contains(title));
}

TEST_F(LivedInMacTests, nothingIsListedThatIsTooSmallInUseOrNobodysBusiness) {
    for (const auto& item : items()) {
        for (const auto& path : allPathsOf(item)) {
            for (const auto& place : LivedIn::passedOver) {
                EXPECT_FALSE(PathTools::isSameOrAncestor(path, absolute(place.path)) ||
                             PathTools::isSameOrAncestor(absolute(place.path), path))
                    << path << " and " << place.path;
            }
        }
    }
}

TEST_F(LivedInMacTests, noItemReachesASecret) {
    for (const auto& item : items()) {
        for (const auto& path : allPathsOf(item)) {
            for (const auto& secret : LivedIn::secrets)
                EXPECT_FALSE(PathTools::isSameOrAncestor(path, absolute(secret)))
                    << path << " and " << secret;
        }
    }
}

TEST_F(LivedInMacTests, noSecretIsTold) {
    for (const auto& result : {scan({"--report", "--all"}), scan({"--json"})}) {
        const auto said = result.out + result.err;
        EXPECT_THAT(said, Not(HasSubstr("jangan-sampai-bocor")));
        for (const auto& secret : LivedIn::secrets)
            EXPECT_THAT(said, Not(HasSubstr(std::string(PathTools::lastComponent(secret))))) << secret;
    }
}

TEST_F(LivedInMacTests, theGuardRefusesNoChoiceButThoseOutsideItsReach) {
    std::vector<std::string> refused;
    const SafetyGuard guard(mac.home.path());
    for (const auto& item : items()) {
        const bool trash = item.at("action").contains("trash");
        if (item.at("safety") > 2 || (!trash && !item.at("action").contains("delete")))
            continue;
        for (const auto& path : allPathsOf(item)) {
            if (!guard.validate(path, {.allowApplicationBundle = trash && path == item.at("path")}))
                refused.push_back(path);
        }
    }

    EXPECT_THAT(refused, UnorderedElementsAre(mac.home.path(".konan"), mac.home.path("VirtualBox VMs"),
                                              "/Applications/Utilities/Safe Exam Browser.app"));
}

TEST_F(LivedInMacTests, aScanChangesNothingOnTheDisk) {
    const auto everything = [] {
        std::set<std::string> all;
        for (const auto* folder : {"/Users", "/Applications", "/Library", "/System", "/Volumes"})
            all.merge(picture(folder));
        return all;
    };
    const auto before = everything();

    static_cast<void>(scan({"--report", "--all"}));
    static_cast<void>(scan({"--json"}));

    expectEqual(before, everything());
}

// Tools that don't do their part

TEST_F(LivedInMacTests, withoutToolsOnlyTheirItemsAreMissing) {
    const auto whole = pathsOf(items());
    silenceTools();

    const auto rest =
        pathsOf(items({.environment = {{"GIT_CONFIG_PARAMETERS", "damaged"}}})); // git always fails with it

    EXPECT_THAT(lost(whole, rest),
                Each(AnyOf(StartsWith("apfs:"), "tmutil:localsnapshots", StartsWith("runtime:"),
                           StartsWith(assets.path() + "/"), // runtimes
                           StartsWith(mac.home.path("Library/Developer/CoreSimulator/Devices/")),
                           StartsWith(mac.home.path("Developer/")),
                           StartsWith(mac.home.path("AndroidStudioProjects/")),
                           mac.home.path("Library/Application Support/Steam/steamapps"))));
    EXPECT_THAT(lost(rest, whole),
                UnorderedElementsAre(
                    "/Applications/Steam.app", // nobody says that it runs, and it holds the games
                    assets.path("com_apple_MobileAsset_iOSSimulatorRuntime"))); // nobody tells what is inside
    EXPECT_THAT(rest, Not(Contains(AnyOf(StartsWith("apfs:"), StartsWith("tmutil:"), StartsWith("runtime:"),
                                         StartsWith(mac.home.path("Developer/"))))));
}

TEST_F(LivedInMacTests, toolsThatTalkRubbishAreAsGoodAsNone) {
    silenceTools();
    const auto expected = textsOf(items());
    for (const auto& rubbish :
         {std::string(), std::string("\0\xff\xfe{[<", 6), std::string("[[1, 2"),
          std::string(R"({"devices" : 7})"), std::string("/nowhere.app/Contents/Developer"),
          std::string(R"(<plist version="1.0"><array/></plist>)"), std::string(100'000, '{')}) {
        SCOPED_TRACE(rubbish.substr(0, 50));
        for (const auto* call : calls)
            mac.answer(call, rubbish);

        expectEqual(expected, textsOf(items()));
    }
}

TEST_F(LivedInMacTests, aToolThatHangsIsEndedAtItsLimit) {
    mac.answerWithScript("ps -axo comm=", "exec sleep 100");

    const auto report = json::parse(scan({"--json"}).out);

    EXPECT_GE(report.at("duration"), 10);
    EXPECT_LT(report.at("duration"), 40);
    EXPECT_THAT(pathsOf(report.at("items")), Contains("/Applications/Steam.app")); // nobody says that it runs
}

} // namespace
} // namespace korvanti::testing
