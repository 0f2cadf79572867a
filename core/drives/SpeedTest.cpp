#include "base/FileDescriptor.h"
#include "base/SystemCall.h"
#include "base/Uuid.h"
#include "drives/VolumeService.h"
#include "fs/PathTools.h"
#include "platform/Platform.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

namespace korvanti::VolumeService {
namespace {

constexpr std::size_t chunkBytes = 8'388'608;
constexpr std::size_t pageBytes = 4096; ///< what passes the cache by must be aligned to

/// The file that is written and read. Where there are files without a name it never has one; elsewhere its
/// name is gone before anything is written, and only a file system that keeps the name of an open file loses
/// it at the end.
class TestFile {
public:
    /// `descriptor()` is -1 with `errno` on failure.
    explicit TestFile(const std::string& folder) : file_(Platform::openNamelessFile(folder)) {
        if (file_ || folder.empty())
            return;
        path_ = PathTools::joined(folder, ".korvanti-speedtest-" + Uuid::random().text());
        file_ = FileDescriptor(uninterrupted(
            [&] { return ::open(path_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR); }));
        if (!file_ || ::unlink(path_.c_str()) == 0)
            path_.clear();
    }
    TestFile(const TestFile&) = delete;
    TestFile& operator=(const TestFile&) = delete;
    ~TestFile() {
        file_.reset();
        if (!path_.empty())
            ::unlink(path_.c_str());
    }

    [[nodiscard]] int descriptor() const { return file_.get(); }

private:
    FileDescriptor file_;
    std::string path_; ///< while the file has a name
};

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
using Chunk = std::unique_ptr<void, Free>;

/// What no drive can make smaller. None when there is no room.
Chunk randomChunk() {
    Chunk chunk(std::aligned_alloc(pageBytes, chunkBytes));
    if (chunk)
        ::arc4random_buf(chunk.get(), chunkBytes);
    return chunk;
}

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
    return std::max(std::chrono::duration<double>(Clock::now() - start).count(), 0.001);
}

/// 0, or the system's error number.
int writeChunk(int file, const Chunk& chunk) {
    const auto written = uninterrupted([&] { return ::write(file, chunk.get(), chunkBytes); });
    if (written < 0)
        return errno;
    return static_cast<std::size_t>(written) == chunkBytes ? 0 : EIO;
}

} // namespace

std::expected<SpeedResult, FileError> speedTest(const std::string& at, std::int64_t megabytes) {
    const auto chunks = std::max<std::int64_t>(megabytes / 8, 1);
    const auto chunk = randomChunk();
    if (!chunk)
        return std::unexpected(fileErrorOf(ENOMEM, at));
    const TestFile file(at);
    if (file.descriptor() < 0)
        return std::unexpected(lastFileError(at));

    Platform::bypassCache(file.descriptor());
    auto start = Clock::now();
    for (std::int64_t done = 0; done < chunks; ++done) {
        if (const int error = writeChunk(file.descriptor(), chunk))
            return std::unexpected(fileErrorOf(error, at));
    }
    static_cast<void>(Platform::flushFile(file.descriptor()));
    const double writeTime = secondsSince(start);

    Platform::bypassCache(file.descriptor()); // where it can't be passed by it is emptied of the file
    ::lseek(file.descriptor(), 0, SEEK_SET);
    start = Clock::now();
    while (uninterrupted([&] { return ::read(file.descriptor(), chunk.get(), chunkBytes); }) > 0) {
    }
    const double readTime = secondsSince(start);

    const double moved = static_cast<double>(chunks) * static_cast<double>(chunkBytes) / 1e6;
    return SpeedResult{.writeMBps = moved / writeTime, .readMBps = moved / readTime};
}

} // namespace korvanti::VolumeService
