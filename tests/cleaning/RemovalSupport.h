#pragma once

#include "base/FileDescriptor.h"
#include "base/FileError.h"
#include "cleaning/SafetyGuard.h"
#include "cleaning/TreeRemover.h"
#include "support/TempFolder.h"

#include <cerrno>
#include <expected>
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <system_error>
#include <utility>

namespace korvanti {

inline void PrintTo(const FileError& error, std::ostream* stream) {
    *stream << error.path << ": " << error.code.message();
}

inline void PrintTo(const GuardError& error, std::ostream* stream) {
    *stream << error.description();
}

inline void PrintTo(const std::expected<void, FileError>& result, std::ostream* stream) {
    if (result)
        *stream << "done";
    else
        PrintTo(result.error(), stream);
}

namespace testing {

using Names = std::set<std::string>;
/// How a removal or a move to the Trash ends.
using Removal = std::expected<void, FileError>;
using Refusal = SafetyGuard::Refusal;

inline const Removal done;
constexpr std::errc stale = static_cast<std::errc>(ESTALE);

inline FileError fileError(std::errc code, const std::string& path) {
    return {.path = path, .code = std::make_error_code(code), .systemText = {}};
}

inline Removal failure(std::errc code, const std::string& path) {
    return std::unexpected(fileError(code, path));
}

/// What the guard of a home lets through. A refusal ends the test.
inline AdmittedEntry admitted(const std::string& home, const std::string& path,
                              SafetyGuard::PathOptions options = {}) {
    auto entry = SafetyGuard(home).admit(path, options);
    return std::move(entry).value();
}

/// Nothing where the guard of a home lets the path through.
inline std::optional<Refusal> refusal(const std::string& home, const std::string& path,
                                      SafetyGuard::PathOptions options = {}) {
    const auto entry = SafetyGuard(home).admit(path, options);
    return entry ? std::nullopt : std::optional(entry.error());
}

inline Refusal refused(GuardError::Kind kind, const std::string& path) {
    return GuardError{kind, path};
}

inline Refusal refused(std::errc code, const std::string& path) {
    return fileError(code, path);
}

/// Everything below a folder by its path from there; links are not followed. Empty also for no folder.
inline Names namesBelow(const std::string& folder) {
    Names names;
    std::error_code error;
    for (auto entry = std::filesystem::recursive_directory_iterator(folder, error);
         !error && entry != std::filesystem::recursive_directory_iterator(); entry.increment(error))
        names.insert(entry->path().lexically_relative(folder).string());
    return names;
}

/// Permissions and the special bits.
inline unsigned modeOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
}

/// A home folder with precious things beside it, which must be the same at the end.
class RemovalTests : public ::testing::Test {
protected:
    RemovalTests() {
        temp.file("precious/file", {.text = "irreplaceable"});
        temp.file("precious/folder/deep/file", {.text = "irreplaceable"});
        temp.folder("home/arena");
    }
    ~RemovalTests() override {
        EXPECT_EQ(namesBelow(precious()), (Names{"file", "folder", "folder/deep", "folder/deep/file"}));
        EXPECT_EQ(textOf(precious("file")), "irreplaceable");
        EXPECT_EQ(textOf(precious("folder/deep/file")), "irreplaceable");
    }

    [[nodiscard]] std::string home(const std::string& relative = {}) const { return at("home", relative); }
    [[nodiscard]] std::string precious(const std::string& relative = {}) const {
        return at("precious", relative);
    }
    /// The folder in the home where all happens.
    [[nodiscard]] std::string arena(const std::string& relative = {}) const {
        return at("home/arena", relative);
    }
    [[nodiscard]] Names left() const { return namesBelow(arena()); }
    [[nodiscard]] Removal remove(const std::string& relative) const {
        return TreeRemover::remove(admitted(home(), arena(relative)));
    }
    void rename(const std::string& from, const std::string& to) const {
        std::filesystem::rename(arena(from), arena(to));
    }
    void makePipe(const std::string& relative) const {
        ASSERT_EQ(::mkfifo(temp.path(relative).c_str(), 0600), 0);
    }
    void makeSocket(const std::string& relative) const {
        const FileDescriptor server(::socket(AF_UNIX, SOCK_STREAM, 0));
        sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
        temp.path(relative).copy(address.sun_path, sizeof address.sun_path - 1);
        ASSERT_EQ(::bind(server.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    }

    TempFolder temp;

private:
    [[nodiscard]] std::string at(const std::string& folder, const std::string& relative) const {
        return temp.path(relative.empty() ? folder : folder + "/" + relative);
    }
};

} // namespace testing
} // namespace korvanti
