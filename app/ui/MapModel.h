#pragma once

#include "shell/AppModel.h"
#include "ui/DateClock.h"
#include "ui/MapTree.h"

#include <QObject>
#include <QString>
#include <qqmlregistration.h>
#include <string>

namespace korvanti {

/// The saved map of the disk: what stands above its tree, and what the menu of a row does.
class MapModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the program")
    /// Roles: name, path, depth, isExpandable, isExpanded, fraction (of the bar, 0 to 1), sizeText, lockText
    /// (empty where all could be read), spokenText, spokenState.
    Q_PROPERTY(korvanti::MapTree* tree READ tree CONSTANT)
    Q_PROPERTY(bool hasMap READ hasMap NOTIFY mapChanged)
    Q_PROPERTY(QString caption READ caption NOTIFY captionChanged)
    Q_PROPERTY(QString actionText READ actionText NOTIFY mapChanged)
    Q_PROPERTY(bool isMapping READ isMapping NOTIFY isMappingChanged)
    Q_PROPERTY(QString mapStatus READ mapStatus NOTIFY mapStatusChanged)
    Q_PROPERTY(korvanti::DateClock* clock READ clock CONSTANT)

public:
    explicit MapModel(AppModel& model, Clock clock = currentInstant, QObject* parent = nullptr);

    [[nodiscard]] MapTree* tree() { return &tree_; }
    [[nodiscard]] bool hasMap() const { return model_.storageMap().has_value(); }
    [[nodiscard]] QString caption() const;
    [[nodiscard]] QString actionText() const { return hasMap() ? "Petakan ulang" : "Petakan sekarang"; }
    [[nodiscard]] bool isMapping() const { return model_.isMapping(); }
    [[nodiscard]] QString mapStatus() const;
    [[nodiscard]] DateClock* clock() { return &clock_; }

    Q_INVOKABLE void generate();

    /// From now on the menu is about that row's path, whatever becomes of the row.
    Q_INVOKABLE void openMenu(int row);
    Q_INVOKABLE void reveal();
    Q_INVOKABLE void copyPath();

signals:
    void mapChanged();
    void captionChanged();
    void isMappingChanged();
    void mapStatusChanged();

private:
    void updateMap();

    AppModel& model_;
    DateClock clock_;
    MapTree tree_;
    std::string menuPath_;
};

} // namespace korvanti
