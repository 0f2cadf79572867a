#pragma once

#include "base/Instant.h"
#include "base/Json.h"
#include "base/Uuid.h"

#include <cstddef>
#include <cstdint>
#include <expected>
#include <string>
#include <vector>

namespace korvanti {

/// What was done to one thing of the user's.
struct ActivityEntry {
    Uuid id = Uuid::random();
    Instant date;     ///< when it was finished
    std::string kind; ///< what was done, in the user's words
    std::string title;
    std::string path;
    std::int64_t bytes = 0; ///< freed or moved
    bool success = false;
    std::string message; ///< what the user was told

    bool operator==(const ActivityEntry&) const = default;
};

[[nodiscard]] Json toJson(const ActivityEntry& entry);
[[nodiscard]] std::expected<ActivityEntry, JsonError> activityEntryFromJson(const Json& json);

/// The record of what the program did: a text file with one JSON object a line, to which lines are only ever
/// added. Secondary to what it records, so it never fails anyone. Safe from any thread and with other
/// programs that append to the same file.
class ActivityLog {
public:
    /// No file is touched. `url` is the path of the file.
    explicit ActivityLog(std::string url);

    /// Adds one line with a single write at the end of the file. Makes the file where there is none, but not
    /// its folder. What can't be written is missing from the log, without a word.
    void append(const ActivityEntry& entry) const;

    /// The entries of the last `limit` lines, newest first; a line that is none is left out. Empty when the
    /// file is not there or is no UTF-8.
    [[nodiscard]] std::vector<ActivityEntry> load(std::size_t limit) const;

    [[nodiscard]] const std::string& url() const { return url_; }

private:
    std::string url_;
};

} // namespace korvanti
