#include "drives/CopyPlace.h"

#include "platform/Platform.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace korvanti {
namespace {

using korvanti::testing::TempFolder;
using Kind = CopyPlace::Kind;

class CopyPlaceTests : public ::testing::Test {
protected:
    [[nodiscard]] std::expected<CopyPlace, FileError> take(const std::string& name, Kind kind) const {
        return CopyPlace::take(parent, temp.path(name), kind);
    }
    [[nodiscard]] bool holds(const CopyPlace& place, const std::string& name) const {
        return place.holds(PinnedEntry::open(temp.path(), temp.path(name)).value());
    }

    TempFolder temp;
    FileDescriptor parent{Platform::openPassage(temp.path())};
};

TEST_F(CopyPlaceTests, aFolderIsMadeForItsOwnerAlone) {
    const auto place = take("x", Kind::folder);
    ASSERT_TRUE(place.has_value());
    EXPECT_EQ(place->path(), temp.path("x"));
    struct stat status {};
    ASSERT_EQ(::lstat(temp.path("x").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode, static_cast<mode_t>(S_IFDIR | 0700));
    EXPECT_TRUE(holds(*place, "x"));
}

TEST_F(CopyPlaceTests, aPlaceForAFileStaysFree) {
    const auto place = take("x", Kind::file);
    ASSERT_TRUE(place.has_value());
    EXPECT_NE(::access(temp.path("x").c_str(), F_OK), 0);
    temp.file("x");
    EXPECT_TRUE(holds(*place, "x"));
}

TEST_F(CopyPlaceTests, whateverStandsThereKeepsItsPlace) {
    temp.file("file");
    temp.folder("folder");
    temp.symlink("link", temp.path("nowhere"));
    for (const auto* name : {"file", "folder", "link"}) {
        for (const auto kind : {Kind::folder, Kind::file}) {
            const auto place = take(name, kind);
            ASSERT_FALSE(place.has_value()) << name;
            EXPECT_EQ(place.error().code, std::errc::file_exists) << name;
            EXPECT_EQ(place.error().path, temp.path(name));
        }
    }
}

TEST_F(CopyPlaceTests, anotherFolderOfTheSameNameIsNotTheOneThatWasMade) {
    const auto place = take("x", Kind::folder);
    ASSERT_EQ(::rename(temp.path("x").c_str(), temp.path("y").c_str()), 0);
    temp.folder("x");
    EXPECT_FALSE(holds(*place, "x"));
    EXPECT_TRUE(holds(*place, "y"));
}

TEST_F(CopyPlaceTests, aFolderIsNoFile) {
    const auto place = take("x", Kind::file);
    temp.folder("x");
    EXPECT_FALSE(holds(*place, "x"));
}

TEST_F(CopyPlaceTests, theSystemsOtherErrorsAreTold) {
    const std::string name(300, 'n');
    for (const auto kind : {Kind::folder, Kind::file})
        EXPECT_EQ(take(name, kind).error().code, std::errc::filename_too_long);
    EXPECT_EQ(CopyPlace::take(FileDescriptor(), temp.path("x"), Kind::folder).error().code,
              std::errc::bad_file_descriptor);
}

} // namespace
} // namespace korvanti
