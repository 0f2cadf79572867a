#pragma once

#include "scan/CleanupItem.h"

#include <QObject>
#include <QString>
#include <qqmlregistration.h>
#include <string_view>

namespace korvanti {

[[nodiscard]] std::string_view symbol(Safety safety);

/// How the classes of safety are shown, for QML: each by its place in the order of `allCases<Safety>`. A
/// number that stands for none gives empty text.
class SafetyDisplay : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    using QObject::QObject;
    Q_INVOKABLE [[nodiscard]] QString label(int safety) const;
    Q_INVOKABLE [[nodiscard]] QString symbol(int safety) const;
};

} // namespace korvanti
