// Moves one folder to a volume or back, once:
//
//   korvanti_offload_once offload HOME STORE LOG SOURCE VOLUME UUID [link]
//   korvanti_offload_once restore HOME STORE LOG
//   korvanti_offload_once forget  HOME STORE LOG
//
// `offload` claims that the volume is in "apfs" and has room for everything; UUID is "-" for none. `restore`
// and `forget` are about the last record in the store. Prints one line: "moved", "restored", "forgotten", or
// the kind of the error and its description. Exit status 2 when there is nothing to do.
#include "base/ByteText.h"
#include "drives/OffloadService.h"

#include <cstdint>
#include <cstdio>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace {

using namespace korvanti;

const char* nameOf(OffloadError::Kind kind) {
    using Kind = OffloadError::Kind;
    switch (kind) {
    case Kind::notEnoughSpace:
        return "notEnoughSpace";
    case Kind::unsupportedFormat:
        return "unsupportedFormat";
    case Kind::originalOccupied:
        return "originalOccupied";
    case Kind::copyFailed:
        return "copyFailed";
    case Kind::verifyFailed:
        return "verifyFailed";
    case Kind::sourceMissing:
        return "sourceMissing";
    case Kind::volumeMissing:
        return "volumeMissing";
    }
    std::unreachable();
}

const char* nameOf(const DriveFailure& failure) {
    if (const auto* own = std::get_if<OffloadError>(&failure))
        return nameOf(own->kind);
    return std::holds_alternative<GuardError>(failure) ? "guard" : "system";
}

template <class Result> void print(const Result& result, const char* success) {
    if (result)
        std::printf("%s\n", success);
    else
        std::printf("%s %s\n", nameOf(result.error()), description(result.error()).c_str());
}

void offload(const OffloadService& service, const std::vector<std::string>& words) {
    CleanupItem item;
    item.title = "Folder";
    item.path = words[3];
    item.category = ItemCategory::xcode;
    VolumeInfo volume{.name = "SSD", .mountPath = words[4], .formatName = "APFS", .fsType = "apfs"};
    if (words[5] != "-")
        volume.uuid = words[5];
    volume.free = 1000 * GB;
    const bool link = words.size() == 7 && words[6] == "link";
    print(service.offload(item, volume, {.symlinkBack = link}, [](std::int64_t) {}), "moved");
}

} // namespace

int main(int count, char** arguments) {
    const std::vector<std::string> words(arguments + 2, arguments + count);
    const std::string task = count > 1 ? arguments[1] : "";
    if (words.size() < 3)
        return 2;
    const OffloadService service(words[0], words[1], ActivityLog(words[2]));
    if (task == "offload" && words.size() >= 6) {
        offload(service, words);
        return 0;
    }
    const auto records = service.records();
    if (records.empty())
        return 2;
    if (task == "restore") {
        print(service.restore(records.back()), "restored");
    } else {
        service.forget(records.back());
        std::printf("forgotten\n");
    }
}
