#include "CleaningCases.h"

#include "CleaningModel.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <random>
#include <ranges>
#include <span>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace korvanti::testing {

const std::vector<std::string> worldTops = {"Users", "Applications", "Volumes", "Library"};

namespace {

const std::string home = realHome;
const std::string trash = home + "/.Trash";

std::string parentOf(const std::string& path) {
    const auto slash = path.rfind('/');
    return slash == std::string::npos || slash == 0 ? "/" : path.substr(0, slash);
}

std::string withCapitals(std::string text) {
    std::ranges::transform(text, text.begin(), [](char character) {
        return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
    });
    return text;
}

class CaseMaker {
public:
    explicit CaseMaker(std::uint64_t seed) : random_(seed) { case_.seed = seed; }

    CleaningCase make() {
        case_.home = chance(92) ? home : one({"/Users/tester/", "/Users//tester", "/Users/./tester/."});
        case_.hasLog = chance(50);
        makeTrash();
        makeTrees();
        if (chance(25))
            makeApplications();
        if (chance(18))
            makeMounts();
        for (auto count = number(1, 5); count > 0; --count)
            case_.items.push_back(item());
        return std::move(case_);
    }

private:
    using K = Making::Kind;

    std::int64_t number(std::int64_t from, std::int64_t to) {
        return from + static_cast<std::int64_t>(random_() % static_cast<std::uint64_t>(to - from + 1));
    }
    bool chance(int percent) { return number(1, 100) <= percent; }
    template <class Range> const auto& any(const Range& range) {
        return range[static_cast<std::size_t>(number(0, static_cast<std::int64_t>(range.size()) - 1))];
    }
    std::string one(std::initializer_list<std::string_view> texts) {
        return std::string(any(std::span(texts.begin(), texts.size())));
    }
    void add(K kind, const std::string& path, const std::string& text = {}, unsigned mode = 0) {
        case_.makings.push_back({.kind = kind, .path = path, .text = text, .mode = mode});
    }

    // Names.

    std::string plainName() { return one({"a", "b", "c", "d", "cache", "x", "Projects"}); }
    std::string suffixed() {
        std::string suffix(any(model::sensitiveSuffixes));
        switch (number(0, 9)) {
        case 0:
            suffix = withCapitals(suffix);
            break;
        case 1: // KELVIN SIGN is a k to whoever compares in lower case
            if (const auto k = suffix.find('k'); k != std::string::npos)
                suffix.replace(k, 1, "\u212A");
            break;
        case 2:
            suffix += one({"x", ".", "/a", "~"});
            break;
        case 3:
            suffix.erase(0, 1);
            break;
        case 4:
            suffix.pop_back();
            break;
        default:
            break;
        }
        return one({"id", "", "a.tar", "\xff"}) + suffix;
    }
    std::string environment() {
        return one({".env", ".ENV", ".Env.local", ".env.production", ".environment", "x.env", ".en", "env",
                    "_.env", ".env\n", ".enw"});
    }
    std::string weird() {
        switch (number(0, 12)) {
        case 0:
            return std::string(static_cast<std::size_t>(number(250, 255)), 'n');
        case 1:
            return "line\nfeed";
        case 2:
            return "not\xff\xfeutf8";
        default:
            return one({"...",    "..a",    "a..",        ".a.",   "a.",     "a ",  " a",
                        "\\040",  "A",      "~",          "*",     "\u00e9", "-rf", "a\tb",
                        "\u212A", "%2e%2e", "Info.plist", "a.app", "\"q\"",  "\r",  "\x01"});
        }
    }
    std::string name() {
        const auto roll = number(1, 100);
        return roll <= 62   ? plainName()
               : roll <= 72 ? suffixed()
               : roll <= 80 ? environment()
               : roll <= 84 ? ".git"
                            : weird();
    }

    // Places.

    std::string tableEntry() {
        const auto entry = std::string(chance(50)   ? any(model::protectedRoots)
                                       : chance(95) ? any(model::protectedTrees)
                                                    : any(model::ownTrees));
        // A path with ".gradle" in it starts a program, which takes its time.
        return entry.starts_with(".gradle") && chance(50) ? tableEntry() : entry;
    }
    std::string nearTable() {
        const auto entry = tableEntry();
        switch (number(-4, 12)) {
        case -4:
        case -3:
        case -2:
        case -1:
        case 0:
        case 1:
        case 2:
            return home + "/" + entry;
        case 3:
        case 4:
            return home + "/" + entry + "/" + name();
        case 5:
            return home + "/" + entry + "/" + plainName() + "/" + name();
        case 6:
            return home + "/" + entry + one({"-old/x", "x", ".", " /a", "2/b"});
        case 7:
            return home + "/" + withCapitals(entry) + (chance(50) ? "/a" : "");
        case 8:
            return home + "/" + one({"Projects", "a", "Library", ".Trash"}) + "/" + entry +
                   (chance(50) ? "/" + plainName() : "");
        case 9:
            return parentOf(home + "/" + entry);
        case 10:
            return parentOf(home + "/" + entry) + "/" + name();
        case 11:
            return one({"/Users/other", "/Users/tester2", "/Volumes/disk/Users/tester", ""}) + "/" + entry +
                   "/a";
        default:
            return home + "/" + entry.substr(0, entry.size() - 1) + "/a";
        }
    }
    std::string base() {
        return chance(55)   ? nearTable()
               : chance(85) ? home + "/" +
                                  one({"Projects", "Projects/app", "a/b", "Library/Caches", "Library/Fonts",
                                       "Downloads", "Documents/a", ".cache/pip", ".Trash", "Applications"})
                            : one({"/Users/other", "/Users/tester2/a", "/Volumes/disk/a", "/Library/Caches",
                                   "/Applications"});
    }

    // What lies there.

    void makeTrash() {
        const auto roll = number(1, 100);
        if (roll <= 8)
            return;
        if (roll <= 12)
            return add(K::file, trash);
        if (roll <= 18)
            return add(K::link, trash, one({"/Users/other/Trash", "/Users/tester/Projects", "nowhere", "."}));
        add(K::folder, trash, {}, chance(50) ? 0700 : 0);
        if (chance(40))
            return;
        for (auto count = number(0, 4); count > 0; --count)
            makeObject(trash);
    }

    void makeTrees() {
        std::vector<std::string> bases;
        for (auto count = number(1, 3); count > 0; --count)
            bases.push_back(base());
        for (auto count = number(3, 14); count > 0; --count) {
            const auto& chosen = any(bases);
            makeObject(chance(70) || chosen == "/" ? chosen : parentOf(chosen));
        }
        if (chance(40))
            add(K::file, home + "/" + std::string(any(model::protectedTrees)) + "/held", "held");
        if (chance(30))
            add(K::file, "/Users/other/" + one({"a", "b/a", ".ssh/id"}), "of another user");
    }

    std::string pathBelow(const std::string& folder) {
        std::string path = folder;
        for (auto depth = number(1, 3); depth > 0; --depth)
            path += "/" + name();
        return path;
    }

    void makeObject(const std::string& folder) {
        const auto path = pathBelow(folder);
        const auto roll = number(1, 100);
        if (roll <= 38) {
            add(K::file, path,
                "text " + std::to_string(number(1, 3)) + std::string(chance(5) ? 9000 : 0, 'z'),
                chance(15) ? any(std::array{0600U, 0400U, 01000U, 04755U}) : 0);
        } else if (roll <= 58) {
            add(K::folder, path, {}, chance(15) ? any(std::array{0700U, 0500U, 01000U}) : 0);
        } else if (roll <= 80) {
            add(K::link, path, linkTarget(path));
        } else if (roll <= 88) {
            add(K::hardLink, path, knownPath());
        } else {
            makeRepository(path);
        }
    }

    void makeRepository(const std::string& path) {
        switch (number(0, 4)) {
        case 0:
            return add(K::file, path + "/.git", "gitdir: ../.git");
        case 1:
            return add(K::link, path + "/.git", one({"nowhere", "../a", "/Users/other"}));
        case 2:
            add(K::folder, path + "/.git");
            return add(K::file, path + "/a/.git/HEAD", "ref"); // one inside the other
        default:
            add(K::file, path + "/.git/HEAD", "ref");
            return add(K::file, path + "/source", "code");
        }
    }

    std::string linkTarget(const std::string& path) {
        switch (number(0, 9)) {
        case 0:
        case 1:
        case 2:
        case 3:
            return knownPath();
        case 4:
            return one({".", "..", "../..", "a", "../a", "../../a/b"});
        case 5:
            return path; // to itself
        case 6:
            return one({"nowhere", "/Users/nobody/x", home + "/gone/x"});
        case 7:
            return home + "/" + std::string(any(model::protectedTrees));
        case 8:
            return one({"/Users/other", "/Users", "/Volumes/disk", "/Applications"});
        default:
            return parentOf(knownPath());
        }
    }

    void makeApplications() {
        for (auto count = number(1, 3); count > 0; --count) {
            const auto folder =
                one({"/Applications", "/Applications", home + "/Applications", "/Applications/Sub"});
            const auto path =
                folder + "/" +
                one({"One.app", "Two.app", "Two.app", ".app", "X.APP", "a.pem.app", ".env.app", "a.app.app"});
            if (chance(8)) {
                add(K::link, path, chance(50) ? knownPath() : "/Applications/One.app");
                continue;
            }
            const auto list = path + "/Contents/Info.plist";
            switch (number(0, 9)) {
            case 0:
                add(K::folder, path);
                break;
            case 1:
                add(K::folder, list);
                break;
            case 2:
                add(K::link, list, "/Applications/One.app/Contents/Info.plist");
                break;
            default:
                add(K::file, list,
                    chance(40) ? model::propertyListSamples().front().text
                               : any(model::propertyListSamples()).text);
                break;
            }
            if (chance(30))
                add(K::file, path + one({"/.git/HEAD", "/Contents/.env", "/Contents/a"}), "x");
        }
    }

    void makeMounts() {
        for (auto count = number(1, 2); count > 0; --count) {
            const auto known = knownPath();
            const auto point = chance(25)   ? applicationPath() + one({"", "/Contents", "/Contents/a"})
                               : chance(40) ? known
                               : chance(70) ? known + "/" + name()
                                            : parentOf(known);
            if (chance(50)) {
                add(K::memoryMount, point);
            } else if (chance(50)) {
                add(K::bindMount, point, knownPath());
            } else {
                add(K::file, home + "/Projects/shown", "seen twice");
                add(K::bindMount, point, home + "/Projects/shown");
            }
            for (auto objects = number(0, 3); objects > 0; --objects)
                makeObject(point);
            mountPoint_ = point;
        }
    }

    /// The path of something that is made, or near one.
    std::string knownPath() { return case_.makings.empty() ? home + "/Projects/a" : any(case_.makings).path; }

    // What is to be cleaned.

    std::string throughLink() {
        std::vector<const Making*> links;
        for (const auto& making : case_.makings) {
            if (making.kind == K::link)
                links.push_back(&making);
        }
        if (links.empty())
            return knownPath() + "/" + plainName();
        const auto& link = *any(links);
        for (const auto& making : case_.makings) {
            if (making.path.starts_with(link.text + "/") && chance(60))
                return link.path + making.path.substr(link.text.size());
        }
        return link.path + "/" + plainName();
    }

    std::string hostile() {
        switch (number(0, 5)) {
        case 0:
            return one({"", "/", "//", "/.", "/..", ".", "..", "~", "~/Projects/a", "Projects/a", "./a"});
        case 1:
            return home + one({"", "/", "2", "2/a/b", "/..", "/../tester/a/b", "/./", "/.Trash"});
        case 2:
            return one({"/Users", "/Users/", "/Users/other/a", "/Volumes/disk/a", "/Applications",
                        "/Library/Caches/a", "/System/a", "/Users/other/.env", "/private/Users/tester/a/b"});
        case 3: {
            const auto known = knownPath();
            return known.substr(known.find_first_not_of('/'));
        }
        case 4: {
            std::string path = knownPath();
            for (auto count = number(2000, 2100); count > 0; --count)
                path.insert(parentOf(path).size(), "/.");
            return path;
        }
        default:
            return home + "/a/" + std::string(300, 'l');
        }
    }

    std::string mutated(std::string path) {
        const auto slash = path.rfind('/');
        if (slash == std::string::npos)
            return path;
        switch (number(0, 11)) {
        case 0:
            return path.insert(slash, "/");
        case 1:
            return path.insert(slash, "/.");
        case 2:
            return path + "/";
        case 3:
            return path + "//";
        case 4:
            return path + "/.";
        case 5:
            return path + "/..";
        case 6:
            return path.insert(slash, "/../" + plainName());
        case 7:
            return path.insert(slash, "/...");
        case 8:
            return path + std::string("\0x", static_cast<std::size_t>(number(1, 2)));
        case 9:
            return path + "/../" + plainName();
        case 10:
            return withCapitals(path);
        default:
            return "/" + path;
        }
    }

    std::string nearMount() {
        if (const auto end = mountPoint_.find(".app/"); end != std::string::npos && chance(40))
            return mountPoint_.substr(0, end + 4);
        switch (number(0, 3)) {
        case 0:
            return parentOf(mountPoint_);
        case 1:
        case 2:
            for (const auto& making : case_.makings) {
                if (making.path.starts_with(mountPoint_ + "/") && chance(50))
                    return making.path;
            }
            return mountPoint_;
        default:
            return mountPoint_;
        }
    }

    std::string itemPath() {
        const auto roll = number(1, 100);
        auto path = !mountPoint_.empty() && chance(35) ? nearMount()
                    : roll <= 40                       ? knownPath()
                    : roll <= 47                       ? parentOf(knownPath())
                    : roll <= 54                       ? knownPath() + "/" + name()
                    : roll <= 84                       ? nearTable()
                    : roll <= 94                       ? throughLink()
                                                       : hostile();
        return chance(12) ? mutated(path) : path;
    }

    std::string applicationPath() {
        for (const auto& making : case_.makings) {
            if (const auto end = making.path.rfind(".app/"); end != std::string::npos && chance(60))
                return making.path.substr(0, end + 4);
        }
        return one({"/Applications/One.app", "/Applications/Sub/Two.app", "/Applications/None.app",
                    home + "/Applications/Two.app", home + "/Applications/One.app/"});
    }

    CleanupAction action() {
        const auto roll = number(1, 100);
        if (roll <= 46)
            return CleanupAction::delete_();
        if (roll <= 86)
            return CleanupAction::trash();
        if (roll <= 96)
            return CleanupAction::emptyTrash();
        if (roll <= 98)
            return CleanupAction::manual("read");
        const auto identifier = one({"", "all", "booted", "01234567-89ab-cdef-0123-456789abcde",
                                     "0123456789ab-cdef-0123-456789abcdef0", "{01234567-89ab}", "--help"});
        return chance(50) ? CleanupAction::simulatorErase(identifier)
                          : CleanupAction::simulatorRuntimeDelete(identifier);
    }

    CleanupItem item() {
        if (!case_.items.empty() && chance(10)) {
            auto again = any(case_.items);
            if (chance(50))
                again.action = action();
            return again;
        }
        CleanupItem item;
        item.title = chance(90) ? "Item " + std::to_string(case_.items.size()) : weird();
        item.action = action();
        item.path = item.action.kind == CleanupAction::Kind::emptyTrash && chance(85) ? trash
                    : item.action.kind == CleanupAction::Kind::trash && chance(15)    ? applicationPath()
                                                                                      : itemPath();
        item.bytes = any(std::array<std::int64_t, 6>{0, 1, 4096, 123'456'789, INT64_MAX, -1});
        item.safety = chance(88)   ? any(std::array{Safety::regenerable, Safety::costly, Safety::review})
                      : chance(50) ? Safety::keep
                                   : Safety::managed;
        item.category = any(allCases<ItemCategory>);
        if (chance(40)) {
            item.relatedPaths.emplace();
            for (auto count = number(0, 3); count > 0; --count)
                item.relatedPaths->push_back(chance(10) ? item.path : itemPath());
        }
        return item;
    }

    std::mt19937_64 random_;
    CleaningCase case_;
    std::string mountPoint_; ///< the last one
};

void makeFolders(const std::string& path) {
    for (auto slash = path.find('/', 1); slash != std::string::npos; slash = path.find('/', slash + 1))
        ::mkdir(path.substr(0, slash).c_str(), 0755);
}

/// As far as the folders on the way stand, they lead into the folders of the world.
bool staysInWorld(const std::string& path) {
    for (auto folder = parentOf(path); folder != "/"; folder = parentOf(folder)) {
        char* resolved = ::realpath(folder.c_str(), nullptr);
        if (resolved == nullptr)
            continue;
        const auto inside = std::string(resolved) + "/";
        std::free(resolved);
        return std::ranges::any_of(worldTops,
                                   [&](const auto& top) { return inside.starts_with("/" + top + "/"); });
    }
    return false;
}

/// Nothing on the way is a link, a "." or a doubled slash.
bool isPlain(const std::string& path) {
    char* resolved = ::realpath(path.c_str(), nullptr);
    const bool result = resolved != nullptr && path == resolved;
    std::free(resolved);
    return result;
}

/// All mount points in the folders of the world, the latest last.
std::vector<std::string> mountPointsInWorld() {
    std::vector<std::string> points;
    std::ifstream table("/proc/self/mountinfo");
    for (std::string line; std::getline(table, line);) {
        std::string_view rest = line;
        for (int field = 0; field < 4; ++field)
            rest.remove_prefix(rest.find(' ') + 1);
        const auto escaped = rest.substr(0, rest.find(' '));
        std::string point;
        for (std::size_t index = 0; index < escaped.size(); ++index) {
            if (escaped[index] == '\\') {
                point += static_cast<char>(std::stoi(std::string(escaped.substr(index + 1, 3)), nullptr, 8));
                index += 3;
            } else {
                point += escaped[index];
            }
        }
        if (std::ranges::any_of(worldTops,
                                [&](const auto& top) { return point.starts_with("/" + top + "/"); }))
            points.push_back(point);
    }
    return points;
}

} // namespace

CleaningCase randomCase(std::uint64_t seed) {
    return CaseMaker(seed).make();
}

std::string described(const CleaningCase& tried) {
    std::string text;
    const auto line = [&](const std::string& words) { text += "  " + words + "\n"; };
    line("home " + shown(tried.home));
    for (const auto& making : tried.makings) {
        const auto path = shown(making.path);
        const auto other = shown(making.text.substr(0, 60));
        switch (making.kind) {
        case Making::Kind::folder:
            line("folder     " + path);
            break;
        case Making::Kind::file:
            line("file       " + path + "  holds \"" + other + "\"");
            break;
        case Making::Kind::link:
            line("link       " + path + " -> " + other);
            break;
        case Making::Kind::hardLink:
            line("hard link  " + path + " = " + other);
            break;
        case Making::Kind::memoryMount:
            line("tmpfs on   " + path);
            break;
        case Making::Kind::bindMount:
            line("mount on   " + path + " of " + other);
            break;
        }
    }
    for (const auto& item : tried.items) {
        line("ITEM " + std::string(item.action.verb()) + " " + item.action.payload + " \"" +
             shown(item.path) + "\", " + std::string(label(item.safety)) + ", " + std::to_string(item.bytes) +
             " bytes, title \"" + shown(item.title) + "\"");
        for (const auto& path : item.relatedPaths.value_or(std::vector<std::string>()))
            line("     related \"" + shown(path) + "\"");
    }
    return text;
}

CaseWorld::CaseWorld(const std::vector<Making>& makings) {
    if (!std::filesystem::exists("/box/calls")) {
        std::fputs("Only inside the box: start this program with tests/box/enter --root\n", stderr);
        std::abort();
    }
    for (const auto& making : makings) {
        if (staysInWorld(making.path))
            make(making);
    }
}

CaseWorld::~CaseWorld() {
    if (!clear())
        std::abort(); // the next case would start from what is left of this one
}

void CaseWorld::make(const Making& making) {
    const auto& path = making.path;
    std::error_code impossible;
    makeFolders(path);
    switch (making.kind) {
    case Making::Kind::folder:
        if (::mkdir(path.c_str(), 0755) == 0 && making.mode != 0)
            ::chmod(path.c_str(), making.mode);
        return;
    case Making::Kind::file: {
        const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
        if (file < 0)
            return;
        if (::write(file, making.text.data(), making.text.size()) < 0 ||
            (making.mode != 0 && ::fchmod(file, making.mode) != 0))
            std::abort();
        ::close(file);
        return;
    }
    case Making::Kind::link:
        return std::filesystem::create_symlink(making.text, path, impossible);
    case Making::Kind::hardLink:
        return std::filesystem::create_hard_link(making.text, path, impossible);
    case Making::Kind::memoryMount:
    case Making::Kind::bindMount:
        return mount(making);
    }
}

void CaseWorld::mount(const Making& making) {
    const bool isBind = making.kind == Making::Kind::bindMount;
    struct stat shown {};
    if (isBind && (::lstat(making.text.c_str(), &shown) != 0 || S_ISLNK(shown.st_mode)))
        return;
    if (isBind && (!isPlain(making.text) || making.text == "/")) // all would show the log that the run writes
        return;
    if (isBind && S_ISREG(shown.st_mode)) {
        make({.kind = Making::Kind::file, .path = making.path, .text = "covered"});
    } else {
        ::mkdir(making.path.c_str(), 0755);
    }
    const auto& path = making.path;
    const bool mayCarry = path.starts_with(home + "/") || path.starts_with("/Applications/");
    const bool isNearAnother = std::ranges::any_of(
        mounts_, [&](const auto& mount) { return mount.path == path || mount.path.starts_with(path + "/"); });
    if (!mayCarry || isNearAnother || !isPlain(path))
        return;
    const int covered = ::open(path.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC);
    const char* type = isBind ? nullptr : "tmpfs";
    const char* source = isBind ? making.text.c_str() : "box";
    if (::mount(source, path.c_str(), type, isBind ? MS_BIND : 0, nullptr) != 0) {
        ::close(covered);
        return;
    }
    mounts_.push_back({path, covered});
}

bool CaseWorld::unmountAll() {
    for (const auto& mount : mounts_)
        ::close(mount.covered);
    if (mounts_.empty())
        return true;
    mounts_.clear();
    auto points = mountPointsInWorld();
    for (const auto& point : std::views::reverse(points))
        ::umount2(point.c_str(), UMOUNT_NOFOLLOW);
    return mountPointsInWorld().empty();
}

bool CaseWorld::clear() {
    if (!unmountAll())
        return false;
    std::error_code error;
    const auto empty = [&](const std::string& folder, const std::string& kept) {
        for (const auto& [name, number] : listed(folder)) {
            if (name != kept && !error)
                std::filesystem::remove_all(folder + "/" + name, error);
        }
    };
    empty(home, "");
    for (const auto& top : worldTops)
        empty("/" + top, top == "Users" ? "tester" : ""); // somebody may stand in it
    return !error;
}

} // namespace korvanti::testing
