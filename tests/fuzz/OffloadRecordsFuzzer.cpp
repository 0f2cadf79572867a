#include "Require.h"
#include "drives/OffloadRecord.h"

#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace {

using namespace korvanti;

/// Removed when the fuzzer ends by itself.
struct Folder {
    Folder() { require(::mkdtemp(path.data()) != nullptr); }
    ~Folder() {
        std::error_code error;
        std::filesystem::remove_all(path, error);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::string path =
        std::filesystem::exists("/dev/shm") ? "/dev/shm/offloads.XXXXXX" : "/tmp/offloads.XXXXXX";
};

std::string bytesOf(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace

/// The list of moved folders, as it may stand on anybody's volume: what is read is written in a form that
/// reads back to the same; fractions of a second go the first time.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Folder folder;
    static const std::string file = folder.path + "/offloads.json";
    std::ofstream(file, std::ios::binary | std::ios::trunc) << textOf(data, size);

    const auto records = OffloadRecords::read(file);
    OffloadRecords::write(file, records);
    const auto written = bytesOf(file);
    const auto again = OffloadRecords::read(file);
    require(again.size() == records.size());
    for (std::size_t i = 0; i < records.size(); ++i) {
        require(again[i].id == records[i].id && again[i].title == records[i].title);
        require(again[i].originalPath == records[i].originalPath);
        require(again[i].destinationPath == records[i].destinationPath);
        require(again[i].volumeUUID == records[i].volumeUUID && again[i].volumeName == records[i].volumeName);
        require(again[i].bytes == records[i].bytes && again[i].symlinked == records[i].symlinked);
    }
    OffloadRecords::write(file, again);
    require(bytesOf(file) == written);
    return 0;
}
