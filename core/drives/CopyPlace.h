#pragma once

#include "base/FileDescriptor.h"
#include "base/FileError.h"
#include "fs/PinnedEntry.h"
#include "platform/Platform.h"

#include <expected>
#include <optional>
#include <string>

namespace korvanti {

/// Where a copy is to arrive. A folder is made empty beforehand, which the system grants to one only: so
/// nothing of anybody else's is in it, and it is known again afterwards. For a file the place can only be
/// found free.
class CopyPlace {
public:
    enum class Kind { folder, file };

    /// Takes the place with the name of `path` in the open folder that holds it. EEXIST where something
    /// stands.
    [[nodiscard]] static std::expected<CopyPlace, FileError> take(const FileDescriptor& parent,
                                                                  const std::string& path, Kind kind);

    [[nodiscard]] const std::string& path() const { return path_; }

    /// The entry is the folder that was made here, or for a file no folder at all.
    [[nodiscard]] bool holds(const PinnedEntry& entry) const;

private:
    std::string path_;
    std::optional<Platform::EntryIdentity> folder_;
};

} // namespace korvanti
