#include "cleaning/SafetyGuard.h"

#include "base/SystemCall.h"
#include "base/Text.h"
#include "base/Uuid.h"
#include "cleaning/SafetyGuardTables.h"
#include "fs/FileContents.h"
#include "fs/MountTable.h"
#include "fs/PathTools.h"
#include "platform/EntryKinds.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <optional>
#include <string_view>
#include <sys/stat.h>
#include <utility>

namespace korvanti {
namespace {

using Kind = GuardError::Kind;
using Verdict = std::expected<void, GuardError>;

Verdict refusal(Kind kind, std::string payload) {
    return std::unexpected(GuardError{kind, std::move(payload)});
}

bool isWellFormed(const std::string& path) {
    return path.starts_with('/') && !path.contains("/../") && !path.ends_with("/..") && !path.contains('\0');
}

/// Without "." components, repeated slashes and a trailing slash. Touches no disk.
std::string normalised(std::string_view path) {
    std::string clean;
    for (const auto component : Text::pieces(path, '/')) {
        if (component != ".")
            clean.append("/").append(component);
    }
    return clean.empty() ? "/" : clean;
}

bool holdsSecrets(std::string_view name) {
    const auto lower = Text::lowercased(name);
    return lower.starts_with(".env") ||
           std::ranges::any_of(SafetyGuardTables::sensitiveSuffixes,
                               [&](std::string_view suffix) { return lower.ends_with(suffix); });
}

/// By a path relative to the home folder. What lies directly in there must stay, whatever its name.
bool isProtected(std::string_view relative) {
    const auto isWithin = [&](std::string_view tree) { return PathTools::isSameOrAncestor(tree, relative); };
    return !relative.contains('/') ||
           std::ranges::any_of(SafetyGuardTables::protectedRoots,
                               [&](std::string_view root) { return relative == root; }) ||
           std::ranges::any_of(SafetyGuardTables::protectedTrees, isWithin) ||
           std::ranges::any_of(SafetyGuardTables::ownTrees, isWithin);
}

bool isApplicationBundle(std::string_view path, const std::string& home) {
    const auto folder = PathTools::parent(path);
    return path.ends_with(".app") && (folder == "/Applications" || folder == home + "/Applications");
}

constexpr std::string_view infoPath = "/Contents/Info.plist";

/// An application with no readable property list is not taken for one of the system's.
bool isOfTheSystem(const std::optional<PropertyList>& info) {
    const auto identifier = info ? info->text("CFBundleIdentifier") : std::nullopt;
    return identifier && identifier->starts_with("com.apple.");
}

Verdict applicationVerdict(const std::string& path) {
    if (isOfTheSystem(FileContents::readPropertyList(path + std::string(infoPath))))
        return refusal(Kind::protectedPath, path);
    if (!PathTools::exists(path))
        return refusal(Kind::missing, path);
    return {};
}

/// Each question looks at the disk anew.
Verdict diskVerdict(const std::string& path, bool allowRepository) {
    if (!PathTools::exists(path))
        return refusal(Kind::missing, path);
    if (!PathTools::isDirectory(path)) // a link to one is none
        return {};
    if (!allowRepository && PathTools::exists(path + "/.git"))
        return refusal(Kind::isRepository, path);
    if (const auto mounts = MountTable::mountPoints(path); !mounts.empty())
        return refusal(Kind::containsMountPoint, mounts.front());
    return {};
}

// The same questions put to a held entry. Here, right before a removal, one that the system does not answer
// is a refusal. Only a property list that can't be read still makes an application nobody's.

using Refusal = SafetyGuard::Refusal;
using HeldVerdict = std::expected<void, Refusal>;

HeldVerdict heldApplicationVerdict(const PinnedEntry& entry) {
    const auto info =
        entry.isFolder()
            ? FileContents::readPropertyList(entry.folder(), std::string(infoPath.substr(1)))
            : FileContents::readPropertyList(entry.parent(), entry.name() + std::string(infoPath));
    if (isOfTheSystem(info))
        return std::unexpected(GuardError{Kind::protectedPath, entry.path()});
    return {};
}

HeldVerdict repositoryVerdict(const PinnedEntry& entry) {
    struct stat status {};
    if (uninterrupted([&] { return ::fstatat(entry.folder(), ".git", &status, AT_SYMLINK_NOFOLLOW); }) == 0)
        return std::unexpected(GuardError{Kind::isRepository, entry.path()});
    if (const int error = errno; error != ENOENT)
        return std::unexpected(fileErrorOf(error, entry.path() + "/.git"));
    return {};
}

/// The table names volumes by their real places, which differ from ours where the home lies behind a link.
HeldVerdict mountVerdict(const PinnedEntry& entry, const std::string& home) {
    const auto table = MountTable::all();
    if (table.empty())
        return std::unexpected(fileErrorOf(EIO, entry.path()));
    const auto realHome = PathTools::realPath(home);
    if (!realHome)
        return std::unexpected(fileErrorOf(realHome.error().value(), entry.path()));
    const auto realPath = *realHome + entry.path().substr(home.size());
    for (const auto& point : table) {
        if (PathTools::isSameOrAncestor(entry.path(), point) || PathTools::isSameOrAncestor(realPath, point))
            return std::unexpected(GuardError{Kind::containsMountPoint, point});
    }
    const auto own = Platform::folderIdentity(entry.folder());
    const auto parent = Platform::folderIdentity(entry.parent());
    if (!own || !parent)
        return std::unexpected(lastFileError(entry.path()));
    if (own->mountRoot || own->device != parent->device)
        return std::unexpected(GuardError{Kind::containsMountPoint, entry.path()});
    return {};
}

/// As a disk sees it that makes no difference between cases and ways of composing letters.
std::string folded(std::string_view path) {
    return Text::composed(Text::lowercased(path));
}

/// The first so many components.
std::string_view beginning(std::string_view path, std::ptrdiff_t components) {
    std::size_t end = 0;
    for (; components > 0; --components)
        end = std::min(path.find('/', end + 1), path.size());
    return path.substr(0, end);
}

/// Absent where there is nothing.
std::expected<std::optional<Platform::EntryIdentity>, FileError> identityAt(const std::string& path) {
    struct stat status {};
    if (uninterrupted([&] { return ::lstat(path.c_str(), &status); }) == 0)
        return Platform::identityOf(status);
    if (errno == ENOENT || errno == ENOTDIR)
        return std::nullopt;
    return std::unexpected(lastFileError(path));
}

/// A disk may know a protected place by more than one spelling.
HeldVerdict spellingVerdict(const PinnedEntry& entry, const std::string& home) {
    const auto relative = std::string_view(entry.path()).substr(home.size() + 1);
    const auto plain = folded(relative);
    const auto verdictOn = [&](std::string_view place) -> HeldVerdict {
        const auto spelled = beginning(relative, std::ranges::count(place, '/') + 1);
        const auto ours = identityAt(PathTools::joined(home, spelled));
        const auto theirs = identityAt(PathTools::joined(home, place));
        if (!ours || !theirs)
            return std::unexpected(ours ? theirs.error() : ours.error());
        if (ours->has_value() && *ours == *theirs)
            return std::unexpected(GuardError{Kind::protectedPath, entry.path()});
        return {};
    };
    const auto firstRefusal = [&](const auto& places, auto concerns) -> HeldVerdict {
        for (const auto place : places) {
            if (!concerns(folded(place)))
                continue;
            if (auto verdict = verdictOn(place); !verdict)
                return verdict;
        }
        return {};
    };
    const auto isWithin = [&](std::string_view tree) { return PathTools::isSameOrAncestor(tree, plain); };
    auto verdict =
        firstRefusal(SafetyGuardTables::protectedRoots, [&](std::string_view root) { return plain == root; });
    if (verdict)
        verdict = firstRefusal(SafetyGuardTables::protectedTrees, isWithin);
    if (verdict)
        verdict = firstRefusal(SafetyGuardTables::ownTrees, isWithin);
    return verdict;
}

} // namespace

std::string GuardError::description() const {
    switch (kind) {
    case Kind::notDeletable:
        return "Tidak boleh dihapus: " + payload;
    case Kind::invalidPath:
        return "Path tidak valid: " + payload;
    case Kind::outsideAllowedRoots:
        return "Di luar area yang boleh dibersihkan: " + PathTools::abbreviatingHome(payload);
    case Kind::protectedPath:
        return "Dilindungi (data penting): " + PathTools::abbreviatingHome(payload);
    case Kind::containsMountPoint:
        return "Berisi volume lain yang ter-mount (" + PathTools::abbreviatingHome(payload) +
               ") — dilewati agar isi perangkat tidak ikut terhapus";
    case Kind::isRepository:
        return "Ini repository git (kode sumber): " + PathTools::abbreviatingHome(payload);
    case Kind::missing:
        return "Sudah tidak ada: " + PathTools::abbreviatingHome(payload);
    case Kind::invalidIdentifier:
        return "ID tidak valid: " + payload;
    }
    std::unreachable();
}

// With a home that is no absolute path or the root itself, nothing lies inside it and all is refused.
SafetyGuard::SafetyGuard(const std::string& home) : home_(home.starts_with('/') ? normalised(home) : "/") {}

Verdict SafetyGuard::validate(const CleanupItem& item) const {
    if (item.safety == Safety::keep)
        return refusal(Kind::notDeletable, "Penting");
    if (!isDeletable(item.safety))
        return refusal(Kind::notDeletable, "Dikelola sistem");
    switch (item.action.kind) {
    case CleanupAction::Kind::simulatorErase:
    case CleanupAction::Kind::simulatorDelete:
    case CleanupAction::Kind::simulatorRuntimeDelete:
        return Uuid::parse(item.action.payload) ? Verdict()
                                                : refusal(Kind::invalidIdentifier, item.action.payload);
    case CleanupAction::Kind::manual:
        return refusal(Kind::notDeletable, "butuh langkah manual");
    case CleanupAction::Kind::emptyTrash:
        // What lies in it is asked about when it goes.
        return item.path == home_ + "/.Trash" ? Verdict() : refusal(Kind::invalidPath, item.path);
    case CleanupAction::Kind::delete_:
        return validate(item.path, {});
    case CleanupAction::Kind::trash:
        return validate(item.path, {.allowApplicationBundle = true});
    }
    std::unreachable();
}

Verdict SafetyGuard::validate(const std::string& path, PathOptions options) const {
    const auto place = placeOf(path, options);
    if (!place)
        return std::unexpected(place.error());
    return place->isApplication ? applicationVerdict(place->path)
                                : diskVerdict(place->path, options.allowRepository);
}

std::expected<AdmittedEntry, SafetyGuard::Refusal> SafetyGuard::admit(const std::string& path,
                                                                      PathOptions options) const {
    const auto place = placeOf(path, options);
    if (!place)
        return std::unexpected(place.error());
    const bool isInHome = PathTools::isSameOrAncestor(home_, place->path);
    auto entry = PinnedEntry::open(isInHome ? home_ : "/", place->path);
    if (!entry && entry.error().code == std::errc::no_such_file_or_directory)
        return std::unexpected(GuardError{Kind::missing, place->path});
    if (!entry)
        return std::unexpected(entry.error());

    auto verdict = place->isApplication ? heldApplicationVerdict(*entry) : spellingVerdict(*entry, home_);
    if (verdict && !place->isApplication && entry->isFolder()) {
        if (!options.allowRepository)
            verdict = repositoryVerdict(*entry);
        if (verdict)
            verdict = mountVerdict(*entry, home_);
    }
    if (!verdict)
        return std::unexpected(verdict.error());
    return AdmittedEntry(std::move(*entry));
}

std::expected<SafetyGuard::Place, GuardError> SafetyGuard::placeOf(const std::string& path,
                                                                   PathOptions options) const {
    const auto refused = [](Kind kind, std::string payload) {
        return std::unexpected(GuardError{kind, std::move(payload)});
    };
    if (!isWellFormed(path))
        return refused(Kind::invalidPath, path);
    const auto place = normalised(path);
    if (holdsSecrets(PathTools::lastComponent(place)))
        return refused(Kind::protectedPath, place);
    if (options.allowApplicationBundle && isApplicationBundle(place, home_))
        return Place{.path = place, .isApplication = true};
    if (!place.starts_with(home_ + "/"))
        return refused(Kind::outsideAllowedRoots, place);
    if (isProtected(std::string_view(place).substr(home_.size() + 1)))
        return refused(Kind::protectedPath, place);
    return Place{.path = place};
}

} // namespace korvanti
