#pragma once

#include "shell/AppModel.h"
#include "ui/RowList.h"
#include "ui/SteppedSetting.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QUrl>
#include <qqmlregistration.h>
#include <string>
#include <vector>

namespace korvanti {

/// The user's settings; each change is saved at once.
class SettingsModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the program")

    /// Roles: path, fullPath.
    Q_PROPERTY(korvanti::RowList* folders READ folders CONSTANT)
    /// Why folders were not added; empty when all were.
    Q_PROPERTY(QString folderMessage READ folderMessage NOTIFY folderMessageChanged)
    Q_PROPERTY(korvanti::SteppedSetting* inactiveDays READ inactiveDays CONSTANT)
    Q_PROPERTY(korvanti::SteppedSetting* lowSpace READ lowSpace CONSTANT)
    Q_PROPERTY(bool isLoginItem READ isLoginItem NOTIFY loginItemChanged)
    /// What the system said when it refused the last change.
    Q_PROPERTY(QString loginMessage READ loginMessage NOTIFY loginItemChanged)
    Q_PROPERTY(QUrl homeFolder READ homeFolder CONSTANT) ///< where the choice of a folder begins

public:
    explicit SettingsModel(AppModel& model, QObject* parent = nullptr);

    [[nodiscard]] RowList* folders() { return &folders_; }
    [[nodiscard]] const QString& folderMessage() const { return folderMessage_; }
    /// Local folders that the user chose, each by the bytes of its path. One that is there already changes
    /// nothing; one that can't be kept is told in `folderMessage`.
    void addFolders(const std::vector<std::string>& paths);
    /// The same as a dialog gives them.
    Q_INVOKABLE void addFolderUrls(const QList<QUrl>& urls);
    Q_INVOKABLE void removeFolder(int row); ///< a number that is no row changes nothing

    [[nodiscard]] SteppedSetting* inactiveDays() { return &inactiveDays_; }
    [[nodiscard]] SteppedSetting* lowSpace() { return &lowSpace_; }

    [[nodiscard]] bool isLoginItem() const { return model_.isLoginItem(); } ///< asks the system
    [[nodiscard]] const QString& loginMessage() const { return loginMessage_; }
    Q_INVOKABLE void setLoginItem(bool enabled);
    [[nodiscard]] static QUrl homeFolder();

    /// The window comes into sight: the system's own settings may have changed, and old messages are old.
    Q_INVOKABLE void opened();
    Q_INVOKABLE void openFullDiskAccessSettings();
    Q_INVOKABLE void revealLog();

signals:
    void folderMessageChanged();
    void loginItemChanged();

private:
    void updateFolders();
    void setFolderMessage(const QString& message);

    AppModel& model_;
    RowList folders_;
    QString folderMessage_;
    SteppedSetting inactiveDays_;
    SteppedSetting lowSpace_;
    QString loginMessage_;
};

} // namespace korvanti
