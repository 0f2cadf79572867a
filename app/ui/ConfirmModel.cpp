#include "ui/ConfirmModel.h"

#include "base/CheckedMath.h"
#include "fs/PathTools.h"
#include "ui/ScreenText.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace korvanti {
namespace {

using Items = std::vector<CleanupItem>;

RowList::Row row(bool isHeader, std::string_view title, std::int64_t bytes, const QStringList& paths = {}) {
    return {{"isHeader", isHeader},
            {"title", screenText(title)},
            {"text", sizeText(bytes)},
            {"paths", paths.join("\n")},
            {"showsPaths", paths.size() > 1}};
}

RowList::Row row(const CleanupItem& item) {
    QStringList paths = {screenText(item.displayPath())};
    for (const auto& path : item.relatedPaths.value_or(std::vector<std::string>()))
        paths.append(screenText(PathTools::abbreviatingHome(path)));
    return row(false, item.title, item.bytes, paths);
}

/// A group for each verb, sorted by it; inside, the items keep their order.
QList<RowList::Row> groupedByVerb(const Items& items) {
    std::map<std::string_view, std::vector<const CleanupItem*>> groups;
    for (const auto& item : items)
        groups[item.action.verb()].push_back(&item);
    QList<RowList::Row> rows;
    for (const auto& [verb, group] : groups) {
        std::int64_t bytes = 0;
        for (const auto* item : group)
            bytes = addChecked(bytes, item->bytes);
        rows.append(row(true, verb, bytes));
        for (const auto* item : group)
            rows.append(row(*item));
    }
    return rows;
}

/// What the Trash takes frees nothing until that is emptied.
std::int64_t immediateBytes(const Items& items) {
    std::int64_t bytes = 0;
    for (const auto& item : items) {
        if (item.action.freesSpaceImmediately())
            bytes = addChecked(bytes, item.bytes);
    }
    return bytes;
}

} // namespace

ConfirmModel::ConfirmModel(AppModel& model, QObject* parent) : QObject(parent), model_(model) {
    updateItems();
    updateOutcomes();
    connect(&model, &AppModel::pendingCleanupChanged, this, &ConfirmModel::updateItems);
    connect(&model, &AppModel::outcomesChanged, this, &ConfirmModel::updateOutcomes);
    connect(&model, &AppModel::isCleaningChanged, this, &ConfirmModel::stateChanged);
    connect(&model, &AppModel::cleanProgressChanged, this, &ConfirmModel::progressChanged);
    connect(&model, &AppModel::cleanCurrentChanged, this, &ConfirmModel::progressChanged);
    connect(&model, &AppModel::freeBytesChanged, this, &ConfirmModel::freeTextChanged);
}

ConfirmModel::State ConfirmModel::state() const {
    if (!model_.outcomes().empty())
        return State::Result;
    return model_.isCleaning() ? State::Running : State::Confirm;
}

QString ConfirmModel::current() const {
    return screenText(model_.cleanCurrent());
}

QString ConfirmModel::freeText() const {
    return "Ruang kosong sekarang: " + sizeText(model_.freeBytes());
}

void ConfirmModel::confirm() {
    if (isOpen() && isReady_ && state() == State::Confirm)
        model_.confirmCleanup();
}

void ConfirmModel::dismiss() {
    model_.dismissCleanup();
}

void ConfirmModel::rescan() {
    model_.dismissCleanup();
    model_.scan();
}

void ConfirmModel::updateItems() {
    if (const auto& items = model_.pendingCleanup()) {
        headline_ = "Ruang yang langsung bebas: " + sizeText(immediateBytes(*items));
        confirmText_ = QString("Bersihkan %1 item").arg(items->size());
        rows_.setRows(groupedByVerb(*items));
        isReady_ = false;
        warnings_.clear();
        background_.start([items = *items] { return Cleaner::preflightWarnings(items); },
                          [this, opening = ++opening_](const std::vector<std::string>& warnings) {
                              if (opening != opening_)
                                  return;
                              std::ranges::transform(warnings, std::back_inserter(warnings_), screenText);
                              isReady_ = true;
                              emit warningsChanged();
                          });
        emit itemsChanged();
        emit warningsChanged();
    }
    emit isOpenChanged();
}

void ConfirmModel::updateOutcomes() {
    std::int64_t freed = 0;
    QList<RowList::Row> skipped;
    for (const auto& outcome : model_.outcomes()) {
        freed = addChecked(freed, outcome.freedBytes);
        if (!outcome.success)
            skipped.append(RowList::Row{{"title", screenText(outcome.item.title)},
                                        {"text", screenLines(outcome.message)}});
    }
    freedText_ = "Selesai " + sizeText(freed) + " dibebaskan";
    skippedText_ = skipped.isEmpty() ? QString() : QString("%1 item dilewati:").arg(skipped.size());
    skipped_.setRows(skipped);
    emit outcomesChanged();
    emit stateChanged();
}

} // namespace korvanti
