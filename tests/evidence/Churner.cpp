#include "Churner.h"

#include "base/FileDescriptor.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <new>
#include <random>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace korvanti::testing {
namespace {

enum class Change : std::uint32_t {
    parentForLink,
    parentAwayForLink,
    parentAway,
    folderOnTheWayForLink,
    folderOnTheWayAway,
    targetForLink,
    targetForRepository,
    targetForFile,
    targetForTarget,
    targetAway,
    insideForLink,
    deepInsideForLink,
    fileInsideForLink,
    viewInside,
    volumeInside,
    viewOverTarget,
    volumeOverWay,
    fileOverFileInside,
    newEntry,
    removedEntry,
    trashForLink
};
constexpr auto changeCount = static_cast<std::size_t>(Change::trashForLink) + 1;
constexpr std::array<std::string_view, changeCount> changeNames = {
    "parent for a link",
    "parent moved away, a link there",
    "parent moved away",
    "folder on the way for a link",
    "folder on the way moved away",
    "target for a link",
    "target for a repository",
    "target for a file",
    "target for another target",
    "target moved away",
    "folder inside for a link",
    "folder deep inside for a link",
    "file inside for a link",
    "view of what is precious mounted inside",
    "volume mounted inside",
    "view of what is precious mounted over the target",
    "volume mounted over a folder on the way",
    "precious file mounted over a file inside",
    "new entry inside",
    "entry inside removed",
    "Trash for a link",
};

bool contains(std::initializer_list<Change> changes, Change change) {
    return std::ranges::find(changes, change) != changes.end();
}

/// Whether it belongs to a race. What was moved to the Trash is compared as a whole, so nothing in it
/// changes; in the Trash itself anything may go, repositories too.
bool isPartOf(Race race, Change change) {
    using enum Change;
    switch (race) {
    case Race::deleting:
        return change != trashForLink;
    case Race::trashing:
        return !contains({newEntry, removedEntry}, change);
    case Race::emptyingTrash:
        return !contains({parentForLink, parentAwayForLink, parentAway, folderOnTheWayForLink,
                          folderOnTheWayAway, targetForRepository, volumeOverWay},
                         change);
    }
    std::unreachable();
}

constexpr int passage = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

FileDescriptor opened(const FileDescriptor& folder, const std::string& name, int flags = passage) {
    return FileDescriptor(::openat(folder.get(), name.c_str(), flags));
}

std::string targetName(std::size_t target) {
    return "t" + std::to_string(target);
}

} // namespace

struct Churner::Shared {
    std::atomic<State> wanted = State::rest;
    std::atomic<State> state = State::rest;
    std::atomic<Race> race = Race::deleting;
    std::atomic<std::size_t> target = 0;
    std::array<std::atomic<std::uint64_t>, changeCount> counts{};
};

/// Lives in the child process.
class Churner::Child {
public:
    Child(Shared& shared, const std::string& root, std::vector<std::string> links)
        : shared_(shared), links_(std::move(links)),
          root_(::open(root.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)), volume_(opened(root_, "volume")),
          preciousFile_(opened(opened(root_, "precious"), "file", O_PATH)),
          preciousTargets_(opened(opened(root_, "precious"), "q")) {}

    [[noreturn]] void run() {
        while (true) {
            while (shared_.wanted != State::churn)
                std::this_thread::sleep_for(std::chrono::microseconds(200));
            shared_.state = State::churn;
            race_ = shared_.race;
            openAll();
            while (shared_.wanted == State::churn)
                round();
            held_ = {};
            shared_.state = State::rest;
        }
    }

private:
    /// What the tree consists of when a race begins.
    struct Held {
        FileDescriptor home, arena, trash, spare;
        std::array<FileDescriptor, parentCount> parents, ways;
        std::array<FileDescriptor, targetCount> targets, insides, deeps;
    };

    /// A change that was made, and how to undo it.
    struct Made {
        enum class Undo { nothing, exchange, moveBack, replaceLink, unmount };
        Undo undo = Undo::nothing;
        int folder = -1;
        std::string name;
        std::string spareName;
        FileDescriptor mount;
    };

    void openAll() {
        held_.home = opened(root_, "home");
        held_.arena = opened(held_.home, "arena");
        held_.trash = opened(held_.home, ".Trash");
        held_.spare = opened(root_, "spare");
        for (std::size_t i = 0; i < parentCount; ++i) {
            held_.parents[i] = opened(held_.arena, "p" + std::to_string(i));
            held_.ways[i] = opened(held_.parents[i], "q");
        }
        for (std::size_t i = 0; i < targetCount; ++i) {
            held_.targets[i] = opened(folderOf(i), targetName(i));
            held_.insides[i] = opened(held_.targets[i], "sub");
            held_.deeps[i] = opened(held_.insides[i], "deep");
        }
    }

    [[nodiscard]] const FileDescriptor& folderOf(std::size_t target) const {
        return race_ == Race::emptyingTrash ? held_.trash : held_.ways[target % parentCount];
    }

    /// One change or two at a time, for a moment.
    void round() {
        const auto target = nextTarget();
        std::array<Made, 2> made;
        const std::size_t count = 1 + random_() % 2;
        for (std::size_t i = 0; i < count; ++i)
            made[i] = make(target, "spare" + std::to_string(i));
        linger();
        for (std::size_t i = count; i-- > 0;)
            undo(made[i]);
    }

    std::size_t nextTarget() {
        if (race_ != Race::emptyingTrash)
            return std::min(shared_.target + random_() % 2, targetCount - 1);
        struct stat status {};
        std::size_t target = 0;
        for (int attempt = 0; attempt < 20; ++attempt) {
            target = random_() % targetCount;
            if (::fstatat(held_.trash.get(), targetName(target).c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0)
                break;
        }
        return target;
    }

    void linger() {
        const auto rounds = random_() % 4 == 0 ? random_() % 200'000 : random_() % 8'000;
        for (std::uint32_t i = 0; i < rounds; ++i)
            idle_ = i;
    }

    Made make(std::size_t target, const std::string& spareName) {
        const auto change = static_cast<Change>(random_() % changeCount);
        if (!isPartOf(race_, change))
            return {};
        auto made = attempt(change, target, spareName);
        if (made.undo != Made::Undo::nothing)
            ++shared_.counts[static_cast<std::size_t>(change)];
        return made;
    }

    Made attempt(Change change, std::size_t target, const std::string& spareName) {
        using enum Change;
        const auto parent = target % parentCount;
        const auto parentName = "p" + std::to_string(parent);
        const auto& away = links_[random_() % links_.size()];
        const auto name = targetName(target);
        const auto& folder = folderOf(target);
        const auto& inside = held_.insides[target];
        switch (change) {
        case parentForLink:
            return exchangeForLink(held_.arena, parentName, away, spareName);
        case parentAwayForLink:
            return replaceByLink(held_.arena, parentName, away, spareName);
        case parentAway:
            return moveAway(held_.arena, parentName, spareName);
        case folderOnTheWayForLink:
            return exchangeForLink(held_.parents[parent], "q", away + "/q", spareName);
        case folderOnTheWayAway:
            return moveAway(held_.parents[parent], "q", spareName);
        case targetForLink:
            return exchangeForLink(folder, name, away + "/q/" + name, spareName);
        case targetForRepository:
            return exchange(folder, name, "repository" + std::to_string(random_() % repositoryCount));
        case targetForFile:
            clear(spareName);
            ::mknodat(held_.spare.get(), spareName.c_str(), S_IFREG | 0600, 0);
            return exchange(folder, name, spareName);
        case targetForTarget:
            // Both are to go, so that nothing has to be put back.
            if (target + parentCount < targetCount)
                count(change, ::renameat2(folder.get(), name.c_str(), folder.get(),
                                          targetName(target + parentCount).c_str(), RENAME_EXCHANGE));
            return {};
        case targetAway:
            return moveAway(folder, name, spareName);
        case insideForLink:
            return exchangeForLink(held_.targets[target], "sub", away + "/q/" + name + "/sub", spareName);
        case deepInsideForLink:
            return exchangeForLink(inside, "deep", away + "/q/" + name + "/sub/deep", spareName);
        case fileInsideForLink:
            return exchangeForLink(inside, "file", away + "/q/" + name + "/sub/file", spareName);
        case viewInside:
            return mount(opened(opened(preciousTargets_, name), "sub"), inside);
        case volumeInside:
            return mount(volume_, inside);
        case viewOverTarget:
            return mount(opened(preciousTargets_, name), held_.targets[target]);
        case volumeOverWay:
            return mount(volume_, held_.ways[parent]);
        case fileOverFileInside:
            return mount(preciousFile_, opened(inside, "file", O_PATH | O_NOFOLLOW | O_CLOEXEC));
        case newEntry:
            addEntry(inside, away);
            return {};
        case removedEntry:
            count(change, ::unlinkat(inside.get(), "file", 0));
            return {};
        case trashForLink:
            return exchangeForLink(held_.home, ".Trash", away + "/q", spareName);
        }
        std::unreachable();
    }

    void count(Change change, int result) {
        if (result == 0)
            ++shared_.counts[static_cast<std::size_t>(change)];
    }

    void addEntry(const FileDescriptor& folder, const std::string& away) {
        const auto name = "new" + std::to_string(random_() % 1000);
        switch (random_() % 3) {
        case 0:
            return count(Change::newEntry, ::mkdirat(folder.get(), name.c_str(), 0700));
        case 1:
            return count(Change::newEntry, ::symlinkat(away.c_str(), folder.get(), name.c_str()));
        default:
            return count(Change::newEntry, ::mknodat(folder.get(), name.c_str(), S_IFREG | 0600, 0));
        }
    }

    Made exchange(const FileDescriptor& folder, const std::string& name, const std::string& spareName) {
        if (::renameat2(folder.get(), name.c_str(), held_.spare.get(), spareName.c_str(), RENAME_EXCHANGE) !=
            0)
            return {};
        return {Made::Undo::exchange, folder.get(), name, spareName, {}};
    }

    Made exchangeForLink(const FileDescriptor& folder, const std::string& name, const std::string& target,
                         const std::string& spareName) {
        makeSpareLink(spareName, target);
        return exchange(folder, name, spareName);
    }

    void makeSpareLink(const std::string& spareName, const std::string& target) {
        clear(spareName);
        ::symlinkat(target.c_str(), held_.spare.get(), spareName.c_str());
    }

    /// Of what an earlier change could not put back. Only links of our own are removed.
    void clear(const std::string& spareName) {
        char byte = 0;
        if (::readlinkat(held_.spare.get(), spareName.c_str(), &byte, 1) == 1)
            ::unlinkat(held_.spare.get(), spareName.c_str(), 0);
        else
            ::renameat(held_.spare.get(), spareName.c_str(), held_.spare.get(),
                       ("litter" + std::to_string(litter_++)).c_str());
    }

    Made moveAway(const FileDescriptor& folder, const std::string& name, const std::string& spareName) {
        clear(spareName);
        if (::renameat2(folder.get(), name.c_str(), held_.spare.get(), spareName.c_str(), RENAME_NOREPLACE) !=
            0)
            return {};
        return {Made::Undo::moveBack, folder.get(), name, spareName, {}};
    }

    Made replaceByLink(const FileDescriptor& folder, const std::string& name, const std::string& target,
                       const std::string& spareName) {
        auto made = moveAway(folder, name, spareName);
        if (made.undo == Made::Undo::nothing)
            return made;
        ::symlinkat(target.c_str(), folder.get(), name.c_str());
        made.undo = Made::Undo::replaceLink;
        return made;
    }

    /// A second view of what `source` leads to, put over the held folder or file wherever that is.
    Made mount(const FileDescriptor& source, const FileDescriptor& over) {
        constexpr unsigned clone = OPEN_TREE_CLONE | OPEN_TREE_CLOEXEC | AT_EMPTY_PATH;
        FileDescriptor view(::open_tree(source.get(), "", clone));
        if (!view || !over ||
            ::move_mount(view.get(), "", over.get(), "", MOVE_MOUNT_F_EMPTY_PATH | MOVE_MOUNT_T_EMPTY_PATH) !=
                0)
            return {};
        return {Made::Undo::unmount, -1, {}, {}, std::move(view)};
    }

    void undo(const Made& made) {
        switch (made.undo) {
        case Made::Undo::nothing:
            return;
        case Made::Undo::exchange:
            if (::renameat2(held_.spare.get(), made.spareName.c_str(), made.folder, made.name.c_str(),
                            RENAME_EXCHANGE) == 0)
                return;
            break; // what was put there is gone
        case Made::Undo::moveBack:
            break;
        case Made::Undo::replaceLink:
            ::unlinkat(made.folder, made.name.c_str(), 0);
            break;
        case Made::Undo::unmount:
            if (::umount2(("/proc/self/fd/" + std::to_string(made.mount.get())).c_str(), MNT_DETACH) != 0)
                std::perror("umount");
            return;
        }
        ::renameat2(held_.spare.get(), made.spareName.c_str(), made.folder, made.name.c_str(),
                    RENAME_NOREPLACE);
    }

    Shared& shared_;
    std::vector<std::string> links_;
    FileDescriptor root_, volume_, preciousFile_, preciousTargets_;
    Held held_;
    Race race_ = Race::deleting;
    std::uint64_t litter_ = 0;
    std::minstd_rand random_{1};
    volatile std::uint32_t idle_ = 0;
};

Churner::Churner(std::string root, std::vector<std::string> links) {
    void* memory = ::mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    shared_ = new (memory) Shared;
    const auto parent = ::getpid();
    process_ = ::fork();
    if (process_ != 0) {
        EXPECT_GT(process_, 0);
        return;
    }
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != parent)
        ::_exit(1);
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &limit);
    Child(*shared_, root, std::move(links)).run();
}

Churner::~Churner() {
    if (process_ > 0) {
        ::kill(process_, SIGKILL);
        ::waitpid(process_, nullptr, 0);
    }
    ::munmap(shared_, sizeof(Shared));
}

void Churner::start(Race race) {
    shared_->race = race;
    shared_->target = 0;
    order(State::churn);
}

void Churner::look(std::size_t target) {
    shared_->target = target;
}

void Churner::stop() {
    order(State::rest);
}

void Churner::order(State state) {
    shared_->wanted = state;
    while (process_ > 0 && shared_->state != state) {
        if (::waitpid(process_, nullptr, WNOHANG) != 0) {
            process_ = -1;
            FAIL() << "the other program is gone";
        }
        std::this_thread::sleep_for(std::chrono::microseconds(100));
    }
}

std::vector<Churner::Count> Churner::counts() const {
    std::vector<Count> counts;
    for (std::size_t i = 0; i < changeCount; ++i)
        counts.push_back({changeNames[i], shared_->counts[i]});
    return counts;
}

} // namespace korvanti::testing
