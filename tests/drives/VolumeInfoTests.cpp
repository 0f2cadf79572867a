#include "drives/VolumeInfo.h"

#include <gtest/gtest.h>

namespace korvanti {
namespace {

VolumeInfo wholeVolume() {
    return {.name = "Kerja",
            .mountPath = "/Volumes/Kerja",
            .uuid = "7D5A2B10-3F4E-4C6D-8B9A-A0B1C2D3E4F5",
            .formatName = "APFS (Case-sensitive)",
            .fsType = "apfs",
            .isInternal = false,
            .isEjectable = true,
            .total = 999'995'129'856,
            .free = 731'204'890'624,
            .busProtocol = "USB",
            .solidState = true,
            .ownersEnabled = false,
            .encrypted = true,
            .smart = SmartInfo{.percentageUsed = 4, .status = "Verified"},
            .deviceIdentifier = "disk6s1"};
}

TEST(VolumeInfoTests, theIdentityIsTheUuid) {
    EXPECT_EQ(wholeVolume().id(), "7D5A2B10-3F4E-4C6D-8B9A-A0B1C2D3E4F5");
}

TEST(VolumeInfoTests, withoutAUuidTheIdentityIsTheMountPath) {
    auto volume = wholeVolume();
    volume.uuid = std::nullopt;
    EXPECT_EQ(volume.id(), "/Volumes/Kerja");
}

TEST(VolumeInfoTests, theFormatTellsWhatItSupports) {
    struct Row {
        const char* fsType;
        bool isAPFS;
        bool supportsDevWork;
    };
    for (const auto& [fsType, isAPFS, supportsDevWork] :
         {Row{"apfs", true, true}, Row{"hfs", false, true}, Row{"exfat", false, false},
          Row{"msdos", false, false}, Row{"ntfs", false, false}, Row{"", false, false},
          Row{"APFS", false, false}, Row{"apfs ", false, false}, Row{"hfsx", false, false}}) {
        const VolumeInfo volume{.fsType = fsType};
        EXPECT_EQ(volume.isAPFS(), isAPFS) << fsType;
        EXPECT_EQ(volume.supportsDevWork(), supportsDevWork) << fsType;
    }
}

TEST(VolumeInfoTests, theJsonHasTheFieldsAsKeys) {
    const std::string written =
        R"-({"name":"Kerja","mountPath":"\/Volumes\/Kerja","uuid":"7D5A2B10-3F4E-4C6D-8B9A-A0B1C2D3E4F5",)-"
        R"-("formatName":"APFS (Case-sensitive)","fsType":"apfs","isInternal":false,"isEjectable":true,)-"
        R"-("total":999995129856,"free":731204890624,"busProtocol":"USB","solidState":true,)-"
        R"-("ownersEnabled":false,"encrypted":true,)-"
        R"-("smart":{"percentageUsed":4,"status":"Verified"},"deviceIdentifier":"disk6s1"})-";
    EXPECT_EQ(compactJson(toJson(wholeVolume())), written);
}

TEST(VolumeInfoTests, theJsonLeavesOutWhatIsAbsent) {
    const VolumeInfo volume{.name = "A", .mountPath = "/Volumes/A"};
    const std::string written = R"({"name":"A","mountPath":"\/Volumes\/A","formatName":"","fsType":"",)"
                                R"("isInternal":false,"isEjectable":false,"total":0,"free":0})";
    EXPECT_EQ(compactJson(toJson(volume)), written);
}

TEST(VolumeInfoTests, theJsonReadsBackToTheSame) {
    for (const auto& volume : {wholeVolume(), VolumeInfo{}})
        EXPECT_EQ(volumeInfoFromJson(toJson(volume)), volume);
}

TEST(VolumeInfoTests, eachFieldMakesADifference) {
    const auto whole = wholeVolume();
    const auto changed = [&](const auto& change) {
        auto other = whole;
        change(other);
        return other;
    };
    for (const auto& other : {changed([](VolumeInfo& volume) { volume.name = "x"; }),
                              changed([](VolumeInfo& volume) { volume.mountPath = "x"; }),
                              changed([](VolumeInfo& volume) { volume.uuid = "x"; }),
                              changed([](VolumeInfo& volume) { volume.formatName = "x"; }),
                              changed([](VolumeInfo& volume) { volume.fsType = "x"; }),
                              changed([](VolumeInfo& volume) { volume.isInternal = true; }),
                              changed([](VolumeInfo& volume) { volume.isEjectable = false; }),
                              changed([](VolumeInfo& volume) { volume.total = 1; }),
                              changed([](VolumeInfo& volume) { volume.free = 1; }),
                              changed([](VolumeInfo& volume) { volume.busProtocol = "x"; }),
                              changed([](VolumeInfo& volume) { volume.solidState = false; }),
                              changed([](VolumeInfo& volume) { volume.ownersEnabled = true; }),
                              changed([](VolumeInfo& volume) { volume.encrypted = false; }),
                              changed([](VolumeInfo& volume) { volume.smart->percentageUsed = 5; }),
                              changed([](VolumeInfo& volume) { volume.deviceIdentifier = "x"; })}) {
        EXPECT_NE(other, whole);
        EXPECT_EQ(volumeInfoFromJson(toJson(other)), other);
    }
}

TEST(VolumeInfoTests, aMissingOrWrongFieldFailsTheWhole) {
    for (const auto* key :
         {"name", "mountPath", "formatName", "fsType", "isInternal", "isEjectable", "total", "free"}) {
        auto json = toJson(wholeVolume());
        json.erase(key);
        EXPECT_FALSE(volumeInfoFromJson(json)) << key;
    }
    const auto whole = toJson(wholeVolume());
    for (const auto& [key, value] : whole.items()) {
        auto json = whole;
        json[key] = value.is_boolean() ? Json(1) : Json(true);
        EXPECT_FALSE(volumeInfoFromJson(json)) << key;
    }
    EXPECT_FALSE(volumeInfoFromJson(Json::array()));
    EXPECT_FALSE(volumeInfoFromJson(Json()));
}

TEST(VolumeInfoTests, nullIsAsGoodAsNothing) {
    auto json = toJson(wholeVolume());
    for (const auto* key :
         {"uuid", "busProtocol", "solidState", "ownersEnabled", "encrypted", "smart", "deviceIdentifier"})
        json[key] = nullptr;
    const auto volume = volumeInfoFromJson(json);
    ASSERT_TRUE(volume.has_value());
    EXPECT_EQ(volume->uuid, std::nullopt);
    EXPECT_EQ(volume->smart, std::nullopt);
    EXPECT_EQ(volume->name, "Kerja");
}

} // namespace
} // namespace korvanti
