#include "CleaningModel.h"

#include <algorithm>
#include <ranges>

namespace korvanti::testing {
namespace model {

const std::array<std::string_view, 11> sensitiveSuffixes = {".jks",
                                                            ".keystore",
                                                            ".p12",
                                                            ".p8",
                                                            ".pem",
                                                            ".key",
                                                            ".mobileprovision",
                                                            ".provisionprofile",
                                                            ".keychain",
                                                            ".keychain-db",
                                                            ".photoslibrary"};

const std::array<std::string_view, 35> protectedRoots = {"Library",
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
                                                         "Public"};

const std::array<std::string_view, 28> protectedTrees = {".ssh",
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
                                                         ".gradle/init.d"};

const std::array<std::string_view, 1> ownTrees = {"Library/Application Support/Korvanti"};

const std::vector<PropertyListSample>& propertyListSamples() {
    static const auto samples = [] {
        const auto xml = [](const std::string& inside) {
            return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">" + inside +
                   "</plist>\n";
        };
        const auto identified = [&](const std::string& identifier) {
            return PropertyListSample{xml("<dict><key>CFBundleName</key><string>com.apple.name</string>"
                                          "<key>CFBundleIdentifier</key><string>" +
                                          identifier + "</string></dict>"),
                                      identifier};
        };
        constexpr std::string_view binary = "bplist00\321\001\002\137\020\022CFBundleIdentifier\137\020\020co"
                                            "m.apple.Binary\010\013\040\000\000"
                                            "\000\000\000\000\001\001\000\000\000\000\000\000\000\003\000\000"
                                            "\000\000\000\000\000\000\000\000\000"
                                            "\000\000\000\000\063";
        return std::vector<PropertyListSample>{
            identified("com.apple.Safari"),
            identified("com.apple."),
            {std::string(binary.data(), 86), "com.apple.Binary"},
            identified("com.apple"),
            identified("com.applesauce.App"),
            identified("com.Apple.Safari"),
            identified("org.example.com.apple.App"),
            identified(""),
            {xml("<dict><key>CFBundleIdentifier</key><integer>7</integer></dict>"), ""},
            {xml("<dict><key>CFBundleName</key><string>com.apple.Safari</string></dict>"), ""},
            {xml("<array><string>CFBundleIdentifier</string><string>com.apple.Safari</string></array>"), ""},
            {"<plist><dict><key>CFBundleIdentifier</key><string>com.apple.Safari", ""},
            {"", ""},
        };
    }();
    return samples;
}

} // namespace model

namespace {

using Kind = GuardError::Kind;

template <class Range, class Value> bool isAmong(const Range& range, const Value& value) {
    return std::ranges::find(range, value) != std::ranges::end(range);
}

std::vector<std::string> pieces(const std::string& path) {
    std::vector<std::string> names;
    for (const auto piece : std::views::split(path, '/')) {
        if (const std::string name(piece.begin(), piece.end()); !name.empty())
            names.push_back(name);
    }
    return names;
}

std::string lastPiece(const std::string& path) {
    const auto names = pieces(path);
    return !names.empty() ? names.back() : path.empty() ? "" : "/";
}

std::string folderOf(const std::string& path) {
    const auto slash = path.rfind('/');
    return slash == 0 ? "/" : path.substr(0, slash);
}

/// Enough for what the tests write: ASCII, KELVIN SIGN and the dotted capital I.
std::string lowered(const std::string& text) {
    constexpr std::string_view kelvin = "\u212A";
    constexpr std::string_view dotted = "\u0130";
    std::string result;
    for (std::size_t index = 0; index < text.size(); ++index) {
        if (text.compare(index, kelvin.size(), kelvin) == 0) {
            result += 'k';
            index += kelvin.size() - 1;
        } else if (text.compare(index, dotted.size(), dotted) == 0) {
            result += "i\u0307";
            index += dotted.size() - 1;
        } else {
            const char character = text[index];
            const bool isCapital = character >= 'A' && character <= 'Z';
            result += isCapital ? static_cast<char>(character - 'A' + 'a') : character;
        }
    }
    return result;
}

std::string_view safetyName(Safety safety) {
    return safety == Safety::keep ? "Penting" : "Dikelola sistem";
}

bool isUuid(const std::string& text) {
    constexpr std::string_view form = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";
    if (text.size() != form.size())
        return false;
    for (std::size_t index = 0; index < form.size(); ++index) {
        const bool isDigit = std::string_view("0123456789abcdefABCDEF").contains(text[index]);
        if (form[index] == '-' ? text[index] != '-' : !isDigit)
            return false;
    }
    return true;
}

std::string joinedNames(const std::vector<std::string>& names) {
    std::string text = names.front();
    for (const auto& name : names | std::views::drop(1))
        text += ", " + name;
    return text;
}

} // namespace

std::string normalised(const std::string& path) {
    std::string result;
    for (const auto& name : pieces(path)) {
        if (name != ".")
            result += "/" + name;
    }
    return result.empty() ? "/" : result;
}

CleaningModel::CleaningModel(std::string home, DiskPicture& disk, Coverage& met)
    : home_(std::move(home)), disk_(disk), met_(met) {}

std::string CleaningModel::description(const GuardError& error) const {
    std::string place = error.payload;
    if (place == home_)
        place = "~";
    else if (place.starts_with(home_ + "/"))
        place = "~" + place.substr(home_.size());
    switch (error.kind) {
    case Kind::notDeletable:
        return "Tidak boleh dihapus: " + error.payload;
    case Kind::invalidPath:
        return "Path tidak valid: " + error.payload;
    case Kind::outsideAllowedRoots:
        return "Di luar area yang boleh dibersihkan: " + place;
    case Kind::protectedPath:
        return "Dilindungi (data penting): " + place;
    case Kind::containsMountPoint:
        return "Berisi volume lain yang ter-mount (" + place +
               ") — dilewati agar isi perangkat tidak ikut terhapus";
    case Kind::isRepository:
        return "Ini repository git (kode sumber): " + place;
    case Kind::missing:
        return "Sudah tidak ada: " + place;
    case Kind::invalidIdentifier:
        return "ID tidak valid: " + error.payload;
    }
    return {};
}

Verdict CleaningModel::verdictOn(const CleanupItem& item) const {
    using Action = CleanupAction::Kind;
    if (item.safety == Safety::keep || item.safety == Safety::managed) {
        count("refused: class " + std::string(safetyName(item.safety)));
        return GuardError{Kind::notDeletable, std::string(safetyName(item.safety))};
    }
    switch (item.action.kind) {
    case Action::simulatorErase:
    case Action::simulatorDelete:
    case Action::simulatorRuntimeDelete:
        if (isUuid(item.action.payload))
            return {};
        count("refused: identifier");
        return GuardError{Kind::invalidIdentifier, item.action.payload};
    case Action::manual:
        count("refused: manual step");
        return GuardError{Kind::notDeletable, "butuh langkah manual"};
    case Action::emptyTrash:
        if (item.path == home_ + "/.Trash")
            return {};
        count("refused: another Trash");
        return GuardError{Kind::invalidPath, item.path};
    case Action::delete_:
        return verdictOn(item.path, {});
    case Action::trash:
        return verdictOn(item.path, {.allowApplicationBundle = true});
    }
    return {};
}

Verdict CleaningModel::verdictOn(const std::string& given, PathOptions options) const {
    const auto invalid = [&](const std::string& why) {
        count("refused: " + why);
        return GuardError{Kind::invalidPath, given};
    };
    if (!given.starts_with('/'))
        return invalid("no slash in front");
    if (given.contains("/../"))
        return invalid("parent folder inside");
    if (given.ends_with("/.."))
        return invalid("parent folder at the end");
    if (given.contains('\0'))
        return invalid("NUL");

    const auto path = normalised(given);
    if (path != given)
        count("text: not normalised");
    const auto refused = [&](Kind kind, const std::string& why) {
        count("refused: " + why);
        return GuardError{kind, path};
    };

    const auto name = lowered(lastPiece(path));
    if (name.starts_with(".env"))
        return refused(Kind::protectedPath, "environment file");
    for (const auto suffix : model::sensitiveSuffixes) {
        if (name.ends_with(suffix))
            return refused(Kind::protectedPath, "suffix " + std::string(suffix));
    }

    if (options.allowApplicationBundle) {
        const auto verdict = applicationVerdict(path);
        if (verdict.refusal)
            return verdict.refusal;
        if (verdict.answer == ApplicationAnswer::accepted) {
            count("accepted: application");
            return {};
        }
    }

    if (!path.starts_with(home_ + "/"))
        return refused(Kind::outsideAllowedRoots, path == home_ ? "home itself" : "outside home");
    const auto relative = path.substr(home_.size() + 1);
    const auto isBelowTree = [&](std::string_view tree) {
        return relative == tree || relative.starts_with(std::string(tree) + "/");
    };
    if (pieces(relative).size() < 2) {
        // Entries of one piece never come further, so they are counted here.
        if (isAmong(model::protectedRoots, relative))
            return refused(Kind::protectedPath, "root " + relative);
        for (const auto tree : model::protectedTrees) {
            if (relative == tree)
                return refused(Kind::protectedPath, "tree " + relative);
        }
        return refused(Kind::protectedPath, "directly in home");
    }
    if (isAmong(model::protectedRoots, relative))
        return refused(Kind::protectedPath, "root " + relative);
    for (const auto tree : model::protectedTrees) {
        if (isBelowTree(tree))
            return refused(Kind::protectedPath, "tree " + std::string(tree));
    }
    for (const auto tree : model::ownTrees) {
        if (isBelowTree(tree))
            return refused(Kind::protectedPath, "own tree " + std::string(tree));
    }

    const auto found = disk_.find(path);
    if (!found)
        return refused(Kind::missing, "missing");
    if (found->object->kind == DiskObject::Kind::link) {
        count("accepted: link");
        return {};
    }
    if (found->object->kind != DiskObject::Kind::folder) {
        count("accepted: file");
        return {};
    }
    if (disk_.find(path + "/.git")) {
        if (!options.allowRepository)
            return refused(Kind::isRepository, "repository");
        count("accepted: repository in the Trash");
    }
    for (const auto& mount : disk_.mounts()) {
        if (mount.path != path && !mount.path.starts_with(path + "/"))
            continue;
        count(mount.path == path ? "refused: mount point" : "refused: mount inside");
        return GuardError{Kind::containsMountPoint, mount.path};
    }
    count("accepted: folder");
    return {};
}

CleaningModel::ApplicationVerdict CleaningModel::applicationVerdict(const std::string& path) const {
    if (!path.ends_with(".app"))
        return {};
    const auto folder = folderOf(path);
    if (folder != "/Applications" && folder != home_ + "/Applications") {
        count("text: application elsewhere");
        return {};
    }
    if (bundleIdentifier(path).starts_with("com.apple.")) {
        count("refused: application of the system");
        return {.refusal = GuardError{Kind::protectedPath, path}};
    }
    if (!disk_.find(path)) {
        count("refused: application missing");
        return {.refusal = GuardError{Kind::missing, path}};
    }
    return {.answer = ApplicationAnswer::accepted, .refusal = {}};
}

std::string CleaningModel::bundleIdentifier(const std::string& application) const {
    const auto file = disk_.find(application + "/Contents/Info.plist", true);
    if (!file || file->object->kind != DiskObject::Kind::file)
        return {};
    for (const auto& sample : model::propertyListSamples()) {
        if (sample.text == file->object->contents)
            return sample.bundleIdentifier;
    }
    return {};
}

bool CleaningModel::leadsThroughLink(const std::string& path) const {
    const auto text = normalised(path);
    if (!text.starts_with(home_ + "/"))
        return false;
    for (auto folder = folderOf(text); folder != home_; folder = folderOf(folder)) {
        const auto object = disk_.at(folder);
        if (object && object->kind == DiskObject::Kind::link)
            return true;
    }
    return false;
}

Prediction CleaningModel::perform(const CleanupItem& item, const SeenInTrash& seen) {
    seen_ = seen;
    complaint_.clear();
    if (const auto refusal = verdictOn(item))
        return {.message = description(*refusal)};
    Prediction prediction;
    switch (item.action.kind) {
    case CleanupAction::Kind::delete_:
        prediction = removed(item);
        break;
    case CleanupAction::Kind::trash:
        prediction = trashed(item);
        break;
    case CleanupAction::Kind::emptyTrash:
        prediction = emptied(item);
        break;
    case CleanupAction::Kind::simulatorErase:
    case CleanupAction::Kind::simulatorDelete:
    case CleanupAction::Kind::simulatorRuntimeDelete:
    case CleanupAction::Kind::manual:
        break;
    }
    prediction.complaint = complaint_;
    return prediction;
}

Prediction CleaningModel::removed(const CleanupItem& item) {
    if (!remove(item.path))
        return {};
    const auto skipped = skippedRelated(item, [this](const std::string& path) { return remove(path); });
    if (!skipped.empty())
        return {.message = "Sebagian dilewati: " + joinedNames(skipped)};
    count("done: deleted");
    return {.success = true, .freedBytes = item.bytes, .message = "Dihapus"};
}

Prediction CleaningModel::trashed(const CleanupItem& item) {
    if (!moveToTrash(item.path))
        return {};
    const auto skipped = skippedRelated(item, [this](const std::string& path) { return moveToTrash(path); });
    if (!skipped.empty())
        return {.message = "Sebagian dilewati: " + joinedNames(skipped)};
    count("done: moved to the Trash");
    return {.success = true, .message = "Dipindah ke Tong Sampah"};
}

Prediction CleaningModel::emptied(const CleanupItem& item) {
    std::vector<std::string> names;
    const auto trash = disk_.find(item.path); // a link to a folder is none to list
    if (trash && trash->object->kind == DiskObject::Kind::folder) {
        for (const auto& [name, object] : trash->object->entries)
            names.push_back(name);
        count(names.empty() ? "Trash: empty" : "Trash: with contents");
    } else {
        count("Trash: none to list");
    }
    int failures = 0;
    for (const auto& name : names) {
        const auto child = item.path + "/" + name;
        if (verdictOn(child, {.allowRepository = true}) || !remove(child))
            ++failures;
    }
    if (failures > 0) {
        count("done: Trash emptied in part");
        return {.message = std::to_string(failures) + " item tidak bisa dihapus (butuh Full Disk Access?)"};
    }
    count("done: Trash emptied");
    return {.success = true, .freedBytes = item.bytes, .message = "Tong Sampah dikosongkan"};
}

template <class Action>
std::vector<std::string> CleaningModel::skippedRelated(const CleanupItem& item, Action action) {
    std::vector<std::string> skipped;
    for (const auto& path : item.relatedPaths.value_or(std::vector<std::string>())) {
        if (!exists(path)) {
            count("related: not there");
            continue;
        }
        const bool isDone = !verdictOn(path, {}) && action(path);
        count(isDone ? "related: done" : "related: skipped");
        if (!isDone)
            skipped.push_back(lastPiece(path));
    }
    return skipped;
}

bool CleaningModel::remove(const std::string& given) {
    const auto path = normalised(given);
    if (leadsThroughLink(path)) {
        count("failed: removal through a link");
        return false;
    }
    const auto found = disk_.find(path);
    if (disk_.isMountPoint(found->path)) {
        count("failed: removal of a mounted file");
        return false;
    }
    if (disk_.remove(*found))
        return true;
    count("failed: removal of what carries a mount elsewhere");
    return false;
}

bool CleaningModel::moveToTrash(const std::string& given) {
    const auto path = normalised(given);
    if (leadsThroughLink(path)) {
        count("failed: move through a link");
        return false;
    }
    auto trash = disk_.find(home_ + "/.Trash");
    if (!trash) {
        count("Trash: made");
        DiskPicture::add(disk_.find(home_)->object, ".Trash", std::make_shared<DiskObject>());
        trash = disk_.find(home_ + "/.Trash");
    } else if (trash->object->kind != DiskObject::Kind::folder) {
        count("failed: no folder as Trash");
        return false;
    }
    const auto found = disk_.find(path);
    if (disk_.isCovered(*found->folder, found->name) || disk_.isMountPoint(found->path)) {
        count("failed: move of a mount point");
        return false;
    }
    if (disk_.mountOf(found->path) != disk_.mountOf(home_ + "/.Trash")) {
        count("failed: move to another volume");
        return false;
    }
    const auto name = nameInTrash(*found, *trash->object);
    const bool hasNoRoom = trash->object->entries.contains(found->name) && found->name.size() > 250;
    if (!name && hasNoRoom) {
        count("failed: no room in the name for a number");
        return false;
    }
    if (!name) {
        complaint_ = shown(given) + " is not in the Trash";
        return false;
    }
    for (const auto& mount : disk_.mounts()) {
        if (mount.path.starts_with(found->path + "/"))
            count("done: moved with a mount inside");
    }
    disk_.move(*found, trash->object, trash->path + "/" + *name);
    return true;
}

/// Its own name where that is free, else the one that is new there.
std::optional<std::string> CleaningModel::nameInTrash(const DiskPicture::Found& found,
                                                      const DiskObject& trash) const {
    const auto isIts = [&](const std::pair<std::string, std::uint64_t>& seen) {
        return !trash.entries.contains(seen.first) && seen.second == found.object->number;
    };
    const std::pair own(found.name, found.object->number);
    if (isIts(own) && isAmong(seen_, own)) {
        count("Trash: own name");
        return found.name;
    }
    const auto other = std::ranges::find_if(seen_, isIts);
    if (other == seen_.end())
        return {};
    count(found.folder.get() == &trash ? "Trash: another name where it lay" : "Trash: another name");
    return other->first;
}

} // namespace korvanti::testing
