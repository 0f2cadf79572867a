#include "Require.h"
#include "process/GitOutput.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

using namespace korvanti;

namespace {

const std::string repository = "/code/app";

/// As the standard library sees it: a path that is in its normal form and begins with no way up.
bool leadsDown(const std::string& piece) {
    const auto normal = std::filesystem::path(piece).lexically_normal().string();
    return !piece.empty() && normal == piece && !piece.starts_with('/') && !piece.ends_with('/') &&
           piece != "." && piece != ".." && !piece.starts_with("../");
}

std::vector<std::string> expectedFolders(std::string_view output) {
    std::vector<std::string> folders;
    std::string piece;
    for (const char c : std::string(output) + '\0') {
        if (c != '\0') {
            piece += c;
            continue;
        }
        if (piece.ends_with('/') && leadsDown(piece.substr(0, piece.size() - 1)))
            folders.push_back(piece.substr(0, piece.size() - 1));
        piece.clear();
    }
    return folders;
}

void checkCommitTime(std::string_view output) {
    const auto time = GitOutput::commitTime(output);
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    const bool isPlain = !output.empty() && output.size() <= 10 && std::ranges::all_of(output, isDigit);
    require(!isPlain || (time && wholeSeconds(*time) == std::stoll(std::string(output))));
    require(!time || std::ranges::any_of(output, isDigit));
}

void checkGitFolder(std::string_view text) {
    const auto folder = GitOutput::gitFolder(text, repository);
    require(folder.has_value() == (text.starts_with("gitdir:") || text.contains("\ngitdir:")));
    require(!folder || folder->starts_with(repository + "/") ||
            (folder->starts_with('/') && text.contains(*folder)));
    require(!folder || !folder->contains('\n'));
}

} // namespace

/// Whatever git prints or a ".git" file says: a folder lies below the repository, and nothing else is read
/// into the text than it says.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto text = textOf(data, size);
    require(std::ranges::equal(GitOutput::folders(text), expectedFolders(text)));
    checkCommitTime(text);
    checkGitFolder(text);
    return 0;
}
