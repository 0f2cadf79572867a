#include "ui/SettingsModel.h"

#include "fs/PathTools.h"
#include "platform/Platform.h"
#include "settings/AppPaths.h"
#include "ui/ScreenText.h"

#include <QByteArray>
#include <QStringList>
#include <algorithm>
#include <iterator>
#include <utility>

namespace korvanti {
namespace {

/// The bytes of a local path, as they are in the URL.
std::string localPath(const QUrl& url) {
    return url.isLocalFile()
               ? QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1()).toStdString()
               : std::string();
}

/// Empty where the folder can be kept.
QString refusal(const std::string& path) {
    if (Text::repaired(path) != path)
        return "Nama folder ini bukan teks UTF-8, jadi tidak bisa disimpan: " + screenText(path);
    if (!path.starts_with('/') || !PathTools::exists(path))
        return "Folder tidak ditemukan: " + screenText(path);
    return {};
}

} // namespace

SettingsModel::SettingsModel(AppModel& model, QObject* parent)
    : QObject(parent), model_(model), folders_({"path", "fullPath"}),
      inactiveDays_(model, &KorvantiSettings::inactiveDays, {.lowest = 3, .highest = 180, .step = 1},
                    "Proyek dianggap tidak aktif setelah %1 hari"),
      lowSpace_(model, &KorvantiSettings::lowSpaceWarningGB, {.lowest = 5, .highest = 100, .step = 5},
                "Peringatan bila ruang kosong < %1 GB") {
    connect(&model, &AppModel::settingsChanged, this, &SettingsModel::updateFolders);
    updateFolders();
}

void SettingsModel::updateFolders() {
    QList<RowList::Row> rows;
    for (const auto& root : model_.settings().devRoots)
        rows.append(
            {{"path", screenText(PathTools::abbreviatingHome(root))}, {"fullPath", screenText(root)}});
    folders_.setRows(rows);
}

void SettingsModel::setFolderMessage(const QString& message) {
    if (std::exchange(folderMessage_, message) != message)
        emit folderMessageChanged();
}

void SettingsModel::addFolders(const std::vector<std::string>& paths) {
    auto settings = model_.settings();
    QStringList refused;
    for (const auto& chosen : paths) {
        const std::string path(PathTools::withoutTrailingSlashes(chosen));
        if (const auto why = refusal(path); !why.isEmpty()) {
            refused.append(why);
            continue;
        }
        const auto root = PathTools::abbreviatingHome(path);
        if (std::ranges::find(settings.devRoots, root) == settings.devRoots.end())
            settings.devRoots.push_back(root);
    }
    setFolderMessage(refused.join("\n"));
    if (settings != model_.settings())
        model_.setSettings(std::move(settings));
}

void SettingsModel::addFolderUrls(const QList<QUrl>& urls) {
    std::vector<std::string> paths;
    std::ranges::transform(urls, std::back_inserter(paths), localPath);
    addFolders(paths);
}

void SettingsModel::removeFolder(int row) {
    auto settings = model_.settings();
    if (row < 0 || std::cmp_greater_equal(row, settings.devRoots.size()))
        return;
    settings.devRoots.erase(settings.devRoots.begin() + row);
    setFolderMessage({});
    model_.setSettings(std::move(settings));
}

void SettingsModel::setLoginItem(bool enabled) {
    const bool isDone = model_.setLoginItem(enabled);
    loginMessage_ = isDone ? QString() : screenText(model_.errorMessage().value_or(""));
    emit loginItemChanged();
}

QUrl SettingsModel::homeFolder() {
    return QUrl::fromLocalFile(QString::fromStdString(Platform::homeFolder()));
}

void SettingsModel::opened() {
    setFolderMessage({});
    loginMessage_.clear();
    emit loginItemChanged();
}

void SettingsModel::openFullDiskAccessSettings() {
    model_.openFullDiskAccessSettings();
}

void SettingsModel::revealLog() {
    model_.reveal(AppPaths::activity());
}

} // namespace korvanti
