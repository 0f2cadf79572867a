#include "ui/FrameModel.h"

#include "base/ByteText.h"
#include "base/CheckedMath.h"
#include "ui/ScreenText.h"

#include <QStringList>
#include <algorithm>
#include <array>
#include <iterator>
#include <string>
#include <utility>

namespace korvanti {
namespace {

struct PaneRow {
    Pane pane;
    const char* title;
    const char* symbol;
    const char* chosenSymbol;
};

constexpr std::array paneRows = {
    PaneRow{Pane::overview, "Ringkasan", "gauge.with.dots.needle.67percent",
            "gauge.with.dots.needle.67percent.fill"},
    PaneRow{Pane::cleanup, "Pembersihan", "sparkles", "sparkles.fill"},
    PaneRow{Pane::map, "Peta Storage", "square.grid.3x3.square", "square.grid.3x3.square.fill"},
    PaneRow{Pane::apps, "Aplikasi", "square.grid.2x2", "square.grid.2x2.fill"},
    PaneRow{Pane::ssd, "SSD Eksternal", "externaldrive", "externaldrive.fill"},
    PaneRow{Pane::history, "Riwayat", "clock.arrow.circlepath", "clock.arrow.circlepath.fill"},
};

const PaneRow& rowOf(Pane pane) {
    return *std::ranges::find(paneRows, pane, &PaneRow::pane);
}

/// One line: what a tool said may have several.
QString messageText(const std::optional<std::string>& message) {
    return message ? screenLines(*message).replace('\n', ' ') : QString();
}

} // namespace

FrameModel::FrameModel(AppModel& model, Clock clock, QObject* parent)
    : QObject(parent), model_(model), clock_(std::move(clock)),
      panes_({"title", "symbol", "chosenSymbol", "badge"}), volumes_({"name", "free"}) {
    connect(&clock_, &DateClock::ticked, this, &FrameModel::scanTextChanged);
    connect(&model, &AppModel::paneChanged, this, &FrameModel::paneChanged);
    connect(&model, &AppModel::isScanningChanged, this, &FrameModel::isScanningChanged);
    for (const auto changed :
         {&AppModel::freeBytesChanged, &AppModel::totalBytesChanged, &AppModel::settingsChanged})
        connect(&model, changed, this, &FrameModel::capacityChanged);
    for (const auto changed :
         {&AppModel::busyMessageChanged, &AppModel::errorMessageChanged, &AppModel::noticeMessageChanged})
        connect(&model, changed, this, &FrameModel::messagesChanged);
    connect(&model, &AppModel::isEndingChanged, this, &FrameModel::quittingChanged);
    connect(&model, &AppModel::workEnded, this, &FrameModel::quitRequested);
    // There is nothing to ask about what has ended meanwhile.
    for (const auto changed :
         {&AppModel::isCleaningChanged, &AppModel::busyMessageChanged, &AppModel::isScanningChanged})
        connect(&model, changed, this, [this] {
            if (asksToQuit())
                updateQuitText();
        });
    connect(&model, &AppModel::reportChanged, this, [this] {
        updatePanes();
        emit reportChanged();
        emit scanTextChanged();
    });
    connect(&model, &AppModel::volumesChanged, this, [this] {
        updatePanes();
        updateVolumes();
    });
    updatePanes();
    updateVolumes();
}

void FrameModel::updatePanes() {
    const auto badge = [this](Pane pane) -> QString {
        if (pane == Pane::cleanup && recommendedBytes() >= 1)
            return recommendedText();
        if (pane == Pane::ssd && !model_.volumes().empty())
            return QString::number(model_.volumes().size());
        return {};
    };
    QList<RowList::Row> rows;
    for (const auto& row : paneRows)
        rows.append({{"title", row.title},
                     {"symbol", row.symbol},
                     {"chosenSymbol", row.chosenSymbol},
                     {"badge", badge(row.pane)}});
    panes_.setRows(rows);
}

void FrameModel::updateVolumes() {
    QList<RowList::Row> rows;
    for (const auto& volume : model_.volumes())
        rows.append(
            {{"name", screenText(volume.name)}, {"free", screenText(bytesText(volume.free) + " kosong")}});
    volumes_.setRows(rows);
}

int FrameModel::pane() const {
    return static_cast<int>(std::distance(paneRows.begin(), &rowOf(model_.pane())));
}

double FrameModel::usedBytes() const {
    return static_cast<double>(model_.totalBytes() - model_.freeBytes());
}

QString FrameModel::capacityText() const {
    return freeText() + " " + totalText();
}

QString FrameModel::busyMessage() const {
    return messageText(model_.busyMessage());
}

QString FrameModel::errorMessage() const {
    return messageText(model_.errorMessage());
}

QString FrameModel::noticeMessage() const {
    return messageText(model_.noticeMessage());
}

QString FrameModel::labelText() const {
    return screenText(bytesText(model_.freeBytes()));
}

QString FrameModel::labelSymbol() const {
    return model_.isLowSpace() ? "externaldrive.fill.badge.exclamationmark" : "internaldrive";
}

QString FrameModel::freeText() const {
    return screenText(bytesText(model_.freeBytes()) + " kosong");
}

QString FrameModel::totalText() const {
    return screenText("dari " + bytesText(model_.totalBytes()));
}

QString FrameModel::lowSpaceText() const {
    if (!model_.isLowSpace())
        return {};
    return screenText("Ruang di bawah " + std::to_string(model_.settings().lowSpaceWarningGB) +
                      " GB. Build Xcode/Gradle bisa gagal.");
}

std::int64_t FrameModel::recommendedBytes() const {
    return model_.report() ? model_.report()->recommendedBytes() : 0;
}

QString FrameModel::recommendedText() const {
    return screenText(bytesText(recommendedBytes()));
}

QString FrameModel::scanText() const {
    if (!model_.report())
        return {};
    return "Pindaian " + clock_.relative(model_.report()->startedAt);
}

QString FrameModel::scanAction() const {
    return model_.isScanning() ? "Memindai…" : "Pindai";
}

bool FrameModel::canClean() const {
    return recommendedBytes() != 0;
}

void FrameModel::choosePane(int row) {
    if (row >= 0 && std::cmp_less(row, paneRows.size()))
        model_.setPane(paneRows.at(static_cast<std::size_t>(row)).pane);
}

void FrameModel::scan() {
    model_.scan();
}

void FrameModel::dismissError() {
    model_.dismissError();
}

void FrameModel::dismissNotice() {
    model_.dismissNotice();
}

void FrameModel::windowOpened() {
    if (!model_.report())
        model_.scan();
}

void FrameModel::panelOpened() {
    model_.refreshDisk();
}

void FrameModel::openOverview() {
    model_.setPane(Pane::overview);
    emit windowRequested();
}

void FrameModel::cleanRecommended() {
    model_.setPane(Pane::cleanup);
    emit windowRequested();
    if (model_.isCleaning()) // its sheet is what the window shows
        return;
    model_.setFilter(ItemFilter::recommended);
    model_.selectRecommended();
    model_.requestCleanup(model_.selectedItems());
}

void FrameModel::quit() {
    if (model_.isEnding())
        return;
    updateQuitText();
    if (quitText_.isEmpty())
        model_.endSoon();
    else
        emit windowRequested();
}

void FrameModel::updateQuitText() {
    QStringList underWay;
    if (model_.isCleaning())
        underWay.append(
            "Pembersihan sedang berjalan. Korvanti menyelesaikan item yang sedang dikerjakan, lalu "
            "keluar; sisanya tidak disentuh.");
    if (model_.busyMessage())
        underWay.append("Pemindahan folder sedang berjalan. Korvanti menunggu sampai selesai, lalu keluar.");
    if (model_.isScanning())
        underWay.append("Pemindaian sedang berjalan dan hasilnya tidak disimpan.");
    quitText_ = underWay.join("\n");
    emit quittingChanged();
}

void FrameModel::confirmQuit() {
    quitText_.clear();
    model_.endSoon();
    emit quittingChanged();
}

void FrameModel::stay() {
    quitText_.clear();
    emit quittingChanged();
}

} // namespace korvanti
