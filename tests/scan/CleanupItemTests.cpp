#include "scan/CleanupItem.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace korvanti {
namespace {

using Kind = CleanupAction::Kind;

CleanupItem made(Safety safety, CleanupAction action, bool recommended) {
    CleanupItem item;
    item.path = "/a";
    item.safety = safety;
    item.action = std::move(action);
    item.recommended = recommended;
    return CleanupItem::make(item);
}

/// An item with every field set.
CleanupItem fullItem() {
    return {.title = "Cache Xcode",
            .detail = "Cache internal › Xcode.",
            .path = "/Users/a/Library",
            .bytes = 9'007'199'254'740'993,
            .category = ItemCategory::xcode,
            .safety = Safety::costly,
            .action = CleanupAction::delete_(),
            .recommended = true,
            .lastActivity = instantFromSeconds(1'794'768'179),
            .offloadable = true,
            .warnings = {"satu", "dua"},
            .relatedPaths = std::vector<std::string>{"/b", "/c"}};
}

TEST(SafetyTests, hasItsFiveClassesInOrderOfDanger) {
    struct Row {
        Safety safety;
        int raw;
        const char* label;
        const char* summary;
        bool deletable;
    };
    const std::vector<Row> rows = {
        {Safety::regenerable, 0, "Aman", "Dibuat ulang otomatis oleh tool-nya. Tidak ada data yang hilang.",
         true},
        {Safety::costly, 1, "Aman · unduh ulang",
         "Aman dihapus, tapi akan diunduh atau di-build ulang (butuh waktu & internet).", true},
        {Safety::review, 2, "Periksa dulu",
         "Bisa berisi data bernilai. Masuk Tong Sampah dulu, atau pindahkan ke SSD.", true},
        {Safety::keep, 3, "Penting", "Sedang dipakai atau penting. Korvanti tidak akan menghapusnya.", false},
        {Safety::managed, 4, "Dikelola sistem",
         "Dikelola macOS atau app lain. Ikuti cara resmi yang dijelaskan.", false},
    };
    ASSERT_EQ(allCases<Safety>.size(), rows.size());
    for (std::size_t index = 0; index < rows.size(); ++index) {
        SCOPED_TRACE(rows[index].label);
        EXPECT_EQ(allCases<Safety>[index], rows[index].safety);
        EXPECT_EQ(static_cast<int>(rows[index].safety), rows[index].raw);
        EXPECT_EQ(label(rows[index].safety), rows[index].label);
        EXPECT_EQ(summary(rows[index].safety), rows[index].summary);
        EXPECT_EQ(isDeletable(rows[index].safety), rows[index].deletable);
    }
}

TEST(ItemCategoryTests, hasItsTenSectionsInOrder) {
    struct Row {
        const char* raw;
        const char* title;
        const char* symbol;
    };
    const std::vector<Row> rows = {{"xcode", "Xcode", "hammer"},
                                   {"simulators", "Simulator iOS", "ipad.and.iphone"},
                                   {"android", "Android & Gradle", "square.stack.3d.up"},
                                   {"projects", "Artefak proyek", "folder.badge.gearshape"},
                                   {"toolchains", "Paket & toolchain", "shippingbox"},
                                   {"aiTools", "Tool AI & editor", "sparkles"},
                                   {"appCaches", "Cache app & browser", "globe"},
                                   {"apps", "Aplikasi jarang dipakai", "gamecontroller"},
                                   {"personal", "File pribadi", "photo.on.rectangle"},
                                   {"system", "Sistem macOS", "gearshape.2"}};
    ASSERT_EQ(allCases<ItemCategory>.size(), rows.size());
    for (std::size_t index = 0; index < rows.size(); ++index) {
        const ItemCategory category = allCases<ItemCategory>[index];
        EXPECT_EQ(rawValue(category), rows[index].raw);
        EXPECT_EQ(title(category), rows[index].title);
        EXPECT_EQ(symbol(category), rows[index].symbol);
    }
}

TEST(CleanupActionTests, hasItsSevenKindsInOrder) {
    struct Row {
        CleanupAction action;
        const char* verb;
        bool automatic;
        bool freesAtOnce;
    };
    const std::vector<Row> rows = {
        {CleanupAction::delete_(), "Hapus permanen", true, true},
        {CleanupAction::trash(), "Pindah ke Tong Sampah", true, false},
        {CleanupAction::emptyTrash(), "Kosongkan Tong Sampah", true, true},
        {CleanupAction::simulatorErase("U"), "Reset simulator", true, true},
        {CleanupAction::simulatorDelete("U"), "Hapus simulator", true, true},
        {CleanupAction::simulatorRuntimeDelete("I"), "Hapus runtime simulator", true, true},
        {CleanupAction::manual("Begini."), "Panduan", false, false},
    };
    ASSERT_EQ(allCases<Kind>.size(), rows.size());
    for (std::size_t index = 0; index < rows.size(); ++index) {
        SCOPED_TRACE(rows[index].verb);
        EXPECT_EQ(rows[index].action.kind, allCases<Kind>[index]);
        EXPECT_EQ(rows[index].action.verb(), rows[index].verb);
        EXPECT_EQ(rows[index].action.isAutomatic(), rows[index].automatic);
        EXPECT_EQ(rows[index].action.freesSpaceImmediately(), rows[index].freesAtOnce);
    }
}

TEST(CleanupActionTests, onlyAManualActionHasInstructions) {
    EXPECT_EQ(CleanupAction::manual("Begini.").instructions(), "Begini.");
    EXPECT_EQ(CleanupAction::manual("").instructions(), "");
    EXPECT_EQ(CleanupAction::delete_().instructions(), std::nullopt);
    EXPECT_EQ(CleanupAction::simulatorErase("U").instructions(), std::nullopt);
    EXPECT_EQ(CleanupAction::simulatorRuntimeDelete("I").instructions(), std::nullopt);
}

TEST(CleanupActionTests, actionsAreEqualByKindAndPayload) {
    EXPECT_EQ(CleanupAction::simulatorErase("U"), CleanupAction::simulatorErase("U"));
    EXPECT_NE(CleanupAction::simulatorErase("U"), CleanupAction::simulatorErase("V"));
    EXPECT_NE(CleanupAction::simulatorErase("U"), CleanupAction::simulatorDelete("U"));
}

TEST(CleanupItemTests, onlySafeAutomaticItemsAreRecommended) {
    for (const Safety safety : allCases<Safety>) {
        const bool safe = safety == Safety::regenerable || safety == Safety::costly;
        for (const CleanupAction& action :
             {CleanupAction::delete_(), CleanupAction::trash(), CleanupAction::emptyTrash(),
              CleanupAction::simulatorErase("U"), CleanupAction::simulatorDelete("U"),
              CleanupAction::simulatorRuntimeDelete("I")})
            EXPECT_EQ(made(safety, action, true).recommended, safe) << label(safety) << action.verb();
        EXPECT_FALSE(made(safety, CleanupAction::manual("Begini."), true).recommended) << label(safety);
    }
}

TEST(CleanupItemTests, anItemThatIsNotRecommendedStaysSo) {
    EXPECT_FALSE(made(Safety::regenerable, CleanupAction::delete_(), false).recommended);
}

TEST(CleanupItemTests, makingAnItemKeepsEveryOtherField) {
    CleanupItem fields = fullItem();
    fields.safety = Safety::review;
    CleanupItem expected = fields;
    expected.recommended = false;
    EXPECT_EQ(CleanupItem::make(fields), expected);
}

TEST(CleanupItemTests, thePathIsTheIdentity) {
    EXPECT_EQ(fullItem().id(), "/Users/a/Library");
}

TEST(CleanupItemTests, deletableAutomaticItemsAreSelectable) {
    EXPECT_TRUE(made(Safety::regenerable, CleanupAction::delete_(), false).isSelectable());
    EXPECT_TRUE(made(Safety::review, CleanupAction::trash(), false).isSelectable());
}

TEST(CleanupItemTests, manualItemsAreNotSelectable) {
    EXPECT_FALSE(made(Safety::costly, CleanupAction::manual("Begini."), false).isSelectable());
}

TEST(CleanupItemTests, keptAndManagedItemsAreNotSelectable) {
    EXPECT_FALSE(made(Safety::keep, CleanupAction::trash(), false).isSelectable());
    EXPECT_FALSE(made(Safety::managed, CleanupAction::delete_(), false).isSelectable());
}

} // namespace
} // namespace korvanti
