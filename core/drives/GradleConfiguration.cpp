#include "drives/GradleConfiguration.h"

#include "fs/FileContents.h"
#include "fs/PathTools.h"

#include <sys/stat.h>
#include <unistd.h>

namespace korvanti::GradleConfiguration {
namespace {

constexpr int deepestFolder = 32;

void copy(const std::string& from, const std::string& to, int depth);

bool copyLink(const std::string& from, const std::string& to) {
    const auto target = PathTools::linkTarget(from);
    return target && ::symlink(target->c_str(), to.c_str()) == 0;
}

bool copyFile(const std::string& from, const std::string& to) {
    const auto bytes = FileContents::read(from);
    return bytes && FileContents::writeAtomically(to, *bytes);
}

bool copyFolder(const std::string& from, const std::string& to, int depth) {
    if (depth > deepestFolder || ::mkdir(to.c_str(), 0700) != 0)
        return false;
    for (const auto& entry : PathTools::entries(from))
        copy(PathTools::joined(from, entry.name), PathTools::joined(to, entry.name), depth + 1);
    return true;
}

void copy(const std::string& from, const std::string& to, int depth) {
    struct stat status {};
    if (::lstat(from.c_str(), &status) != 0 || PathTools::exists(to))
        return;
    if (S_ISLNK(status.st_mode)) {
        copyLink(from, to);
        return;
    }
    const bool done = S_ISDIR(status.st_mode) ? copyFolder(from, to, depth) : copyFile(from, to);
    if (done)
        ::chmod(to.c_str(), status.st_mode & 0777);
}

} // namespace

void carryOver(const std::string& from, const std::string& to) {
    for (const auto* name : {"gradle.properties", "init.d", "init.gradle", "init.gradle.kts"})
        copy(PathTools::joined(from, name), PathTools::joined(to, name), 0);
}

} // namespace korvanti::GradleConfiguration
