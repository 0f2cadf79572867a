#include "Require.h"
#include "cleaning/SafetyGuard.h"
#include "scan/ReportJson.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <variant>
#include <vector>

using namespace korvanti;

namespace fs = std::filesystem;

namespace {

using Kind = GuardError::Kind;
using Components = std::vector<std::string>;

// What must stay, written down a second time.

constexpr std::array secretEndings = {
    ".jks",
    ".keystore",
    ".p12",
    ".p8",
    ".pem",
    ".key",
    ".mobileprovision",
    ".provisionprofile",
    ".keychain",
    ".keychain-db",
    ".photoslibrary",
};

constexpr std::array keptFolders = {
    "Library",
    "Library/Caches",
    "Library/Application Support",
    "Library/Containers",
    "Library/Group Containers",
    "Library/Logs",
    "Library/Developer",
    "Library/Developer/Xcode",
    "Library/Developer/CoreSimulator",
    "Library/Developer/CoreSimulator/Devices",
    "Library/Android",
    "Library/Android/sdk",
    ".android",
    ".gradle",
    ".gradle/caches",
    ".gradle/wrapper",
    ".gradle/wrapper/dists",
    ".npm",
    ".cargo",
    ".rustup",
    ".nvm",
    ".codex",
    ".codex/sessions",
    ".gemini",
    ".config",
    ".local",
    ".cache",
    "Applications",
    "Downloads",
    "Documents",
    "Desktop",
    "Movies",
    "Music",
    "Pictures",
    "Public",
};

constexpr std::array keptTrees = {
    ".ssh",
    ".gnupg",
    ".aws",
    ".kube",
    ".docker/config.json",
    ".config/gh",
    ".netrc",
    "Library/Keychains",
    "Library/Mobile Documents",
    "Library/CloudStorage",
    "Library/Messages",
    "Library/Mail",
    "Library/Photos",
    "Library/Preferences",
    "Library/Developer/CoreDevice",
    "Library/Application Support/com.apple.TCC",
    "Library/Logs/DiagnosticReports",
    "Library/Android/sdk/platform-tools",
    "Library/Android/sdk/licenses",
    ".android/debug.keystore",
    ".android/adbkey",
    ".claude",
    "Library/Application Support/Claude",
    ".codex/auth.json",
    ".codex/config.toml",
    ".codex/worktrees",
    ".gradle/gradle.properties",
    ".gradle/init.d",
};

static_assert(secretEndings.size() == 11 && keptFolders.size() == 35 && keptTrees.size() == 28);

/// A home with all that the rules speak of, and a folder beside it that only links lead to.
class Home {
public:
    Home() {
        require(::mkdtemp(root_.data()) != nullptr);
        root_ = fs::canonical(root_);
        path_ = root_ + "/home";
        for (const auto* kept : keptFolders)
            fs::create_directories(path_ + "/" + kept + "/inside");
        for (const auto* kept : keptTrees)
            fs::create_directories(path_ + "/" + kept + "/inside");
        for (const char* folder : {"Library/Caches/a/b", "Projects/repository/.git", "Projects/worktree",
                                   "Projects/plain/\xff", ".Trash/repository/.git", ".Trash/folder",
                                   "Applications/Plain.app", "Applications/In/Deep.app"})
            fs::create_directories(path_ + "/" + folder);
        fs::create_directories(root_ + "/outside/folder/.git");
        for (const char* file :
             {"/home/loose", "/home/Projects/worktree/.git", "/home/Projects/plain/file", "/outside/file",
              "/home/Projects/plain/.env.local", "/home/Projects/plain/Signing.P12", "/home/.Trash/a.pem"})
            write(file, "text");
        writeApplication("Foreign.app", "org.example.foreign");
        writeApplication("Apple.app", "com.apple.mail");
        fs::create_directory_symlink("../outside", path_ + "/loose link");
        fs::create_directory_symlink(root_ + "/outside", path_ + "/Projects/away");
        fs::create_directory_symlink("repository", path_ + "/Projects/link");
        fs::create_symlink("nowhere", path_ + "/Projects/dangling");
        fs::create_directory_symlink("Apple.app", path_ + "/Applications/Linked.app");
    }
    Home(const Home&) = delete;
    Home& operator=(const Home&) = delete;
    ~Home() { fs::remove_all(root_); }

    [[nodiscard]] const std::string& path() const { return path_; }

private:
    void write(const std::string& file, const std::string& text) const {
        std::ofstream(root_ + file) << text;
    }

    void writeApplication(const std::string& name, const std::string& identifier) const {
        fs::create_directories(path_ + "/Applications/" + name + "/Contents");
        write("/home/Applications/" + name + "/Contents/Info.plist",
              "<plist version=\"1.0\"><dict><key>CFBundleIdentifier</key><string>" + identifier +
                  "</string></dict></plist>");
    }

    std::string root_ = (fs::temp_directory_path() / "korvanti-fuzz-XXXXXX").string();
    std::string path_;
};

const Home& home() {
    static const Home home;
    return home;
}

const SafetyGuard& guard() {
    static const SafetyGuard guard(home().path() + "/./");
    return guard;
}

// The rules, seen as the standard library sees paths.

bool isMalformed(const std::string& path) {
    const fs::path components(path);
    return path.find('/') != 0 || path.find('\0') != std::string::npos ||
           std::find(components.begin(), components.end(), "..") != components.end();
}

std::string normal(const std::string& path) {
    auto text = fs::path(path).lexically_normal().string();
    while (text.size() > 1 && text.back() == '/')
        text.pop_back();
    return text;
}

Components componentsOf(const fs::path& path) {
    Components components;
    for (const auto& component : path.relative_path())
        components.push_back(component.string());
    return components;
}

bool startsWith(const Components& all, const Components& start) {
    return all.size() >= start.size() && std::equal(start.begin(), start.end(), all.begin());
}

/// What lies behind the home, where the path lies strictly below it.
std::optional<Components> belowHome(const std::string& path) {
    static const auto homeComponents = componentsOf(home().path());
    auto components = componentsOf(path);
    if (!startsWith(components, homeComponents) || components.size() == homeComponents.size())
        return std::nullopt;
    components.erase(components.begin(), components.begin() + static_cast<long>(homeComponents.size()));
    return components;
}

std::vector<Components> allComponents(const auto& paths) {
    std::vector<Components> all;
    std::ranges::transform(paths, std::back_inserter(all), componentsOf);
    return all;
}

bool isKept(const Components& relative) {
    static const auto folders = allComponents(keptFolders);
    static const auto trees = allComponents(keptTrees);
    return relative.size() < 2 || std::ranges::find(folders, relative) != folders.end() ||
           std::ranges::any_of(trees, [&](const Components& tree) { return startsWith(relative, tree); });
}

bool isSecret(const std::string& path) {
    auto name = fs::path(path).filename().string();
    std::ranges::transform(name, name.begin(), [](unsigned char c) { return std::tolower(c); });
    return name.rfind(".env", 0) == 0 || std::ranges::any_of(secretEndings, [&](std::string_view ending) {
               return name.size() >= ending.size() &&
                      name.compare(name.size() - ending.size(), ending.size(), ending) == 0;
           });
}

bool hasOnlyAscii(const std::string& text) {
    return std::ranges::all_of(text, [](unsigned char c) { return c < 0x80; });
}

bool isApplication(const std::string& path) {
    const auto folder = fs::path(path).parent_path();
    return (folder == "/Applications" || folder == home().path() + "/Applications") && path.size() >= 4 &&
           path.compare(path.size() - 4, 4, ".app") == 0;
}

/// No other bundle of the tree, and none of this system, says that it is Apple's.
bool isApplesApplication(const std::string& path) {
    return path == home().path() + "/Applications/Apple.app" ||
           path == home().path() + "/Applications/Linked.app";
}

std::optional<struct stat> statusOf(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 ? std::optional(status) : std::nullopt;
}

bool isRepository(const std::string& path) {
    const auto status = statusOf(path);
    return status && S_ISDIR(status->st_mode) && statusOf(path + "/.git");
}

bool isUuid(const std::string& text) {
    if (text.size() != 36)
        return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool hyphen = i == 8 || i == 13 || i == 18 || i == 23;
        if (hyphen ? text[i] != '-' : !std::isxdigit(static_cast<unsigned char>(text[i])))
            return false;
    }
    return true;
}

// What each answer must mean.

void requireHarmless(const std::string& path, SafetyGuard::PathOptions options) {
    require(!isMalformed(path));
    const auto place = normal(path);
    require(!isSecret(place) && statusOf(place));
    if (options.allowApplicationBundle && isApplication(place)) {
        require(!isApplesApplication(place));
        return;
    }
    const auto relative = belowHome(place);
    require(relative && !isKept(*relative));
    require(options.allowRepository || !isRepository(place));
}

void requireTrue(const GuardError& error, const std::string& path, SafetyGuard::PathOptions options) {
    require((error.kind == Kind::invalidPath) == isMalformed(path));
    if (error.kind == Kind::invalidPath)
        return require(error.payload == path);
    const auto place = normal(path);
    const bool application = options.allowApplicationBundle && isApplication(place);
    const auto relative = belowHome(place);
    require(error.payload == place);
    switch (error.kind) {
    case Kind::outsideAllowedRoots:
        return require(!isSecret(place) && !application && !relative);
    case Kind::protectedPath: // beyond ASCII there are more capitals
        return require(isSecret(place) || !hasOnlyAscii(place) ||
                       (application ? isApplesApplication(place) : relative && isKept(*relative)));
    case Kind::missing:
        return require(!statusOf(place) && !isSecret(place) &&
                       (application || (relative && !isKept(*relative))));
    case Kind::isRepository:
        return require(!options.allowRepository && !application && isRepository(place));
    case Kind::containsMountPoint: // there is none in this home
    case Kind::invalidPath:
    case Kind::notDeletable:
    case Kind::invalidIdentifier:
        return require(false);
    }
}

/// No link leads there, but for the last component.
bool isReachedByFolders(const std::string& path) {
    std::error_code error;
    const auto folder = fs::path(path).parent_path();
    return fs::canonical(folder, error) == folder && !error;
}

void checkPath(const std::string& path, SafetyGuard::PathOptions options) {
    const auto verdict = guard().validate(path, options);
    if (verdict)
        requireHarmless(path, options);
    else
        requireTrue(verdict.error(), path, options);

    const auto admitted = guard().admit(path, options);
    if (admitted) {
        requireHarmless(path, options);
        const auto& entry = admitted->entry();
        const auto status = statusOf(normal(path));
        require(verdict && entry.path() == normal(path) && isReachedByFolders(entry.path()));
        require(entry.stillThere().has_value() && entry.isFolder() == S_ISDIR(status->st_mode));
        require(entry.identity().device == status->st_dev && entry.identity().inode == status->st_ino);
    } else if (const auto* refusal = std::get_if<GuardError>(&admitted.error())) {
        require(!verdict && *refusal == verdict.error());
    } else {
        require(verdict || verdict.error().kind == Kind::missing ||
                verdict.error().kind == Kind::isRepository);
        require(!isReachedByFolders(normal(path)) || !verdict);
    }
}

void checkItem(const CleanupItem& item) {
    const auto verdict = guard().validate(item);
    const auto refusal = verdict ? std::nullopt : std::optional(verdict.error());
    const auto mustBe = [&](bool accepted, Kind kind, const std::string& payload) {
        require(accepted ? !refusal : refusal == GuardError{kind, payload});
    };
    if (item.safety >= Safety::keep)
        return mustBe(false, Kind::notDeletable, item.safety == Safety::keep ? "Penting" : "Dikelola sistem");
    switch (item.action.kind) {
    case CleanupAction::Kind::simulatorErase:
    case CleanupAction::Kind::simulatorDelete:
    case CleanupAction::Kind::simulatorRuntimeDelete:
        return mustBe(isUuid(item.action.payload), Kind::invalidIdentifier, item.action.payload);
    case CleanupAction::Kind::manual:
        return mustBe(false, Kind::notDeletable, "butuh langkah manual");
    case CleanupAction::Kind::emptyTrash:
        return mustBe(item.path == home().path() + "/.Trash", Kind::invalidPath, item.path);
    case CleanupAction::Kind::delete_:
    case CleanupAction::Kind::trash: {
        const SafetyGuard::PathOptions options{.allowApplicationBundle =
                                                   item.action.kind == CleanupAction::Kind::trash};
        refusal ? requireTrue(*refusal, item.path, options) : requireHarmless(item.path, options);
    }
    }
}

/// The home, which no input can know, in the place of a "~".
std::string withHome(std::string path) {
    if (path.starts_with('~'))
        path.replace(0, 1, home().path());
    return path;
}

void checkEveryUse(const std::string& path) {
    for (const bool repository : {false, true}) {
        for (const bool application : {false, true})
            checkPath(path, {.allowRepository = repository, .allowApplicationBundle = application});
    }
    for (const auto safety : allCases<Safety>) {
        for (const auto action : allCases<CleanupAction::Kind>)
            checkItem({.path = path, .safety = safety, .action = {action, path}});
    }
}

void checkSavedItem(std::string_view text) {
    const auto json = parseJson(text);
    const auto decoded = json ? cleanupItemFromJson(*json) : std::unexpected(json.error());
    if (!decoded)
        return;
    CleanupItem item = *decoded;
    checkItem(item);
    item.path = withHome(item.path);
    checkItem(item);
    checkPath(item.path, {});
    for (const auto& related : item.relatedPaths.value_or(std::vector<std::string>()))
        checkPath(withHome(related), {});
}

} // namespace

/// What the guard lets through is harmless, and what it says of the rest is true. The input is one path, a
/// path a line ("~" for the home), names below the home, or an item of a saved report.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto text = textOf(data, size);
    checkEveryUse(std::string(text));
    checkEveryUse(home().path() + "/" + std::string(text));
    checkSavedItem(text);

    constexpr int mostLines = 64;
    std::string_view rest = text;
    for (int line = 0; line < mostLines && !rest.empty(); ++line) {
        const auto path = rest.substr(0, rest.find('\n'));
        checkEveryUse(withHome(std::string(path)));
        rest.remove_prefix(std::min(path.size() + 1, rest.size()));
    }
    return 0;
}
