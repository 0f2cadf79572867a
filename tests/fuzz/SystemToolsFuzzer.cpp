#include "Require.h"
#include "analysis/DiskInspector.h"
#include "analysis/InstalledApps.h"
#include "base/PropertyList.h"
#include "providers/SystemProvider.h"

#include <algorithm>
#include <string>

using namespace korvanti;

namespace {

void checkSnapshots(std::string_view listing) {
    const auto items = SystemProvider::snapshots(listing);
    require(items.size() == (listing.contains("com.apple") ? 1 : 0));
    require(items.empty() || (items[0].bytes == 0 && items[0].safety == Safety::managed));
}

void checkProcesses(std::string_view programs) {
    const std::string inside = "/A.app/Contents/";
    const bool isRunning = InstalledApps::isRunning("/A.app", programs);
    require(!isRunning || programs.contains(inside));
    require(isRunning || !(programs.starts_with(inside) || programs.contains("\n" + inside)));
}

void checkSmart(const PropertyList::Dictionary& info) {
    const auto smart = DiskInspector::smart(info);
    require(smart || !info.contains("SMARTStatus"));
    require(!smart || smart->dataWrittenBytes.value_or(0) % 512'000 == 0);
}

void checkVolumes(const PropertyList::Dictionary& layout) {
    const auto volumes =
        DiskInspector::apfsVolumes(layout, PropertyList(layout).text("APFSContainerReference"));
    const auto containers = layout.find("Containers");
    require(volumes.empty() || (containers != layout.end() && containers->second.array()));
    for (const auto& volume : volumes)
        require(volume.bytes >= 0 && volume.bytes <= 1'000'000'000'000'000);

    const auto items = SystemProvider::volumes(volumes);
    const auto isShown = [](const APFSVolumeUsage& volume) {
        return volume.role != "Data" && volume.bytes > 0;
    };
    require(std::ssize(items) == std::ranges::count_if(volumes, isShown));
    for (const auto& item : items)
        require(item.safety == Safety::managed && item.path.starts_with("apfs:") && !item.recommended);
}

} // namespace

/// What tmutil, ps and diskutil print.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto text = textOf(data, size);
    checkSnapshots(text);
    checkProcesses(text);
    const auto list = PropertyList::parse(text);
    if (const auto* dictionary = list ? list->dictionary() : nullptr) {
        checkSmart(*dictionary);
        checkVolumes(*dictionary);
    }
    return 0;
}
