#pragma once

#include <string>
#include <system_error>

namespace korvanti {

/// Why the system did not remove or move something.
struct FileError {
    std::string path;       ///< what it concerns: the removed thing itself, or something inside it
    std::error_code code;   ///< the system's error number
    std::string systemText; ///< the platform's own words, where it has any

    /// The user lacks the right to read or to write.
    [[nodiscard]] bool isPermission() const;
    /// The text for the user: the platform's own words, or else ours with the path.
    [[nodiscard]] std::string description() const;

    bool operator==(const FileError&) const = default;
};

/// By the system's error number.
[[nodiscard]] FileError fileErrorOf(int error, std::string path);
/// Of the system call that has just failed (`errno`).
[[nodiscard]] FileError lastFileError(const std::string& path);

} // namespace korvanti
