#pragma once

class QQmlEngine;

namespace korvanti {

/// Makes an engine ready for this module: where its files are, and who draws its symbols.
void prepareForUi(QQmlEngine& engine);

} // namespace korvanti
