#pragma once

#include <expected>
#include <string>

namespace korvanti {

/// Why the guard refused.
struct GuardError {
    enum class Kind {
        notDeletable,
        invalidPath,
        outsideAllowedRoots,
        protectedPath,
        containsMountPoint,
        isRepository,
        missing,
        invalidIdentifier
    };
    Kind kind = Kind::invalidPath;
    std::string payload; ///< a reason, a path or an identifier, as the kind says

    /// The text for the user.
    [[nodiscard]] std::string description() const;

    bool operator==(const GuardError&) const = default;
};

/// The gate in front of everything that removes or moves what the user has: refuses by default, and allows
/// only what lies in the home folder and is neither a folder that everybody needs, nor a credential, nor
/// personal data. Changes nothing. Safe from any thread.
class SafetyGuard {
public:
    /// `home` is an absolute path.
    explicit SafetyGuard(const std::string& home);

    struct PathOptions {
        bool allowRepository = false;
        bool allowApplicationBundle =
            false; ///< a bundle directly in one of the two application folders may pass
    };

    /// To be asked directly before each single removal, never for a batch in advance. The path is judged as
    /// text and by `lstat`; links are not resolved.
    [[nodiscard]] std::expected<void, GuardError> validate(const std::string& path,
                                                           PathOptions options) const;

private:
    std::string home_; ///< normalised, without a trailing slash
};

} // namespace korvanti
