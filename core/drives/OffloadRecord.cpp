#include "drives/OffloadRecord.h"

#include "base/FileDescriptor.h"
#include "fs/FileContents.h"
#include "fs/PathTools.h"
#include "platform/Platform.h"

#include <cerrno>
#include <chrono>
#include <sys/file.h>
#include <thread>
#include <utility>

namespace korvanti {
namespace {

Uuid uuid(JsonObjectReader& in, std::string_view key) {
    const auto text = in.text(key);
    const auto id = Uuid::parse(text);
    if (!id)
        in.fail("no UUID: " + text);
    return id.value_or(Uuid());
}

/// Another program holds it for a moment only. One that stands still must not keep a record from being
/// written, so after a while it is done without.
void waitForLock(int folder) {
    using namespace std::chrono_literals;
    for (auto left = 3s / 10ms; left > 0; --left) {
        if (::flock(folder, LOCK_EX | LOCK_NB) == 0 || (errno != EWOULDBLOCK && errno != EINTR))
            return;
        std::this_thread::sleep_for(10ms);
    }
}

} // namespace

Json toJson(const OffloadRecord& record) {
    Json json = {{"id", record.id.text()},
                 {"title", record.title},
                 {"originalPath", record.originalPath},
                 {"destinationPath", record.destinationPath}};
    if (record.volumeUUID)
        json["volumeUUID"] = *record.volumeUUID;
    json["volumeName"] = record.volumeName;
    json["bytes"] = record.bytes;
    json["date"] = iso8601Text(record.date);
    json["symlinked"] = record.symlinked;
    return json;
}

std::expected<OffloadRecord, JsonError> offloadRecordFromJson(const Json& json) {
    JsonObjectReader in(json);
    OffloadRecord record{.id = uuid(in, "id"),
                         .title = in.text("title"),
                         .originalPath = in.text("originalPath"),
                         .destinationPath = in.text("destinationPath"),
                         .volumeUUID = in.optionalText("volumeUUID"),
                         .volumeName = in.text("volumeName"),
                         .bytes = in.integer("bytes"),
                         .date = in.instant("date"),
                         .symlinked = in.boolean("symlinked")};
    return in.finish(std::move(record));
}

std::string_view label(OffloadStatus status) {
    switch (status) {
    case OffloadStatus::available:
        return "Tersedia di SSD";
    case OffloadStatus::volumeMissing:
        return "SSD tidak terpasang";
    case OffloadStatus::destinationMissing:
        return "Folder di SSD hilang";
    }
    std::unreachable();
}

namespace OffloadRecords {

std::vector<OffloadRecord> read(const std::string& file) {
    const auto text = FileContents::read(file);
    const auto json = text ? parseJson(*text) : std::unexpected(JsonError{"unreadable"});
    if (!json || !json->is_array())
        return {};
    std::vector<OffloadRecord> records;
    for (const auto& element : *json) {
        auto record = offloadRecordFromJson(element);
        if (!record)
            return {};
        records.push_back(std::move(*record));
    }
    return records;
}

void write(const std::string& file, const std::vector<OffloadRecord>& records) {
    Json json = Json::array();
    for (const auto& record : records)
        json.push_back(toJson(record));
    static_cast<void>(FileContents::writeAtomically(file, prettySortedJson(json)));
}

std::vector<OffloadRecord> update(const std::string& file,
                                  const std::function<void(std::vector<OffloadRecord>&)>& change) {
    // The file itself is replaced, so its folder stands for it.
    const FileDescriptor folder(
        Platform::openFolder(std::string(PathTools::parent(file)), Platform::Links::follow));
    waitForLock(folder.get());
    auto records = read(file);
    change(records);
    write(file, records);
    return records;
}

} // namespace OffloadRecords
} // namespace korvanti
