#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

/// A race between the cleaner and another program over one tree:
///
///     home/arena/p0…p3/q/t0…     what the cleaner is to remove; each target in one of the four parents
///     home/.Trash/t0…           the same, where the Trash is to be emptied
///     precious/q/t0…            what must never change, with the names of the targets
///     spare/                    what the other program puts in their place, repository0… among it
///     volume/                   where a memory file system is mounted
namespace korvanti::testing {

inline constexpr std::size_t targetCount = 200;
inline constexpr std::size_t parentCount = 4;
inline constexpr std::size_t repositoryCount = 16;

enum class TargetKind { tree, file, link, emptyFolder };
[[nodiscard]] constexpr TargetKind kindOfTarget(std::size_t target) {
    switch (target % 8) {
    case 5:
        return TargetKind::file;
    case 6:
        return TargetKind::link;
    case 7:
        return TargetKind::emptyFolder;
    default:
        return TargetKind::tree;
    }
}

/// What the cleaner does meanwhile.
enum class Race : std::uint32_t { deleting, trashing, emptyingTrash };

/// The other program: a child process that changes the tree as fast as it can. It swaps folders on the way,
/// targets and what is in them for links to what is precious, for repositories and for other files, moves
/// them away and back, mounts volumes and views of what is precious in them, adds and removes entries. It
/// reaches everything by descriptors that it opened while the tree was at rest, and never follows a link. It
/// puts back what it did, as far as it is still there.
class Churner {
public:
    /// `root` holds the tree; what `links` names is what its links lead to, each a folder with q/t0… in it.
    Churner(std::string root, std::vector<std::string> links);
    /// Kills it.
    ~Churner();
    Churner(const Churner&) = delete;
    Churner& operator=(const Churner&) = delete;

    void start(Race race);
    /// The target that the cleaner is at now.
    void look(std::size_t target);
    /// Returns when it is at rest and nothing is mounted any more. Fails the running test if it died.
    void stop();

    struct Count {
        std::string_view change;
        std::uint64_t made = 0;
    };
    [[nodiscard]] std::vector<Count> counts() const;

private:
    struct Shared;
    class Child;
    enum class State : std::uint32_t { rest, churn };
    void order(State state);

    Shared* shared_ = nullptr;
    pid_t process_ = -1;
};

} // namespace korvanti::testing
