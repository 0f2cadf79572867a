// The bare system calls of a walk on two threads, and nothing around them: what a measurement can hope for at
// best. Prints the same sums as MeasureTree.

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <mutex>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>
#ifdef __APPLE__
#include <sys/attr.h>
#else
#include <dirent.h>
#endif

namespace {

constexpr std::size_t bufferSize = 128 * 1024;

struct Sums {
    std::int64_t bytes = 0;
    std::int64_t logicalBytes = 0;
    std::int64_t files = 0;
    std::int64_t folders = 0;
    std::int64_t folderBytes = 0;
    std::int64_t unreadable = 0;

    void add(const Sums& other) {
        bytes += other.bytes;
        logicalBytes += other.logicalBytes;
        files += other.files;
        folders += other.folders;
        folderBytes += other.folderBytes;
        unreadable += other.unreadable;
    }
};

/// Stays open until the last of its subfolders has been opened.
struct OpenFolder {
    int descriptor = -1;
    std::atomic<std::uint32_t> users = 0;
};

void release(OpenFolder* folder) {
    if (folder != nullptr && folder->users.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        ::close(folder->descriptor);
        delete folder;
    }
}

struct Job {
    OpenFolder* parent = nullptr; ///< none for the root
    std::string name;
};

class WorkList {
public:
    explicit WorkList(std::vector<Job> roots) : jobs_(std::move(roots)) {}

    /// Takes all of `more`; wakes the other thread if it waits.
    void give(std::vector<Job>& more) {
        bool wake = false;
        {
            const std::scoped_lock lock(mutex_);
            for (Job& job : more)
                jobs_.push_back(std::move(job));
            wake = waiting_ > 0;
        }
        more.clear();
        if (wake)
            changed_.notify_one();
    }

    /// The newest folders, a few at a time while there are plenty. Nothing once all threads have run out.
    bool take(std::vector<Job>& into) {
        std::unique_lock lock(mutex_);
        ++waiting_;
        if (waiting_ == threadCount && jobs_.empty()) {
            changed_.notify_all();
            return false;
        }
        changed_.wait(lock, [this] { return !jobs_.empty() || waiting_ == threadCount; });
        if (jobs_.empty())
            return false;
        --waiting_;
        const std::size_t count = jobs_.size() >= 64 ? 16 : 1;
        for (std::size_t taken = 0; taken < count; ++taken) {
            into.push_back(std::move(jobs_.back()));
            jobs_.pop_back();
        }
        return true;
    }

    static constexpr int threadCount = 2;

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<Job> jobs_;
    int waiting_ = 0;
};

#ifdef __APPLE__

/// Fields of a record are aligned to 4 bytes only, whatever their size.
template <typename Field> Field take(const char*& at) {
    Field field;
    std::memcpy(&field, at, sizeof field);
    at += sizeof field;
    return field;
}

void listFolder(int descriptor, char* buffer, OpenFolder* folder, Sums& sums, std::vector<Job>& subfolders) {
    constexpr fsobj_type_t folderType = 2; // VDIR of <sys/vnode.h>
    attrlist wanted{};
    wanted.bitmapcount = ATTR_BIT_MAP_COUNT;
    wanted.commonattr = ATTR_CMN_RETURNED_ATTRS | ATTR_CMN_NAME | ATTR_CMN_ERROR | ATTR_CMN_OBJTYPE;
    wanted.fileattr = ATTR_FILE_ALLOCSIZE | ATTR_FILE_DATALENGTH;
    for (;;) {
        const int count = ::getattrlistbulk(descriptor, &wanted, buffer, bufferSize, 0);
        if (count < 0)
            ++sums.unreadable;
        if (count <= 0)
            return;
        const char* record = buffer;
        for (int number = 0; number < count; ++number) {
            const char* at = record;
            record += take<std::uint32_t>(at);
            const auto returned = take<attribute_set_t>(at);
            if (returned.commonattr & ATTR_CMN_ERROR)
                continue;
            const char* nameReference = at;
            const char* name = nameReference + take<attrreference_t>(at).attr_dataoffset;
            if (take<fsobj_type_t>(at) == folderType) {
                ++sums.folders;
                subfolders.push_back({folder, name});
            } else {
                sums.bytes += take<off_t>(at);
                sums.logicalBytes += take<off_t>(at);
                ++sums.files;
            }
        }
    }
}

#else

void listFolder(int descriptor, char* buffer, OpenFolder* folder, Sums& sums, std::vector<Job>& subfolders) {
    for (;;) {
        const ssize_t filled = ::getdents64(descriptor, buffer, bufferSize);
        if (filled < 0)
            ++sums.unreadable;
        if (filled <= 0)
            return;
        for (ssize_t position = 0; position < filled;) {
            const auto* entry = reinterpret_cast<const dirent64*>(buffer + position);
            position += entry->d_reclen;
            const char* name = entry->d_name;
            if (name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0')))
                continue;
            struct stat status;
            if (::fstatat(descriptor, name, &status, AT_SYMLINK_NOFOLLOW) != 0)
                continue;
            const std::int64_t allocated = std::int64_t{status.st_blocks} * 512;
            if (S_ISDIR(status.st_mode)) {
                ++sums.folders;
                sums.folderBytes += allocated;
                subfolders.push_back({folder, name});
            } else {
                sums.bytes += allocated;
                sums.logicalBytes += status.st_size;
                ++sums.files;
            }
        }
    }
}

#endif

void work(WorkList& list, Sums& total, std::mutex& totalMutex) {
    const auto buffer = std::make_unique_for_overwrite<char[]>(bufferSize);
    Sums sums;
    std::vector<Job> own;
    std::vector<Job> subfolders;
    while (!own.empty() || list.take(own)) {
        const Job job = std::move(own.back());
        own.pop_back();
        const int descriptor = ::openat(job.parent != nullptr ? job.parent->descriptor : AT_FDCWD,
                                        job.name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        release(job.parent);
        if (descriptor < 0) {
            ++sums.unreadable;
            continue;
        }
        auto folder = std::make_unique<OpenFolder>();
        folder->descriptor = descriptor;
        listFolder(descriptor, buffer.get(), folder.get(), sums, subfolders);
        if (subfolders.empty()) {
            ::close(descriptor);
            continue;
        }
        folder.release()->users = static_cast<std::uint32_t>(subfolders.size());
        // The last one needs no way through the list.
        own.push_back(std::move(subfolders.back()));
        subfolders.pop_back();
        if (!subfolders.empty())
            list.give(subfolders);
    }
    const std::scoped_lock lock(totalMutex);
    total.add(sums);
}

Sums walk(char** paths, int count) {
    Sums total;
    std::vector<Job> roots;
    for (int index = 0; index < count; ++index) {
        struct stat status;
        if (::lstat(paths[index], &status) == 0)
            total.folderBytes += std::int64_t{status.st_blocks} * 512;
        roots.push_back({nullptr, paths[index]});
    }
    std::mutex totalMutex;
    WorkList list(std::move(roots));
    std::thread second([&] { work(list, total, totalMutex); });
    work(list, total, totalMutex);
    second.join();
    return total;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fputs("usage: korvanti_bare_loop TIMES FOLDER…\n", stderr);
        return 2;
    }
    Sums sums;
    for (long left = std::strtol(argv[1], nullptr, 10); left > 0; --left)
        sums = walk(argv + 2, argc - 2);
    std::printf(
        "bytes %lld\nlogicalBytes %lld\nfiles %lld\nunreadable %lld\nfolders %lld\nfolderBytes %lld\n",
        static_cast<long long>(sums.bytes), static_cast<long long>(sums.logicalBytes),
        static_cast<long long>(sums.files), static_cast<long long>(sums.unreadable),
        static_cast<long long>(sums.folders), static_cast<long long>(sums.folderBytes));
    return 0;
}
