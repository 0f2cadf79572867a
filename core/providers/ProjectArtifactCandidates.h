#pragma once

#include "providers/ProjectArtifactProvider.h"

#include <string_view>
#include <vector>

/// Which folders of the projects may be artifacts, told without measuring anything.
namespace korvanti::ProjectArtifactCandidates {

/// Asks git what the repositories ignore, and walks the loose projects a few levels down. Blocks and never
/// fails: a repository whose git doesn't answer yields none.
[[nodiscard]] std::vector<ProjectArtifactProvider::Candidate> of(const ProjectIndex& projects);

/// The name of a folder that looks like a secret or a piece of configuration, which is nobody's artifact.
[[nodiscard]] bool isProtected(std::string_view folderName);

} // namespace korvanti::ProjectArtifactCandidates
