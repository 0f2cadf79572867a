#pragma once

#include "UiSupport.h"
#include "base/ByteText.h"
#include "base/Instant.h"

#include <QAbstractItemModel>
#include <QString>
#include <QVariant>
#include <cstdint>
#include <gtest/gtest.h>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace korvanti::testing {

/// What the sheet's button says.
inline QString moveText(std::int64_t bytes) {
    return QString::fromStdString("Pindahkan ke Tong Sampah · " + bytesText(bytes));
}

/// Applications that are really there, over the real core in the box. They count as used when their data
/// changed, as the system here remembers nothing of them.
class AppsFixture : public UiTests {
protected:
    struct Bundle {
        std::string identifier = {}; ///< empty: none
        std::string category = {};
        std::string version = {};
        std::int64_t bytes = 0; ///< beside its property list
        bool fromAppStore = false;
    };
    void install(const std::string& name, const Bundle& bundle) const {
        const auto entry = [](const std::string& key, const std::string& value) {
            return value.empty() ? "" : "<key>" + key + "</key><string>" + value + "</string>";
        };
        const auto folder = name + ".app/Contents/";
        mac.applications.file(
            folder + "Info.plist",
            {.text = "<plist version=\"1.0\"><dict>" + entry("CFBundleIdentifier", bundle.identifier) +
                     entry("CFBundleShortVersionString", bundle.version) +
                     entry("LSApplicationCategoryType", bundle.category) + "</dict></plist>"});
        if (bundle.bytes > 0)
            mac.applications.file(folder + "MacOS/program", {.allocatedBytes = bundle.bytes});
        if (bundle.fromAppStore)
            mac.applications.folder(folder + "_MASReceipt");
    }
    /// A folder below the home with so much in it, last changed a while ago.
    void layData(const std::string& folder, std::int64_t bytes, std::int64_t daysAgo = 0) const {
        const auto changed = wholeSeconds(currentInstant()) - daysAgo * 86'400;
        mac.home.file(folder + "/file", {.allocatedBytes = bytes, .modified = changed});
        mac.home.setModified(folder, changed);
    }
    /// One of each kind: a tool in use, a game, something old, and one of the system's.
    void installSome() const {
        install("Tool", {.identifier = "org.example.tool",
                         .category = "public.app-category.developer-tools",
                         .version = "1.2",
                         .bytes = 4'000'000});
        layData("Library/Caches/org.example.tool", 2'000'000, 3);
        layData("Library/Application Support/Tool", 1'000'000, 5);
        install(
            "Game",
            {.identifier = "org.example.game", .category = "public.app-category.games", .bytes = 3'000'000});
        install(
            "Old",
            {.identifier = "org.example.old", .version = "0.9", .bytes = 1'000'000, .fromAppStore = true});
        layData("Library/Caches/org.example.old", 500'000, 200);
        install("Sys", {.identifier = "com.apple.sys", .bytes = 200'000});
    }
    /// Opens the pane and waits until its applications are there.
    void load() {
        model().setPane(Pane::apps);
        panes();
        ASSERT_TRUE(waitFor([&] { return !model().appsLoading(); }));
    }
    [[nodiscard]] const InstalledApp& appNamed(const std::string& name) {
        for (const auto& app : model().apps()) {
            if (app.name == name)
                return app;
        }
        throw std::runtime_error("no application is called " + name);
    }
    [[nodiscard]] static std::vector<std::string> columnOf(const QAbstractItemModel& list, const char* role) {
        std::vector<std::string> texts;
        for (int row = 0; row < list.rowCount(); ++row)
            texts.push_back(roleOf(list, row, role).toString().toStdString());
        return texts;
    }
    [[nodiscard]] static QVariant roleOf(const QAbstractItemModel& list, int row, const char* role) {
        return list.data(list.index(row, 0), list.roleNames().key(role, -1));
    }
};

} // namespace korvanti::testing
