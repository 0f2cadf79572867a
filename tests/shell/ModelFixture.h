#pragma once

#include "ShellSupport.h"
#include "base/Json.h"
#include "scan/ReportJson.h"
#include "settings/AppPaths.h"
#include "shell/AppModel.h"
#include "support/BoxFolder.h"
#include "support/Environment.h"

#include <chrono>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace korvanti::testing {

/// A model against the real core, with a desktop that the test scripts. In the box.
class ModelFixture : public ::testing::Test {
protected:
    ModelFixture() { application(); }

    /// Made on first use, so that a test can lay down what it is to find.
    AppModel& model() {
        if (!model_)
            model_ =
                std::make_unique<AppModel>(std::make_unique<ScriptedDesktop>(desktop), nullptr, interval);
        return *model_;
    }
    void startAgain() { model_.reset(); }

    [[nodiscard]] std::string home(const std::string& relative) const { return mac.home.path(relative); }

    /// An item for a folder with a file in it.
    [[nodiscard]] CleanupItem folderItem(const std::string& relative, Safety safety = Safety::regenerable,
                                         CleanupAction action = CleanupAction::delete_()) const {
        mac.home.file(relative + "/file", {.text = "12345"});
        return item(home(relative), safety, std::move(action));
    }
    [[nodiscard]] static CleanupItem item(const std::string& path, Safety safety = Safety::regenerable,
                                          CleanupAction action = CleanupAction::delete_()) {
        CleanupItem item;
        item.title = "Title of " + path.substr(path.rfind('/') + 1);
        item.path = path;
        item.bytes = 1'000;
        item.category = ItemCategory::xcode;
        item.safety = safety;
        item.action = std::move(action);
        item.recommended = safety == Safety::regenerable && item.action.isAutomatic();
        return item;
    }
    /// What the model finds at its start.
    void saveReport(std::vector<CleanupItem> items) const {
        ScanReport report;
        report.startedAt = instantFromSeconds(1'700'000'000);
        report.items = std::move(items);
        saveText(compactJson(toJson(report)));
    }
    void saveText(const std::string& text) const {
        mac.home.file("Library/Application Support/Korvanti/last-report.json", {.text = text});
    }
    [[nodiscard]] static std::vector<std::string> savedPaths() {
        const auto report = scanReportFromJson(*parseJson(textOf(AppPaths::lastReport())));
        return report ? pathsOf(report->items) : std::vector<std::string>{"damaged"};
    }
    [[nodiscard]] static std::vector<std::string> pathsOf(const std::vector<CleanupItem>& items) {
        std::vector<std::string> paths;
        for (const auto& item : items)
            paths.push_back(item.path);
        return paths;
    }
    void clean(const std::vector<CleanupItem>& items) {
        model().requestCleanup(items);
        model().confirmCleanup();
        ASSERT_TRUE(model().isCleaning());
        ASSERT_TRUE(waitFor([&] { return !model().isCleaning(); }));
    }
    const BoxMac mac;
    const ScopedVariable developer{"DEVELOPER_DIR", std::nullopt};
    ScriptedDesktop::Script desktop;
    std::chrono::milliseconds interval = std::chrono::minutes(1);

private:
    std::unique_ptr<AppModel> model_;
};

} // namespace korvanti::testing
