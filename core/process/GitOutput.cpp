#include "process/GitOutput.h"

#include "base/Text.h"
#include "fs/PathTools.h"

namespace korvanti::GitOutput {

std::vector<std::string_view> folders(std::string_view output) {
    std::vector<std::string_view> folders;
    for (auto piece : Text::pieces(output, '\0')) {
        if (!piece.ends_with('/'))
            continue; // a file
        piece.remove_suffix(1);
        if (PathTools::leadsDown(piece))
            folders.push_back(piece);
    }
    return folders;
}

std::optional<Instant> commitTime(std::string_view output) {
    return Text::integer(Text::trimmed(output)).transform(instantFromSeconds);
}

std::optional<std::string> gitFolder(std::string_view text, const std::string& repository) {
    for (const auto line : Text::pieces(text, '\n')) {
        constexpr std::string_view key = "gitdir:";
        if (!line.starts_with(key))
            continue;
        const auto path = Text::trimmed(line.substr(key.size()));
        return path.starts_with('/') ? std::string(path) : PathTools::joined(repository, path);
    }
    return std::nullopt;
}

} // namespace korvanti::GitOutput
