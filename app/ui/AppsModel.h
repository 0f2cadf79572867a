#pragma once

#include "shell/AppModel.h"
#include "ui/AppListModel.h"
#include "ui/UninstallModel.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <qqmlregistration.h>

namespace korvanti {

/// What the pane of applications shows and does. They are listed when the pane is opened and there are none.
/// Rows are named by their number in `rows`.
class AppsModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the program")
    Q_PROPERTY(korvanti::AppListModel* rows READ rows CONSTANT)
    Q_PROPERTY(korvanti::UninstallModel* uninstall READ uninstall CONSTANT)

    Q_PROPERTY(QStringList filters READ filters CONSTANT)
    Q_PROPERTY(int filterIndex READ filterIndex WRITE setFilterIndex NOTIFY filterIndexChanged)
    Q_PROPERTY(QString summary READ summary NOTIFY contentsChanged) ///< empty where nothing is suggested

    Q_PROPERTY(bool isLoading READ isLoading NOTIFY contentsChanged)
    /// There is nothing to show yet.
    Q_PROPERTY(bool isFirstLoading READ isFirstLoading NOTIFY contentsChanged)
    /// There is nothing to list; the two texts say why.
    Q_PROPERTY(bool isEmpty READ isEmpty NOTIFY contentsChanged)
    Q_PROPERTY(QString emptyTitle READ emptyTitle NOTIFY contentsChanged)
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY contentsChanged)

public:
    explicit AppsModel(AppModel& model, Clock clock = currentInstant, QObject* parent = nullptr);

    [[nodiscard]] AppListModel* rows() { return &rows_; }
    [[nodiscard]] UninstallModel* uninstall() { return &uninstall_; }

    [[nodiscard]] QStringList filters() const;
    [[nodiscard]] int filterIndex() const;
    void setFilterIndex(int index);
    [[nodiscard]] QString summary() const;

    [[nodiscard]] bool isLoading() const { return model_.appsLoading(); }
    [[nodiscard]] bool isFirstLoading() const { return model_.appsLoading() && model_.apps().empty(); }
    [[nodiscard]] bool isEmpty() const { return rows_.rowCount() == 0 && !isFirstLoading(); }
    [[nodiscard]] QString emptyTitle() const;
    [[nodiscard]] QString emptyText() const;

    Q_INVOKABLE void reload();
    /// Opens the sheet about that row; nothing for an application of the system.
    Q_INVOKABLE void openUninstall(int row);

signals:
    void filterIndexChanged();
    void contentsChanged();

private:
    void loadWhenOpen();

    AppModel& model_;
    AppListModel rows_;
    UninstallModel uninstall_;
};

} // namespace korvanti
