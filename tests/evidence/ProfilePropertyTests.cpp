#include "drives/ManagedBlock.h"
#include "drives/RelocationService.h"
#include "fs/PathTools.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace korvanti {
namespace {

using namespace std::string_literals;
using ManagedBlock::Targets;
using testing::textOf;

const std::string firstMarker = "# >>> Korvanti: cache dev di SSD (dikelola otomatis, jangan diedit) >>>";
const std::string lastMarker = "# <<< Korvanti <<<";

std::uint64_t fromEnvironment(const char* name, std::uint64_t otherwise) {
    const char* text = std::getenv(name);
    return text == nullptr ? otherwise : std::strtoull(text, nullptr, 0);
}

std::uint64_t firstSeed() {
    static const std::uint64_t seed =
        fromEnvironment("KORVANTI_SEED", std::random_device()() * std::uint64_t{1'000'000});
    return seed;
}

std::string shown(const std::string& text) {
    std::string words = "\"";
    for (const char c : text) {
        char escaped[8];
        std::snprintf(escaped, sizeof escaped, "\\x%02x",
                      static_cast<unsigned>(static_cast<unsigned char>(c)));
        if (c == '\n')
            words += "\\n";
        else if (c < ' ' || c == '"' || c == '\\' || c == '\x7f')
            words += escaped;
        else
            words += c;
    }
    return words + "\"";
}

// The rules, written down a second time

/// A marker where it stands in a profile.
struct Marker {
    std::size_t position = 0;
    bool isFirst = false;
};

/// In their order. None overlaps another.
std::vector<Marker> markersIn(const std::string& profile) {
    std::vector<Marker> markers;
    for (auto at = profile.find('#'); at != std::string::npos; at = profile.find('#', at + 1)) {
        const bool isFirst = profile.compare(at, firstMarker.size(), firstMarker) == 0;
        if (isFirst || profile.compare(at, lastMarker.size(), lastMarker) == 0)
            markers.push_back({at, isFirst});
    }
    return markers;
}

bool holdsLastMarker(const std::string& text) {
    return !std::ranges::all_of(markersIn(text), &Marker::isFirst);
}

/// A first marker with a last one as its neighbour is a whole block. That nearest to the start is the one.
std::optional<std::pair<std::size_t, std::size_t>> blockIn(const std::string& profile) {
    const auto markers = markersIn(profile);
    for (std::size_t index = 1; index < markers.size(); ++index) {
        if (markers[index - 1].isFirst && !markers[index].isFirst)
            return std::pair(markers[index - 1].position, markers[index].position + lastMarker.size());
    }
    return std::nullopt;
}

std::string withoutBlock(const std::string& profile) {
    const auto block = blockIn(profile);
    if (!block)
        return profile;
    auto behind = profile.substr(block->second);
    if (!behind.empty() && behind.front() == '\n')
        behind.erase(0, 1);
    return profile.substr(0, block->first) + behind;
}

std::string parentOf(const std::string& path) {
    const auto nameEnd = path.find_last_not_of('/');
    if (nameEnd == std::string::npos)
        return path.empty() ? "" : "/";
    const auto slash = path.rfind('/', nameEnd);
    if (slash == std::string::npos)
        return "";
    const auto end = path.find_last_not_of('/', slash);
    return end == std::string::npos ? "/" : path.substr(0, end + 1);
}

std::string linesFor(const std::string& variable, const std::string& path) {
    return "if [ -d \"" + parentOf(path) + "\" ]; then\n  export " + variable + "=\"" + path + "\"\nfi\n";
}

std::string withBlock(std::string text, const Targets& targets) {
    if (targets.empty())
        return text;
    if (!text.empty() && text.back() != '\n')
        text += '\n';
    text += firstMarker + "\n";
    if (targets.contains(DevCache::gradleHome))
        text += linesFor("GRADLE_USER_HOME", targets.at(DevCache::gradleHome));
    if (targets.contains(DevCache::npmCache))
        text += linesFor("npm_config_cache", targets.at(DevCache::npmCache));
    return text + lastMarker + "\n";
}

Targets targetsIn(const std::string& profile) {
    const auto markers = markersIn(profile);
    const auto first = std::ranges::find(markers, true, &Marker::isFirst);
    const auto last = std::ranges::find(markers, false, &Marker::isFirst);
    if (first == markers.end() || last == markers.end() || last < first)
        return {};
    const auto begin = first->position + firstMarker.size();
    std::istringstream lines(profile.substr(begin, last->position - begin));
    Targets targets;
    for (std::string line; std::getline(lines, line);) {
        while (!line.empty() && (line.front() == ' ' || line.front() == '\t'))
            line.erase(0, 1);
        while (!line.empty() && (line.back() == ' ' || line.back() == '\t'))
            line.pop_back();
        for (const auto& [cache, start] : {std::pair(DevCache::gradleHome, "export GRADLE_USER_HOME=\""s),
                                           std::pair(DevCache::npmCache, "export npm_config_cache=\""s)}) {
            if (line.size() <= start.size())
                continue;
            const auto path = line.substr(start.size(), line.size() - start.size() - 1);
            if (line == start + path + "\"" && path.find('\0') == std::string::npos &&
                path.find(firstMarker) == std::string::npos)
                targets[cache] = path;
        }
    }
    return targets;
}

// Random cases

/// One use of the service.
struct Step {
    bool isApply = false;
    std::set<DevCache> caches; ///< those with a variable only
    std::string volume;
};

struct ProfileCase {
    std::uint64_t seed = 0;
    std::vector<std::string> parts; ///< of the profile as it is at first
    std::vector<Step> steps;

    [[nodiscard]] std::string profile() const {
        std::string text;
        for (const auto& part : parts)
            text += part;
        return text;
    }
};

class Maker {
public:
    explicit Maker(std::uint64_t seed) : random_(seed) {}

    std::size_t below(std::size_t limit) { return static_cast<std::size_t>(random_() % limit); }
    bool sometimes() { return below(4) == 0; }
    template <class T> T oneOf(const std::vector<T>& choices) { return choices[below(choices.size())]; }

    std::string bytes() {
        std::string text;
        for (auto count = below(12); count > 0; --count)
            text += static_cast<char>(below(256));
        return text;
    }
    std::string lineEnd() {
        return oneOf<std::string>({"\n", "\n", "\n", "\r\n", "\r", "\n\n", "", " ", "\t\n"});
    }
    std::string pieceOf(const std::string& text) {
        const auto begin = below(text.size());
        return text.substr(begin, below(text.size() - begin + 1));
    }
    /// The two halves of a marker, to stand around something else.
    std::pair<std::string, std::string> halves(const std::string& marker) {
        const auto middle = 1 + below(marker.size() - 1);
        return {marker.substr(0, middle), marker.substr(middle)};
    }
    std::string path() {
        return oneOf<std::string>({"/Volumes/Work/Korvanti Dev/gradle.noindex", "/Volumes/A", "/a",
                                   "relative", "/Volumes/\"$x\"/Korvanti Dev/n", "/Volumes/\xff\xfe/x",
                                   "/caf\xC3\xA9/b", "/Volumes/" + pieceOf(firstMarker) + "/x", "/\r/x",
                                   " / "});
    }
    std::string line() {
        return oneOf<std::string>({"", " ", "\t", "  "}) +
               oneOf<std::string>({"export GRADLE_USER_HOME=\"", "export npm_config_cache=\"",
                                   "export EDITOR=\"", "GRADLE_USER_HOME=\"",
                                   "export npm_config_cache=", ""}) +
               (sometimes() ? bytes() : path()) + oneOf<std::string>({"\"", "\"", "\" ", "\"\t", "", "\";"}) +
               lineEnd();
    }
    std::string block() {
        std::string lines;
        for (auto count = below(4); count > 0; --count)
            lines += line();
        return firstMarker + lineEnd() + lines + lastMarker + lineEnd();
    }
    std::string part() {
        switch (below(9)) {
        case 0:
            return bytes();
        case 1:
            return pieceOf(sometimes() ? lastMarker : firstMarker);
        case 2:
            return firstMarker + lineEnd();
        case 3:
            return lastMarker + lineEnd();
        case 4:
            return block();
        case 5:
            return withBlock("", {{DevCache::gradleHome, path()}});
        case 6:
            return lineEnd();
        case 7: {
            const auto [front, back] = halves(sometimes() ? firstMarker : lastMarker);
            return front + block() + back;
        }
        default:
            return line();
        }
    }
    Step step(const std::vector<std::string>& volumes) {
        Step step{.isApply = below(2) == 0, .volume = oneOf(volumes)};
        for (const auto cache : {DevCache::gradleHome, DevCache::npmCache}) {
            if (below(2) == 0)
                step.caches.insert(cache);
        }
        return step;
    }

private:
    std::mt19937_64 random_;
};

ProfileCase randomCase(std::uint64_t seed, const std::vector<std::string>& volumes) {
    Maker maker(seed);
    ProfileCase tried{.seed = seed};
    for (auto count = maker.below(7); count > 0; --count)
        tried.parts.push_back(maker.part());
    for (auto count = 1 + maker.below(5); count > 0; --count)
        tried.steps.push_back(maker.step(volumes));
    return tried;
}

std::string described(const ProfileCase& tried) {
    std::string text = "  profile:\n";
    for (const auto& part : tried.parts)
        text += "    " + shown(part) + "\n";
    for (const auto& step : tried.steps) {
        text += step.isApply ? "  apply on " + shown(step.volume) : "  revert";
        for (const auto cache : step.caches)
            text += " " + std::string(rawValue(cache));
        text += "\n";
    }
    return text;
}

/// What the block is to say after a step.
Targets after(const Step& step, Targets targets) {
    for (const auto cache : step.caches) {
        if (step.isApply)
            targets[cache] = step.volume + "/Korvanti Dev/" +
                             (cache == DevCache::gradleHome ? "gradle.noindex" : "npm-cache.noindex");
        else
            targets.erase(cache);
    }
    return targets;
}

using Coverage = std::map<std::string, long>;
using Complaints = std::vector<std::string>;

void note(const std::string& profile, Coverage& met) {
    const auto markers = markersIn(profile);
    const auto kept = withoutBlock(profile);
    const bool hasFirst = std::ranges::any_of(markers, &Marker::isFirst);
    const bool hasLast = holdsLastMarker(profile);
    const auto block = blockIn(profile);
    const auto count = [&](const char* kind, bool isMet) { met[kind] += isMet ? 1 : 0; };
    count("empty", profile.empty());
    count("no marker", markers.empty());
    count("first marker alone", hasFirst && !hasLast);
    count("last marker alone", hasLast && !hasFirst);
    count("both, but no block", hasFirst && hasLast && !block);
    count("one block", block && !blockIn(kept));
    count("another block behind", block && blockIn(kept));
    count("stray first marker in front of the block",
          block && std::ranges::any_of(
                       markers, [&](const auto& m) { return m.isFirst && m.position < block->first; }));
    count("stray last marker in front of the block",
          block && std::ranges::any_of(
                       markers, [&](const auto& m) { return !m.isFirst && m.position < block->first; }));
    count("marker joined by the removal", block && markersIn(kept).size() + 2 > markers.size());
    count("carriage return in front of a line feed", profile.find("\r\n") != std::string::npos);
    count("zero", profile.find('\0') != std::string::npos);
    count("no line feed at the end", !profile.empty() && profile.back() != '\n');
    count("targets read", !targetsIn(profile).empty());
}

/// What goes another way than the rules say, in the texts alone.
Complaints complaintsAboutTexts(const ProfileCase& tried, Coverage& met) {
    Complaints complaints;
    const auto compare = [&](const std::string& what, const std::string& seen, const std::string& expected) {
        if (seen != expected)
            complaints.push_back(what + " is " + shown(seen) + ", not " + shown(expected));
    };
    auto profile = tried.profile();
    auto kept = withoutBlock(profile);
    const bool hasOneBlock = !blockIn(kept); // with more of them each write takes the next one
    note(profile, met);

    for (const auto& step : tried.steps) {
        const auto found = ManagedBlock::targets(profile);
        if (found != targetsIn(profile))
            complaints.push_back("Read otherwise: " + shown(profile));
        const auto wanted = after(step, found);
        const auto written = ManagedBlock::rewritten(profile, wanted);
        compare("The profile", written, withBlock(withoutBlock(profile), wanted));
        if (hasOneBlock) {
            if (!wanted.empty() && !kept.empty() && kept.back() != '\n')
                kept += '\n';
            compare("What is outside the block", withoutBlock(written), kept);
            compare("The part in front of the block", written.substr(0, kept.size()), kept);
            compare("The same block again", ManagedBlock::rewritten(written, wanted), written);
            // Stray markers can hide the block from being read, or show lines of the user's as its own.
            const bool isReadable = !holdsLastMarker(kept) && targetsIn(kept + lastMarker).empty();
            if (isReadable && ManagedBlock::targets(written) != wanted)
                complaints.push_back("Not read as it was written: " + shown(written));
            compare("All taken back", ManagedBlock::rewritten(written, {}), kept);
        }
        profile = written;
    }
    return complaints;
}

/// Leaves out one after the other what the failure does not need.
template <class ComplaintsOf> ProfileCase shrunk(ProfileCase failing, const ComplaintsOf& complaintsOf) {
    const auto shrink = [&](auto part) {
        bool isSmaller = false;
        for (std::size_t index = part(failing).size(); index-- > 0;) {
            auto smaller = failing;
            part(smaller).erase(part(smaller).begin() + static_cast<std::ptrdiff_t>(index));
            if (!complaintsOf(smaller).empty()) {
                failing = std::move(smaller);
                isSmaller = true;
            }
        }
        return isSmaller;
    };
    for (bool isSmaller = true; isSmaller;) {
        isSmaller = shrink([](ProfileCase& tried) -> auto& { return tried.parts; });
        isSmaller |= shrink([](ProfileCase& tried) -> auto& { return tried.steps; });
        for (std::size_t index = 0; index < failing.parts.size(); ++index)
            isSmaller |= shrink([index](ProfileCase& tried) -> auto& { return tried.parts[index]; });
    }
    return failing;
}

/// Runs so many cases; true when none failed.
template <class ComplaintsOf>
bool runCases(std::uint64_t cases, const std::vector<std::string>& volumes,
              const ComplaintsOf& complaintsOf) {
    std::printf("First seed: %llu\n", static_cast<unsigned long long>(firstSeed()));
    const auto begin = std::chrono::steady_clock::now();
    int failures = 0;
    for (std::uint64_t index = 0; index < cases && failures < 3; ++index) {
        const auto tried = randomCase(firstSeed() + index, volumes);
        if (complaintsOf(tried).empty())
            continue;
        const auto smallest = shrunk(tried, complaintsOf);
        std::string text;
        for (const auto& line : complaintsOf(smallest))
            text += "  " + line + "\n";
        ADD_FAILURE() << "Repeat with KORVANTI_SEED=" << tried.seed
                      << " KORVANTI_CASES=1. The smallest that fails:\n"
                      << described(smallest) << text;
        ++failures;
    }
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - begin;
    std::printf("%llu cases, %.3f ms each\n", static_cast<unsigned long long>(cases),
                time.count() / static_cast<double>(std::max<std::uint64_t>(cases, 1)));
    return failures == 0;
}

TEST(ProfilePropertyTests, aBlockIsReadAndWrittenAsTheRulesSayAndTheRestStays) {
    const auto cases = fromEnvironment("KORVANTI_CASES", 50'000);
    Coverage met;
    const bool allWell = runCases(cases, {"/Volumes/Work", "/Volumes/\"$a\xff", "/Volumes/Kerja Lama", "/"},
                                  [&](const ProfileCase& tried) { return complaintsAboutTexts(tried, met); });
    for (const auto& [kind, count] : met) {
        std::printf("%8ld %s\n", count, kind.c_str());
        if (allWell && cases >= 10'000) {
            EXPECT_GT(count, 0) << kind;
        }
    }
}

/// How the profile lies in the home at first.
enum class Lie { missing, file, link, dangling };

/// A home and two volumes, on a real disk. The tool that keeps folders out of backups is no part of this
/// system, and nothing else that needs one is asked for.
class ProfileOnDisk {
public:
    ProfileOnDisk() : volumes_{temp_.folder("One"), temp_.folder("Other one")} {}

    [[nodiscard]] const std::vector<std::string>& volumes() const { return volumes_; }

    [[nodiscard]] Complaints complaintsAbout(const ProfileCase& tried) {
        Complaints complaints;
        const auto lie = static_cast<Lie>(tried.seed % 4);
        const auto text = layDown(tried, lie);
        auto expected = text;
        bool isThere = lie == Lie::file || lie == Lie::link;
        for (const auto& step : tried.steps) {
            const auto done = step.isApply
                                  ? service_.apply(step.caches, {.mountPath = step.volume, .fsType = "apfs"})
                                  : service_.revert(step.caches);
            if (!done)
                complaints.push_back("A step failed: " + description(done.error()));
            expected = withBlock(withoutBlock(expected), after(step, targetsIn(expected)));
            isThere = isThere || !expected.empty();
            if (PathTools::exists(realFile(lie)) != isThere)
                complaints.push_back(isThere ? "There is no profile" : "There is a profile");
            else if (isThere && textOf(realFile(lie)) != expected)
                complaints.push_back("The profile is " + shown(textOf(realFile(lie))) + ", not " +
                                     shown(expected));
        }
        look(lie, isThere, complaints);
        return complaints;
    }

private:
    static bool isLinked(Lie lie) { return lie == Lie::link || lie == Lie::dangling; }
    [[nodiscard]] std::string realFile(Lie lie) const {
        return temp_.path(isLinked(lie) ? "dotfiles/env" : "home/.zshenv");
    }

    /// The profile's text as it is then.
    [[nodiscard]] std::string layDown(const ProfileCase& tried, Lie lie) const {
        for (const auto* folder : {"home", "dotfiles", "One", "Other one"}) {
            std::filesystem::remove_all(temp_.path(folder));
            temp_.folder(folder);
        }
        if (isLinked(lie))
            temp_.symlink("home/.zshenv", "../dotfiles/env");
        if (lie == Lie::missing || lie == Lie::dangling)
            return "";
        const std::string relative = isLinked(lie) ? "dotfiles/env" : "home/.zshenv";
        temp_.file(relative, {.text = tried.profile()});
        temp_.setMode(relative, 0640);
        return tried.profile();
    }

    /// Nothing else is there, and what was there first is still of its kind.
    void look(Lie lie, bool isThere, Complaints& complaints) const {
        const bool homeHasIt = isLinked(lie) || isThere;
        const bool besideIt = isLinked(lie) && isThere;
        if (PathTools::children(temp_.path("home")).size() != (homeHasIt ? 1 : 0) ||
            PathTools::children(temp_.path("dotfiles")).size() != (besideIt ? 1 : 0))
            complaints.emplace_back("Something is left beside the profile");
        if (PathTools::isSymlink(temp_.path("home/.zshenv")) != isLinked(lie))
            complaints.emplace_back("A link became a file");
        struct stat status {};
        if ((lie == Lie::file || lie == Lie::link) &&
            (::stat(realFile(lie).c_str(), &status) != 0 || (status.st_mode & 0777) != 0640))
            complaints.emplace_back("The profile has another mode");
    }

    testing::TempFolder temp_;
    std::vector<std::string> volumes_;
    const RelocationService service_{temp_.path("home"), "com.example.Xcode"};
};

TEST(ProfilePropertyTests, theServiceDoesTheSameToTheFile) {
    ProfileOnDisk disk;
    EXPECT_TRUE(runCases(fromEnvironment("KORVANTI_CASES", 50'000) / 500 + 1, disk.volumes(),
                         [&](const ProfileCase& tried) { return disk.complaintsAbout(tried); }));
}

} // namespace
} // namespace korvanti
