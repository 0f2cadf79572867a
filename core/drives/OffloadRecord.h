#pragma once

#include "base/Instant.h"
#include "base/Json.h"
#include "base/Uuid.h"

#include <cstdint>
#include <expected>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvanti {

/// A folder that was moved to a volume.
struct OffloadRecord {
    Uuid id = Uuid::random();
    std::string title;
    std::string originalPath;    ///< where it was
    std::string destinationPath; ///< where it is now
    std::optional<std::string> volumeUUID;
    std::string volumeName;
    std::int64_t bytes = 0; ///< allocated by the folder at its old place
    Instant date;           ///< when the move ended
    bool symlinked = false; ///< a link stands at `originalPath`

    bool operator==(const OffloadRecord&) const = default;
};

[[nodiscard]] Json toJson(const OffloadRecord& record);
[[nodiscard]] std::expected<OffloadRecord, JsonError> offloadRecordFromJson(const Json& json);

enum class OffloadStatus { available, volumeMissing, destinationMissing };

/// For people.
[[nodiscard]] std::string_view label(OffloadStatus status);

/// A file with a list of records: the store on this computer, or the manifest on a volume.
namespace OffloadRecords {

/// None when the file is missing, can't be read or is damaged.
[[nodiscard]] std::vector<OffloadRecord> read(const std::string& file);
/// Replaces the file as a whole. One that can't be written stays as it was, without a word.
void write(const std::string& file, const std::vector<OffloadRecord>& records);

/// Reads a file, changes what it holds and writes it, while no other program does the same. Gives what it
/// holds now.
std::vector<OffloadRecord> update(const std::string& file,
                                  const std::function<void(std::vector<OffloadRecord>&)>& change);

} // namespace OffloadRecords
} // namespace korvanti
