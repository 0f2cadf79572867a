#pragma once

#include "base/FileError.h"
#include "cleaning/AdmittedEntry.h"
#include "scan/CleanupItem.h"

#include <expected>
#include <string>
#include <variant>

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

    /// By safety class and action; for those that concern files then by the path.
    [[nodiscard]] std::expected<void, GuardError> validate(const CleanupItem& item) const;

    /// To be asked directly before each single removal, never for a batch in advance. The path is judged as
    /// text and by `lstat`; links are not resolved.
    [[nodiscard]] std::expected<void, GuardError> validate(const std::string& path,
                                                           PathOptions options) const;

    /// The guard's own refusal, or what kept it from looking.
    using Refusal = std::variant<GuardError, FileError>;

    /// The same verdict bound to the object that it is about: the entry is held open first, then judged by
    /// what is held. A path that leads through a link below the home folder is refused here, since it may
    /// lead anywhere.
    [[nodiscard]] std::expected<AdmittedEntry, Refusal> admit(const std::string& path,
                                                              PathOptions options) const;

    [[nodiscard]] const std::string& home() const { return home_; }

private:
    /// A path that passed all rules on its text.
    struct Place {
        std::string path; ///< normalised
        bool isApplication = false;
    };
    [[nodiscard]] std::expected<Place, GuardError> placeOf(const std::string& path,
                                                           PathOptions options) const;

    std::string home_; ///< normalised, without a trailing slash
};

} // namespace korvanti
