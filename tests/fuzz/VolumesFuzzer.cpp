#include "Require.h"
#include "base/PropertyList.h"
#include "base/Text.h"
#include "drives/VolumeAdvisor.h"
#include "drives/VolumeService.h"
#include "platform/linux/MountInfo.h"
#include "platform/linux/UdevRecord.h"
#include "terminal/VolumeText.h"

#include <algorithm>
#include <set>
#include <string>
#include <vector>

using namespace korvanti;

namespace {

void checkMountInfo(std::string_view text) {
    std::vector<std::string> points;
    for (const auto& mount : Platform::mountRecordsFromMountInfo(text)) {
        require(mount.mountPoint.starts_with('/'));
        points.push_back(mount.mountPoint);
    }
    require(points == Platform::mountPointsFromMountInfo(text));
    require(Platform::visibleMounts(Platform::mountRecordsFromMountInfo(text)).size() <= points.size());
}

void checkUdevRecord(std::string_view text) {
    const auto record = Platform::udevRecordFromText(text);
    require(!record.label || !record.label->empty());
    require(!record.uuid || (!record.uuid->empty() && text.contains(*record.uuid)));
    const auto decoded = Platform::decodedUdevName(text);
    require(decoded.size() <= text.size() && (text.contains("\\x") || decoded == text));
}

/// One line of output cannot become two, but for the first, which begins with an empty one.
void checkLines(const VolumeInfo& volume, const std::vector<Advice>& advice) {
    const auto lines = VolumeText::lines({volume});
    const auto commands =
        std::ranges::count_if(advice, [](const Advice& one) { return one.command.has_value(); });
    require(std::ssize(lines) == 2 + std::ssize(advice) + commands);
    require(lines.front().starts_with("\n■ "));
    for (const auto& line : lines)
        require(Text::printable(&line == &lines.front() ? line.substr(1) : line).size() ==
                (&line == &lines.front() ? line.size() - 1 : line.size()));
}

void checkVolume(const PropertyList::Dictionary& info, std::string_view text) {
    const auto name = Text::repaired(text.substr(0, 16));
    const auto volume = VolumeService::volumeInfo(
        {.mountPath = "/Volumes/" + name, .fsType = name, .total = std::ssize(text), .available = 10}, info);
    require(volume.mountPath == "/Volumes/" + name && volume.isEjectable && !volume.isInternal);

    const auto advice = VolumeAdvisor::advice(volume);
    std::set<std::string> titles;
    for (const auto& one : advice)
        require(titles.insert(one.id()).second);
    require(!advice.empty() && advice.size() <= 7);

    const auto json = parseJson(prettySortedJson(toJson(volume)));
    require(json && volumeInfoFromJson(*json) == volume);
    checkLines(volume, advice);
}

} // namespace

/// What the system and diskutil tell about mounted volumes, up to what the terminal prints.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto text = textOf(data, size);
    checkMountInfo(text);
    checkUdevRecord(text);
    checkVolume({}, text);
    const auto list = PropertyList::parse(text);
    if (const auto* dictionary = list ? list->dictionary() : nullptr)
        checkVolume(*dictionary, text);
    return 0;
}
