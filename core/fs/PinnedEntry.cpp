#include "fs/PinnedEntry.h"

#include "base/SystemCall.h"
#include "base/Text.h"
#include "fs/PathTools.h"
#include "platform/EntryKinds.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <string_view>
#include <sys/stat.h>
#include <utility>
#include <vector>

namespace korvanti {
namespace {

struct Facts {
    Platform::EntryKind kind = Platform::EntryKind::other;
    Platform::EntryIdentity identity;
};

/// Of an entry by its name, links not followed; of the open folder itself where the name is empty. Absent
/// with `errno` where it can't be asked.
std::optional<Facts> factsOf(int folder, const std::string& name) {
    struct stat status {};
    if (uninterrupted([&] {
            return name.empty() ? ::fstat(folder, &status)
                                : ::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW);
        }) != 0)
        return std::nullopt;
    return Facts{.kind = Platform::kindOfMode(status.st_mode), .identity = Platform::identityOf(status)};
}

/// One step down. A link is ELOOP whatever the system calls it.
std::expected<FileDescriptor, FileError> step(int parent, const std::string& name, const std::string& path) {
    FileDescriptor folder(Platform::openPassageAt(parent, name.c_str()));
    if (folder)
        return folder;
    const auto error = lastFileError(path);
    const auto facts = factsOf(parent, name);
    if (facts && facts->kind == Platform::EntryKind::link)
        return std::unexpected(fileErrorOf(ELOOP, path));
    return std::unexpected(error);
}

} // namespace

std::expected<PinnedEntry, FileError> PinnedEntry::open(const std::string& base, const std::string& path) {
    if (!PathTools::isSameOrAncestor(base, path))
        return std::unexpected(fileErrorOf(EINVAL, path));
    const auto names = Text::pieces(std::string_view(path).substr(base.size()), '/');
    if (names.empty() || !std::ranges::all_of(names, PathTools::isEntryName))
        return std::unexpected(fileErrorOf(EINVAL, path));

    PinnedEntry pinned;
    pinned.path_ = path;
    pinned.name_ = names.back();
    pinned.parent_ = FileDescriptor(Platform::openPassage(base));
    if (!pinned.parent_)
        return std::unexpected(lastFileError(path));
    for (std::size_t i = 0; i + 1 < names.size(); ++i) {
        auto folder = step(pinned.parent_.get(), std::string(names[i]), path);
        if (!folder)
            return std::unexpected(folder.error());
        pinned.parent_ = std::move(*folder);
    }

    auto facts = factsOf(pinned.parent_.get(), pinned.name_);
    if (!facts)
        return std::unexpected(lastFileError(path));
    const auto kind = facts->kind;
    if (kind == Platform::EntryKind::folder) {
        auto folder = step(pinned.parent_.get(), pinned.name_, path);
        if (!folder)
            return std::unexpected(folder.error());
        pinned.held_ = std::move(*folder);
    } else {
        auto held = Platform::holdEntryAt(pinned.parent_.get(), pinned.name_.c_str());
        if (!held)
            return std::unexpected(fileErrorOf(held.error(), path));
        pinned.held_ = std::move(*held);
    }
    if (pinned.held_) // from now on it is about what is held, even if that is another one
        facts = factsOf(pinned.held_.get(), {});
    if (!facts)
        return std::unexpected(lastFileError(path));
    if (facts->kind != kind)
        return std::unexpected(fileErrorOf(ESTALE, path));
    pinned.kind_ = facts->kind;
    pinned.identity_ = facts->identity;
    return pinned;
}

std::expected<void, FileError> PinnedEntry::stillThere() const {
    const auto facts = factsOf(parent_.get(), name_);
    if (!facts)
        return std::unexpected(lastFileError(path_));
    if (facts->kind != kind_ || facts->identity != identity_)
        return std::unexpected(fileErrorOf(ESTALE, path_));
    return {};
}

} // namespace korvanti
