#include "cleaning/ActivityLog.h"

#include "base/FileDescriptor.h"
#include "base/SystemCall.h"
#include "base/Text.h"
#include "fs/FileContents.h"

#include <cstdint>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace korvanti {
namespace {

/// Beyond ASCII all is escaped, so that a line that a full disk has cut short is still text.
std::string lineOf(const ActivityEntry& entry) {
    return toJson(entry).dump(-1, ' ', true, Json::error_handler_t::replace) + '\n';
}

} // namespace

Json toJson(const ActivityEntry& entry) {
    return {{"id", entry.id.text()},    {"date", iso8601Text(entry.date)},
            {"kind", entry.kind},       {"title", entry.title},
            {"path", entry.path},       {"bytes", entry.bytes},
            {"success", entry.success}, {"message", entry.message}};
}

std::expected<ActivityEntry, JsonError> activityEntryFromJson(const Json& json) {
    JsonObjectReader in(json);
    const auto id = Uuid::parse(in.text("id"));
    const auto date = instantFromStrictIso8601(in.text("date"));
    if (!id)
        in.fail("id: no UUID");
    if (!date)
        in.fail("date: not in ISO 8601 with whole seconds");
    return in.finish(ActivityEntry{.id = id.value_or(Uuid()),
                                   .date = date.value_or(Instant()),
                                   .kind = in.text("kind"),
                                   .title = in.text("title"),
                                   .path = in.text("path"),
                                   .bytes = in.integer("bytes"),
                                   .success = in.boolean("success"),
                                   .message = in.text("message")});
}

ActivityLog::ActivityLog(std::string url) : url_(std::move(url)) {}

void ActivityLog::append(const ActivityEntry& entry) const {
    const auto line = lineOf(entry);
    const FileDescriptor file(uninterrupted([&] {
        return ::open(url_.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0600);
    }));
    struct stat status {};
    if (uninterrupted([&] { return ::fstat(file.get(), &status); }) != 0 || !S_ISREG(status.st_mode))
        return;
    // At the end of the file, whoever else writes there; what does not fit on the disk is lost.
    [[maybe_unused]] const auto written =
        uninterrupted([&] { return ::write(file.get(), line.data(), line.size()); });
}

std::vector<ActivityEntry> ActivityLog::load(std::size_t limit) const {
    const auto text = FileContents::read(url_, std::numeric_limits<std::int64_t>::max() - 1);
    if (!text || Text::repaired(*text) != *text)
        return {};
    auto lines = Text::pieces(*text, '\n');
    if (lines.size() > limit)
        lines.erase(lines.begin(), lines.end() - static_cast<std::ptrdiff_t>(limit));
    std::vector<ActivityEntry> entries;
    entries.reserve(lines.size());
    for (auto line = lines.rbegin(); line != lines.rend(); ++line) {
        const auto json = parseJson(*line);
        if (auto entry = json ? activityEntryFromJson(*json) : std::unexpected(json.error()))
            entries.push_back(std::move(*entry));
    }
    return entries;
}

} // namespace korvanti
