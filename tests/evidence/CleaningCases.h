#pragma once

#include "DiskPicture.h"
#include "scan/CleanupItem.h"

#include <cstdint>
#include <string>
#include <vector>

namespace korvanti::testing {

/// One thing to make before a run. Parents are made as folders; what can't be made is left out.
struct Making {
    enum class Kind { folder, file, link, hardLink, memoryMount, bindMount };
    Kind kind = Kind::folder;
    std::string path;
    std::string text = {}; ///< contents, the target of a link, the existing file, what a bind mount shows
    unsigned mode = 0;     ///< of a folder or a file; 0 for the usual one
};

/// One random try: what lies on the disk and what is to be cleaned.
struct CleaningCase {
    std::uint64_t seed = 0;
    std::string home; ///< as the cleaner is told
    bool hasLog = false;
    std::vector<Making> makings;
    std::vector<CleanupItem> items;
};

inline constexpr const char* realHome = "/Users/tester";
/// The folders in "/" that cases lie in.
extern const std::vector<std::string> worldTops;

[[nodiscard]] CleaningCase randomCase(std::uint64_t seed);
/// For people, a line for each making and each item.
[[nodiscard]] std::string described(const CleaningCase& tried);

/// The disk of one case, in the box only: made by the constructor, gone at the end. Only one at a time.
class CaseWorld {
public:
    explicit CaseWorld(const std::vector<Making>& makings);
    ~CaseWorld();
    CaseWorld(const CaseWorld&) = delete;
    CaseWorld& operator=(const CaseWorld&) = delete;

    [[nodiscard]] const std::vector<MountMade>& mounts() const { return mounts_; }
    /// Takes the mounts away, wherever they are by now. False when one stays.
    bool unmountAll();

private:
    bool clear();
    void make(const Making& making);
    void mount(const Making& making);

    std::vector<MountMade> mounts_;
};

} // namespace korvanti::testing
