#pragma once

namespace korvanti {

/// What each of our programs does before anything else, whoever started it and however.
void prepareProcess();

} // namespace korvanti
