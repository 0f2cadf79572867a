#include "analysis/InstalledApps.h"

#include "analysis/AppRules.h"
#include "base/PropertyList.h"
#include "base/Text.h"
#include "cleaning/SafetyGuard.h"
#include "fs/FileContents.h"
#include "fs/PathTools.h"
#include "platform/Platform.h"
#include "process/Shell.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace korvanti::InstalledApps {
namespace {

using Sizes = std::unordered_map<std::string, SizeResult>;

constexpr std::string_view systemApplications = "/System/Applications";

/// The folders of a bundle whose entries are bundles of their own.
constexpr const char* innerFolders[] = {"Contents/PlugIns", "Contents/Library/LoginItems", "Contents/Helpers",
                                        "Contents/Frameworks"};

/// What a bundle tells of itself; the empty value where it can't be read.
PropertyList infoList(const std::string& bundle) {
    return FileContents::readPropertyList(PathTools::joined(bundle, "Contents/Info.plist"))
        .value_or(PropertyList());
}

void insertIdentifier(const std::string& bundle, std::set<std::string>& identifiers) {
    if (auto identifier = infoList(bundle).text("CFBundleIdentifier"))
        identifiers.insert(*std::move(identifier));
}

/// An application while it is being looked at, with all that may be its data.
struct Candidate {
    InstalledApp app;
    std::vector<std::string> locations;
};

std::vector<std::string> removableBundles(const std::vector<std::string>& roots) {
    std::vector<std::string> bundles;
    for (const auto& root : roots) {
        if (root == systemApplications)
            continue;
        for (auto& entry : PathTools::children(root)) {
            if (PathTools::pathExtension(entry) == "app" && !PathTools::isSymlink(entry))
                bundles.push_back(std::move(entry));
        }
    }
    return bundles;
}

bool isBackgroundAgent(const PropertyList& info) {
    const auto isTrue = [&](const char* key) {
        const auto* const value = info.find(key);
        return value && value->boolean() == true;
    };
    return isTrue("LSUIElement") || isTrue("LSBackgroundOnly") || info.text("LSUIElement") == "1";
}

InstalledApp described(const std::string& bundle) {
    const auto info = infoList(bundle);
    const auto used = usage(bundle);
    InstalledApp app{.name = info.text("CFBundleDisplayName").value_or(std::string(PathTools::stem(bundle))),
                     .path = bundle,
                     .bundleID = info.text("CFBundleIdentifier"),
                     .executable = info.text("CFBundleExecutable"),
                     .version = info.text("CFBundleShortVersionString"),
                     .categoryType = info.text("LSApplicationCategoryType"),
                     .lastUsed = used.lastUsed,
                     .useCount = used.useCount,
                     .fromAppStore = PathTools::exists(PathTools::joined(bundle, "Contents/_MASReceipt")),
                     .isBackgroundAgent = isBackgroundAgent(info)};
    auto [role, reason] = classify(app.name, app.bundleID, app.categoryType);
    app.role = role;
    app.reason = std::move(reason);
    return app;
}

/// The identifiers of the applications themselves, without what is inside them.
std::set<std::string> applicationIdentifiers(const std::vector<std::string>& roots) {
    std::set<std::string> identifiers;
    for (const auto& root : roots) {
        for (const auto& entry : PathTools::children(root)) {
            if (PathTools::pathExtension(entry) == "app")
                insertIdentifier(entry, identifiers);
        }
    }
    return identifiers;
}

/// All parts of the identifier stand in the name, in a row: "group.com.contoh.a.share" names "com.contoh.a".
/// A Mac's disk makes no difference between cases, so neither does this.
bool isNamedIn(std::string_view name, std::string_view identifier) {
    const auto withDots = [](std::string_view text) { return "." + Text::lowercased(text) + "."; };
    return withDots(name).contains(withDots(identifier));
}

bool isOfTheSystem(std::string_view identifier) {
    const auto lower = Text::lowercased(identifier);
    return lower == "com.apple" || lower.starts_with("com.apple.");
}

/// What the identifiers of applications say of locations: who owns which.
class Owners {
public:
    Owners(const std::string& home, std::set<std::string> identifiers)
        : library_(PathTools::joined(home, "Library")), identifiers_(std::move(identifiers)) {}

    /// Nothing that the system or another application has the better claim to: one whose longer identifier
    /// is in the name.
    [[nodiscard]] bool mayBelongTo(const InstalledApp& app, const std::string& location) const {
        const auto name = PathTools::lastComponent(location);
        if (isNamedIn(name, "com.apple") || isPersonal(location))
            return false;
        const auto claim = [&](const std::string& identifier) {
            return identifier.contains('.') && isNamedIn(name, identifier) ? identifier.size() : 0;
        };
        const auto own = app.bundleID ? claim(*app.bundleID) : 0;
        return std::ranges::none_of(identifiers_, [&](const auto& other) { return claim(other) > own; });
    }

private:
    [[nodiscard]] bool isPersonal(const std::string& location) const {
        return std::ranges::any_of(AppRules::personalFolders, [&](std::string_view folder) {
            return Text::lowercased(location) == Text::lowercased(PathTools::joined(library_, folder));
        });
    }

    std::string library_;
    std::set<std::string> identifiers_;
};

/// The locations that could be removed along with an application. The system's own give none.
std::vector<std::string> removableLocations(const InstalledApp& app, const std::string& home,
                                            const SafetyGuard& guard, const Owners& owners) {
    if (app.bundleID && isOfTheSystem(*app.bundleID))
        return {};
    auto locations = dataLocations(app.bundleID, app.name, home);
    std::erase_if(locations, [&](const std::string& path) {
        return !owners.mayBelongTo(app, path) || !guard.validate(path, {});
    });
    return locations;
}

void addSizes(Candidate& candidate, const Sizes& sizes) {
    auto& [app, locations] = candidate;
    if (const auto bundle = sizes.find(app.path); bundle != sizes.end())
        app.bytes = bundle->second.bytes;
    for (auto& location : locations) {
        const auto size = sizes.find(location);
        if (size == sizes.end())
            continue;
        app.dataActivity = std::max(app.dataActivity, size->second.newest);
        if (size->second.bytes > 0)
            app.data.push_back({location, kindOfLocation(location), size->second.bytes});
    }
    std::ranges::stable_sort(app.data, std::ranges::greater(), &AppDataLocation::bytes);
}

bool isGroupOf(std::string_view name, const std::string& identifier) {
    return name == identifier || name.ends_with("." + identifier) ||
           name.starts_with("group." + identifier) || name.contains("." + identifier + ".");
}

/// A name may have several parts ("Vendor/Product"); what several share is not its own.
bool isOwnName(std::string_view name) {
    constexpr std::size_t shortest = 3;
    const auto vendor = Text::lowercased(name.substr(0, name.find('/')));
    return PathTools::leadsDown(name) && Text::characterCount(name) >= shortest &&
           std::ranges::find(AppRules::sharedNames, vendor) == AppRules::sharedNames.end();
}

/// What exists of the places in a library that are asked for, each once.
class LibrarySearch {
public:
    explicit LibrarySearch(const std::string& home) : library_(PathTools::joined(home, "Library")) {}

    void add(std::string_view folder, std::string_view entry) {
        auto path = PathTools::joined(PathTools::joined(library_, folder), entry);
        if (PathTools::exists(path) && std::ranges::find(found_, path) == found_.end())
            found_.push_back(std::move(path));
    }

    /// The entries of a folder of which `wanted(name)` says so.
    template <class Wanted> void addEntries(std::string_view folder, Wanted wanted) {
        for (const auto& entry : PathTools::children(PathTools::joined(library_, folder))) {
            if (const auto name = PathTools::lastComponent(entry); wanted(name))
                add(folder, name);
        }
    }

    std::vector<std::string> found() && { return std::move(found_); }

private:
    std::string library_;
    std::vector<std::string> found_;
};

} // namespace

const std::vector<std::string>& applicationRoots() {
    static const std::vector<std::string> roots = {"/Applications", "/Applications/Utilities",
                                                   PathTools::joined(Platform::homeFolder(), "Applications"),
                                                   std::string(systemApplications)};
    return roots;
}

std::set<std::string> bundleIdentifiers() {
    return bundleIdentifiers(applicationRoots());
}

std::set<std::string> bundleIdentifiers(const std::vector<std::string>& roots) {
    std::set<std::string> identifiers;
    for (const auto& root : roots) {
        for (const auto& application : PathTools::children(root)) {
            if (PathTools::pathExtension(application) != "app")
                continue;
            insertIdentifier(application, identifiers);
            for (const auto* folder : innerFolders) {
                for (const auto& bundle : PathTools::children(PathTools::joined(application, folder)))
                    insertIdentifier(bundle, identifiers);
            }
        }
    }
    return identifiers;
}

std::vector<InstalledApp> list(const std::string& home, Instant now, SizeLedger& sizes, ListOptions options) {
    return list(applicationRoots(), home, now, sizes, options);
}

std::vector<InstalledApp> list(const std::vector<std::string>& roots, const std::string& home, Instant now,
                               SizeLedger& sizes, ListOptions options) {
    const SafetyGuard guard(home);
    const Owners owners(home, applicationIdentifiers(roots));
    std::vector<Candidate> candidates;
    for (const auto& bundle : removableBundles(roots)) {
        auto app = described(bundle);
        auto locations = removableLocations(app, home, guard, owners);
        candidates.push_back({std::move(app), std::move(locations)});
    }

    std::vector<std::string> paths;
    paths.reserve(candidates.size());
    for (const auto& candidate : candidates)
        paths.push_back(candidate.app.path);
    for (const auto& candidate : candidates)
        paths.insert(paths.end(), candidate.locations.begin(), candidate.locations.end());
    const auto programs = Shell::run("/bin/ps", {"-axo", "comm="}, {.timeout = Shell::Seconds(10)});
    const auto measured =
        options.measure ? sizes.measureAll(paths, {.trackNewest = true, .concurrency = 4}) : Sizes();

    std::vector<InstalledApp> apps;
    apps.reserve(candidates.size());
    for (auto& candidate : candidates) {
        addSizes(candidate, measured);
        auto& app = apps.emplace_back(std::move(candidate.app));
        app.isRunning = isRunning(app.path, programs.out);
        auto [suggested, advice] = advise(app, now);
        app.suggested = suggested;
        app.advice = std::move(advice);
    }
    std::ranges::stable_sort(apps, std::ranges::greater(), &InstalledApp::totalBytes);
    return apps;
}

Usage usage(const std::string& bundle) {
    const auto used = Platform::applicationUsage(bundle);
    return {.lastUsed = used.lastUsed, .useCount = used.useCount};
}

bool isRunning(const std::string& bundle, std::string_view programs) {
    const auto inside = Text::repaired(bundle) + "/Contents/"; // as what tools say is
    return std::ranges::any_of(Text::pieces(programs, '\n'), [&](std::string_view line) {
        return Text::trimmed(line, " \t").starts_with(inside);
    });
}

std::vector<std::string> dataLocations(const std::optional<std::string>& bundleID, const std::string& name,
                                       const std::string& home) {
    LibrarySearch search(home);
    // The application itself says what its identifier is.
    if (bundleID && bundleID->contains('.') && PathTools::isEntryName(*bundleID)) {
        for (const auto folder : AppRules::identifierFolders)
            search.add(folder, *bundleID);
        search.add("Saved Application State", *bundleID + ".savedState");
        search.add("HTTPStorages", *bundleID + ".binarycookies");
        search.add("Cookies", *bundleID + ".binarycookies");
        search.addEntries("Containers",
                          [&](std::string_view entry) { return entry.starts_with(*bundleID + "."); });
        search.addEntries("Group Containers",
                          [&](std::string_view entry) { return isGroupOf(entry, *bundleID); });
    }
    if (const auto ownName = Text::trimmed(name, " \t"); isOwnName(ownName)) {
        for (const auto folder : AppRules::nameFolders)
            search.add(folder, ownName);
    }
    return std::move(search).found();
}

std::string kindOfLocation(const std::string& location) {
    const auto folder = PathTools::lastComponent(PathTools::parent(location));
    const auto* const kind =
        std::ranges::find(AppRules::kindsOfLocations, folder, [](const auto& pair) { return pair.first; });
    return std::string(kind == AppRules::kindsOfLocations.end() ? folder : kind->second);
}

} // namespace korvanti::InstalledApps
