#include "ui/UninstallModel.h"

#include "base/CheckedMath.h"
#include "fs/PathTools.h"
#include "ui/AppIconProvider.h"
#include "ui/ScreenText.h"

#include <QStringList>
#include <chrono>
#include <cstddef>
#include <utility>

namespace korvanti {
namespace {

RowList::Row row(const std::string& title, const std::string& path, std::int64_t bytes, bool isChosen) {
    return {{"title", screenText(title)},
            {"path", screenText(PathTools::abbreviatingHome(path))},
            {"sizeText", sizeText(bytes)},
            {"isChosen", isChosen}};
}

} // namespace

UninstallModel::UninstallModel(AppModel& model, QObject* parent) : QObject(parent), model_(model) {
    timer_.setInterval(std::chrono::seconds(1)); // applications take their time to end
    connect(&timer_, &QTimer::timeout, this, &UninstallModel::lookIfRunning);
}

void UninstallModel::open(InstalledApp app) {
    app_ = std::move(app);
    includeApp_ = true;
    selectedData_.clear();
    updateRows();
    emit appChanged();
    lookIfRunning();
    setOpen(true);
}

void UninstallModel::setOpen(bool isOpen) {
    if (isOpen)
        timer_.start();
    else
        timer_.stop();
    if (std::exchange(isOpen_, isOpen) != isOpen)
        emit isOpenChanged();
}

QString UninstallModel::icon() const {
    return AppIconProvider::nameOf(app_.path);
}

QString UninstallModel::name() const {
    return screenText(app_.name);
}

QString UninstallModel::origin() const {
    QStringList parts;
    if (app_.version)
        parts.append("Versi " + screenText(*app_.version));
    if (app_.fromAppStore)
        parts.append("App Store");
    return parts.join(" · ");
}

QString UninstallModel::totalText() const {
    return sizeText(app_.totalBytes());
}

QString UninstallModel::advice() const {
    return screenText(app_.advice);
}

QString UninstallModel::confirmText() const {
    return "Pindahkan ke Tong Sampah · " + sizeText(chosenBytes());
}

std::int64_t UninstallModel::chosenBytes() const {
    std::int64_t bytes = includeApp_ ? app_.bytes : 0;
    for (const auto& location : app_.data) {
        if (selectedData_.contains(location.path))
            bytes = addChecked(bytes, location.bytes);
    }
    return bytes;
}

std::vector<std::string> UninstallModel::chosenPaths() const {
    std::vector<std::string> paths;
    if (includeApp_)
        paths.push_back(app_.path);
    for (const auto& location : app_.data) {
        if (selectedData_.contains(location.path))
            paths.push_back(location.path);
    }
    return paths;
}

void UninstallModel::updateRows() {
    QList<RowList::Row> rows = {row("Aplikasi", app_.path, app_.bytes, includeApp_)};
    for (const auto& location : app_.data)
        rows.append(row(location.kind, location.path, location.bytes, selectedData_.contains(location.path)));
    rows_.setRows(rows);
    emit choiceChanged();
}

void UninstallModel::lookIfRunning() {
    const auto text =
        model_.isRunning(app_) ? name() + " sedang terbuka. Tutup dulu sebelum menghapus." : QString();
    if (std::exchange(runningText_, text) != text)
        emit runningTextChanged();
}

void UninstallModel::toggle(int row) {
    if (!isOpen_ || row < 0 || row >= rows_.rowCount())
        return;
    if (row == 0) {
        includeApp_ = !includeApp_;
    } else {
        const auto& path = app_.data[static_cast<std::size_t>(row - 1)].path;
        if (selectedData_.erase(path) == 0)
            selectedData_.insert(path);
    }
    updateRows();
}

void UninstallModel::closeApp() {
    model_.askToEnd(app_);
}

void UninstallModel::confirm() {
    auto paths = chosenPaths();
    if (!isOpen_ || paths.empty())
        return;
    CleanupItem item;
    item.title = includeApp_ ? app_.name : "Data " + app_.name;
    item.detail = app_.advice;
    item.path = paths.front();
    item.bytes = chosenBytes();
    item.category = ItemCategory::apps;
    item.safety = Safety::review;
    item.action = CleanupAction::trash();
    item.relatedPaths.emplace(paths.begin() + 1, paths.end());
    dismiss();
    model_.requestCleanup({item});
}

void UninstallModel::confirmDataOnly() {
    if (!isOpen_)
        return;
    includeApp_ = false;
    for (const auto& location : app_.data)
        selectedData_.insert(location.path);
    updateRows();
    confirm();
}

void UninstallModel::dismiss() {
    setOpen(false);
}

} // namespace korvanti
