#include "providers/ProjectArtifactCandidates.h"

#include "base/Text.h"
#include "fs/PathTools.h"
#include "process/GitOutput.h"
#include "process/Toolchain.h"
#include "providers/ArtifactRules.h"

#include <algorithm>
#include <initializer_list>
#include <iterator>
#include <set>
#include <span>
#include <string>
#include <utility>

namespace korvanti::ProjectArtifactCandidates {
namespace {

using namespace std::chrono_literals;
using Candidate = ProjectArtifactProvider::Candidate;
using Kind = ProjectArtifactProvider::Kind;

constexpr std::int64_t minBytesOfKnown = 20'000'000;
constexpr std::int64_t minBytesOfUnknown = 100'000'000;
constexpr std::string_view buildFolder = "build";
constexpr int deepestWalked = 4;

enum class Ignored { no, yes }; ///< by git

bool contains(std::span<const std::string_view> names, std::string_view name) {
    return std::ranges::find(names, name) != names.end();
}

void append(std::vector<Candidate>& all, std::vector<Candidate> more) {
    std::ranges::move(more, std::back_inserter(all));
}

const ArtifactRules::DirectoryRule* ruleFor(std::string_view name) {
    const auto& rules = ArtifactRules::directories();
    const auto rule = std::ranges::find(rules, name, &ArtifactRules::DirectoryRule::name);
    return rule == rules.end() ? nullptr : &*rule;
}

bool isKnown(std::string_view name) {
    return name == buildFolder || ruleFor(name);
}

bool hasMarker(const ArtifactRules::DirectoryRule& rule, std::string_view parent) {
    return rule.markers.empty() || std::ranges::any_of(rule.markers, [parent](std::string_view marker) {
               return PathTools::exists(PathTools::joined(parent, marker));
           });
}

bool looksLikeSource(const std::string& folder) {
    if (ProjectIndex::isProjectRoot(folder) || PathTools::exists(PathTools::joined(folder, ".git")))
        return true;
    return std::ranges::any_of(PathTools::children(folder), [](const std::string& entry) {
        const auto extension = Text::lowercased(PathTools::pathExtension(entry));
        return contains(ArtifactRules::sourceExtensions(), extension) ||
               (contains(ArtifactRules::sourceFolders(), PathTools::lastComponent(entry)) &&
                PathTools::isDirectory(entry));
    });
}

/// The folder or one directly in it is a repository of its own, of which index and git need not know.
/// Packages with a scope lie one folder deeper; repositories that build tools fetch lie deeper still.
bool isAroundRepository(const std::string& folder) {
    const auto isRepository = [](const std::string& inside) {
        return PathTools::exists(PathTools::joined(inside, ".git"));
    };
    const bool holdsPackages = PathTools::lastComponent(folder) == "node_modules";
    return isRepository(folder) ||
           std::ranges::any_of(PathTools::subfolders(folder), [&](const auto& inside) {
               const bool isScope = holdsPackages && PathTools::lastComponent(inside).starts_with('@');
               return isRepository(inside) ||
                      (isScope && std::ranges::any_of(PathTools::subfolders(inside), isRepository));
           });
}

Candidate unknown(const std::string& folder, std::string title, std::int64_t minBytes) {
    return {.url = folder,
            .title = std::move(title),
            .kind = Kind::unknownIgnored,
            .safety = Safety::review,
            .minBytes = minBytes,
            .offloadable = true};
}

Candidate buildOutput(const std::string& folder, std::string title) {
    return {.url = folder,
            .title = std::move(title),
            .kind = Kind::buildOutput,
            .safety = Safety::regenerable,
            .minBytes = minBytesOfKnown};
}

/// What a Gradle build folder holds that was made to be released, "" when nothing.
std::string releaseLabels(const std::string& folder) {
    std::string labels;
    const auto add = [&labels](bool found, const char* label) {
        if (found)
            labels += (labels.empty() ? "" : ", ") + std::string(label);
    };
    add(!PathTools::children(PathTools::joined(folder, "outputs/bundle")).empty(), "AAB rilis");
    add(std::ranges::any_of(PathTools::children(PathTools::joined(folder, "outputs/apk")),
                            [](const std::string& entry) {
                                const auto name = Text::lowercased(PathTools::lastComponent(entry));
                                return name.contains("release") || name.contains("prod");
                            }),
        "APK rilis");
    add(PathTools::exists(PathTools::joined(folder, "outputs/mapping")), "mapping R8");
    return labels;
}

Candidate gradleBuild(const std::string& folder, const std::string& place) {
    auto candidate = buildOutput(folder, "Build Gradle (" + place + ")");
    if (const auto labels = releaseLabels(folder); !labels.empty()) {
        candidate.safety = Safety::costly;
        candidate.warnings = {"Berisi " + labels +
                              ". Pastikan sudah diunggah ke Play Console sebelum menghapus."};
    }
    return candidate;
}

Candidate xcodeBuildPart(const std::string& folder, const std::string& place) {
    const std::string name(PathTools::lastComponent(folder));
    if (name.contains("DerivedData"))
        return buildOutput(folder, "DerivedData proyek (" + place + "/" + name + ")");
    if (name != "Archives")
        return unknown(folder, "Hasil kerja build/" + name, 50'000'000);
    auto archives = unknown(folder, "Arsip rilis iOS (" + name + ")", minBytesOfKnown);
    archives.warnings = {"Berisi dSYM untuk membaca crash build yang beredar. Lebih baik pindahkan ke SSD."};
    return archives;
}

/// The build folder of an Xcode project is a mixture, so each of its folders is judged by itself.
std::vector<Candidate> xcodeBuild(const std::string& folder, const std::string& place) {
    std::vector<Candidate> candidates;
    for (const auto& part : PathTools::subfolders(folder)) {
        if (!isProtected(PathTools::lastComponent(part)) && !isAroundRepository(part))
            candidates.push_back(xcodeBuildPart(part, place));
    }
    return candidates;
}

/// What a folder named "build" is, its neighbours tell.
std::vector<Candidate> buildCandidates(const std::string& folder) {
    const std::string parent(PathTools::parent(folder));
    std::set<std::string, std::less<>> neighbours;
    for (const auto& entry : PathTools::children(parent))
        neighbours.emplace(PathTools::lastComponent(entry));
    const auto hasAnyOf = [&](std::initializer_list<std::string_view> names) {
        return std::ranges::any_of(names, [&](std::string_view name) { return neighbours.contains(name); });
    };
    const bool hasXcodeProject = std::ranges::any_of(neighbours, [](const std::string& name) {
        return name.ends_with(".xcodeproj") || name.ends_with(".xcworkspace");
    });

    const auto place = PathTools::joined(PathTools::lastComponent(parent), buildFolder);
    if (hasAnyOf({"build.gradle", "build.gradle.kts"}))
        return {gradleBuild(folder, place)};
    if (hasXcodeProject || hasAnyOf({"project.yml", "Package.swift"}))
        return xcodeBuild(folder, place);
    if (hasAnyOf({"package.json", "Cargo.toml", "CMakeLists.txt"}))
        return {buildOutput(folder, "Hasil build (" + place + ")")};
    return {unknown(folder, "Folder build (" + place + ")", minBytesOfUnknown)};
}

std::vector<Candidate> classified(const std::string& folder, Ignored ignored) {
    const std::string name(PathTools::lastComponent(folder));
    if (isProtected(name))
        return {};
    if (name == buildFolder)
        return buildCandidates(folder);
    if (const auto* rule = ruleFor(name); rule && hasMarker(*rule, PathTools::parent(folder)))
        return {{.url = folder,
                 .title = std::string(rule->title),
                 .kind = rule->kind,
                 .safety = rule->safety,
                 .minBytes = minBytesOfKnown}};
    if (ignored == Ignored::no)
        return {};
    return {unknown(folder, "Folder diabaikan git: " + name, minBytesOfUnknown)};
}

class Search {
public:
    explicit Search(const ProjectIndex& projects) : projects_(projects) {
        for (const auto& repository : projects.repositories)
            composedRoots_.push_back(Text::composed(repository.root));
    }

    [[nodiscard]] std::vector<Candidate> candidates() const {
        std::vector<Candidate> all;
        for (const auto& repository : projects_.repositories)
            append(all, withActivity(repository.lastActivity, ofRepository(repository.root)));
        for (const auto& project : projects_.looseProjects)
            append(all, withActivity(newestEntry(project), walked(project, 0)));
        return all;
    }

private:
    static std::vector<Candidate> withActivity(std::optional<Instant> activity,
                                               std::vector<Candidate> candidates) {
        for (auto& candidate : candidates)
            candidate.repoActivity = activity;
        return candidates;
    }

    static std::optional<Instant> newestEntry(const std::string& project) {
        std::optional<Instant> newest; // which is before every instant
        for (const auto& entry : PathTools::children(project))
            newest = std::max(newest, PathTools::modificationDate(entry));
        return newest;
    }

    [[nodiscard]] std::vector<Candidate> ofRepository(const std::string& root) const {
        const auto result = Toolchain::git(
            {"ls-files", "--others", "--ignored", "--exclude-standard", "--directory", "-z"}, root, 120s);
        if (!result.ok())
            return {};
        std::vector<Candidate> all;
        for (const auto folder : GitOutput::folders(result.out))
            append(all, ofIgnored(PathTools::joined(root, folder)));
        return all;
    }

    [[nodiscard]] std::vector<Candidate> ofIgnored(const std::string& folder) const {
        if (holdsRepository(folder))
            return {};
        const auto name = PathTools::lastComponent(folder);
        // Somebody's project is no artifact, though there may be some in it.
        if (!isKnown(name) && !isProtected(name) && looksLikeSource(folder))
            return walked(folder, 0);
        auto own = classified(folder, Ignored::yes);
        return own.empty() || isAroundRepository(folder) ? std::vector<Candidate>() : std::move(own);
    }

    /// The folder is the root of a repository, or one lies below.
    [[nodiscard]] bool holdsRepository(const std::string& folder) const {
        // git composes the names that it prints on a Mac.
        const auto composed = Text::composed(folder);
        return std::ranges::any_of(composedRoots_, [&](const std::string& root) {
            return PathTools::isSameOrAncestor(composed, root);
        });
    }

    /// The known folders below one, which are not entered themselves.
    [[nodiscard]] std::vector<Candidate> walked(const std::string& folder, int depth) const {
        if (depth > deepestWalked)
            return {};
        std::vector<Candidate> all;
        for (const auto& subfolder : PathTools::subfolders(folder)) {
            if (isRepository(subfolder))
                continue; // git tells what is an artifact there
            const auto name = PathTools::lastComponent(subfolder);
            std::vector<Candidate> own;
            if (isKnown(name))
                own = classified(subfolder, Ignored::no);
            if (!own.empty() && (holdsRepository(subfolder) || isAroundRepository(subfolder)))
                continue;
            // A build folder is never entered: where it gives nothing, it has no folders but secrets.
            if (own.empty() && name != buildFolder && !name.starts_with('.'))
                own = walked(subfolder, depth + 1);
            append(all, std::move(own));
        }
        return all;
    }

    [[nodiscard]] bool isRepository(const std::string& folder) const {
        return std::ranges::find(projects_.repositories, folder, &Repository::root) !=
               projects_.repositories.end();
    }

    const ProjectIndex& projects_;
    std::vector<std::string> composedRoots_;
};

} // namespace

std::vector<Candidate> of(const ProjectIndex& projects) {
    return Search(projects).candidates();
}

bool isProtected(std::string_view folderName) {
    const auto name = Text::lowercased(folderName);
    return contains(ArtifactRules::protectedNames(), name) || name.starts_with(".env") ||
           std::ranges::any_of(ArtifactRules::protectedWords(),
                               [&](std::string_view word) { return name.contains(word); });
}

} // namespace korvanti::ProjectArtifactCandidates
