#include "TreePicture.h"

#include "base/FileDescriptor.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string_view>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace korvanti::testing {
namespace {

constexpr std::string_view namesBegin = "\nnames:";

std::string readWhole(int file, const std::string& path) {
    std::string bytes;
    char buffer[64 * 1024];
    ssize_t count = 0;
    while ((count = ::read(file, buffer, sizeof buffer)) > 0)
        bytes.append(buffer, static_cast<std::size_t>(count));
    EXPECT_EQ(count, 0) << path << " can't be read";
    return bytes;
}

/// Those that a user can set, in the order of their names.
std::string attributesOf(int file, const std::string& path) {
    char list[4096];
    const ssize_t length = ::flistxattr(file, list, sizeof list);
    EXPECT_GE(length, 0) << path << ": no list of attributes";
    std::set<std::string> attributes;
    for (const char* name = list; name < list + length; name += std::string_view(name).size() + 1) {
        char value[4096];
        const ssize_t size = ::fgetxattr(file, name, value, sizeof value);
        EXPECT_GE(size, 0) << path << ": " << name;
        if (std::string_view(name).starts_with("user.") && size >= 0)
            attributes.insert(name + ("=" + std::string(value, static_cast<std::size_t>(size))));
    }
    std::string text;
    for (const auto& attribute : attributes)
        text.append(" ").append(attribute);
    return text;
}

class Painter {
public:
    void add(const std::string& path, const std::string& relative) {
        struct stat status {};
        if (::lstat(path.c_str(), &status) != 0)
            return;
        auto facts = std::to_string(status.st_mode);
        if (S_ISLNK(status.st_mode)) {
            facts += " " + std::filesystem::read_symlink(path).string();
        } else {
            const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
            EXPECT_TRUE(file) << path << " can't be opened";
            facts += attributesOf(file.get(), path);
            if (S_ISREG(status.st_mode)) {
                const auto bytes = readWhole(file.get(), path);
                facts += " " + std::to_string(status.st_mtim.tv_sec) + "." +
                         std::to_string(status.st_mtim.tv_nsec) + " " + std::to_string(bytes.size()) + " " +
                         (bytes.size() < 256 ? bytes : std::to_string(std::hash<std::string>()(bytes)));
                names_[status.st_ino].insert(relative);
            }
        }
        picture[relative] = facts;
        if (S_ISDIR(status.st_mode)) {
            for (const auto& entry : std::filesystem::directory_iterator(path)) {
                const auto name = entry.path().filename().string();
                add(path + "/" + name, relative.empty() ? name : relative + "/" + name);
            }
        }
    }

    /// Once all are there.
    void addNames() {
        for (const auto& [number, names] : names_) {
            if (names.size() < 2)
                continue;
            std::string all(namesBegin);
            for (const auto& name : names)
                all.append(" ").append(name);
            for (const auto& name : names)
                picture[name] += all;
        }
    }

    Snapshot picture;

private:
    std::map<ino_t, std::set<std::string>> names_;
};

} // namespace

Snapshot pictureOf(const std::string& path) {
    Painter painter;
    painter.add(path, {});
    painter.addNames();
    return painter.picture;
}

bool isPartOf(const Snapshot& some, const Snapshot& all) {
    const auto withoutNames = [](const std::string& facts) {
        return facts.substr(0, facts.rfind(namesBegin));
    };
    return std::ranges::all_of(some, [&](const auto& entry) {
        const auto found = all.find(entry.first);
        return found != all.end() && withoutNames(found->second) == withoutNames(entry.second);
    });
}

} // namespace korvanti::testing
