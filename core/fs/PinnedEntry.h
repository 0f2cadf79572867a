#pragma once

#include "base/FileDescriptor.h"
#include "base/FileError.h"
#include "platform/Platform.h"

#include <cstdint>
#include <expected>
#include <string>

namespace korvanti {

/// One entry of a folder that is held open. What is found out about it and what is done to it by its
/// descriptors concerns the same folder and the same object, whatever happens to the path meanwhile.
class PinnedEntry {
public:
    /// Goes from `base`, which lies above `path` and whose own links are followed, down to the folder that
    /// holds the entry, and never through a link: one on the way is an error (ELOOP). `path` is normalised.
    /// Nothing is read but the way itself.
    [[nodiscard]] static std::expected<PinnedEntry, FileError> open(const std::string& base,
                                                                    const std::string& path);

    [[nodiscard]] const std::string& path() const { return path_; }
    [[nodiscard]] const std::string& name() const { return name_; } ///< the last component
    [[nodiscard]] int parent() const { return parent_.get(); }      ///< holds the entry; not for listing
    [[nodiscard]] Platform::EntryKind kind() const { return kind_; }
    [[nodiscard]] bool isFolder() const { return kind_ == Platform::EntryKind::folder; }
    /// The entry itself where it is a folder, otherwise -1; not for listing.
    [[nodiscard]] int folder() const { return isFolder() ? held_.get() : -1; }

    /// The parent still has this very object under this name. An error where it has none (ENOENT), another
    /// one (ESTALE), or can't be asked.
    [[nodiscard]] std::expected<void, FileError> stillThere() const;

    /// What tells it from every other object of the system for as long as it exists.
    [[nodiscard]] const Platform::EntryIdentity& identity() const { return identity_; }

private:
    PinnedEntry() = default;

    std::string path_;
    std::string name_;
    FileDescriptor parent_;
    FileDescriptor held_; ///< the entry itself; none where the system needs none
    Platform::EntryKind kind_ = Platform::EntryKind::other;
    Platform::EntryIdentity identity_;
};

} // namespace korvanti
