#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace korvanti::testing {

/// A fresh folder on the real disk, its path resolved, removed with all that is in it at the end. Every
/// operation fails the running test when the system refuses, and gives the full path of what it made.
class TempFolder {
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    /// The folder itself, or a path inside it.
    [[nodiscard]] std::string path(std::string_view relative = {}) const;

    /// What a file holds; missing parents are made.
    struct File {
        std::string text = {};
        std::int64_t allocatedBytes = 0;           ///< really allocated, beyond the text
        std::int64_t sparseBytes = 0;              ///< length without blocks
        std::optional<std::int64_t> modified = {}; ///< seconds since 1970
    };
    std::string file(std::string_view relative, const File& contents) const;
    std::string file(std::string_view relative) const { return file(relative, File{}); }
    std::string folder(std::string_view relative) const;
    std::string symlink(std::string_view relative, const std::string& target) const;
    std::string hardLink(std::string_view relative, const std::string& existing) const;
    void setModified(std::string_view relative, std::int64_t secondsSince1970) const;
    void setMode(std::string_view relative, unsigned mode) const;

protected:
    /// Takes over a folder that stands already, to be removed at the end like a fresh one.
    explicit TempFolder(std::string path);

private:
    std::string root_;
};

/// The blocks that a path occupies by `lstat`, in bytes: what a measurement is compared with.
[[nodiscard]] std::int64_t blocksOf(const std::string& path);

/// The whole of a file; fails the running test when it can't be read.
[[nodiscard]] std::string textOf(const std::string& path);

} // namespace korvanti::testing
