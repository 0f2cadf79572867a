#include "drives/GradleConfiguration.h"

#include "fs/FileContents.h"
#include "fs/PathTools.h"
#include "support/TempFolder.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace korvanti {
namespace {

using ::testing::IsEmpty;
using testing::textOf;
using ::testing::UnorderedElementsAre;

class GradleConfigurationTests : public ::testing::Test {
protected:
    GradleConfigurationTests() { temp.folder("new"); }

    void carryOver() const { GradleConfiguration::carryOver(temp.path("old"), temp.path("new")); }
    [[nodiscard]] std::vector<std::string> carried() const {
        std::vector<std::string> names;
        for (const auto& entry : PathTools::entries(temp.path("new")))
            names.push_back(entry.name);
        return names;
    }
    [[nodiscard]] std::string text(const std::string& relative) const { return textOf(temp.path(relative)); }
    [[nodiscard]] unsigned mode(const std::string& relative) const {
        struct stat status {};
        EXPECT_EQ(::lstat(temp.path(relative).c_str(), &status), 0) << relative;
        return status.st_mode & 07777;
    }

    testing::TempFolder temp;
};

TEST_F(GradleConfigurationTests, theFourOfThemAreCopiedAndNothingElse) {
    temp.file("old/gradle.properties", {.text = "a=1\n"});
    temp.file("old/init.d/one.gradle", {.text = "one"});
    temp.file("old/init.gradle", {.text = "groovy"});
    temp.file("old/init.gradle.kts", {.text = "kotlin"});
    temp.file("old/caches/large");
    temp.file("old/gradle.properties.bak");
    temp.file("old/Init.gradle");

    carryOver();

    EXPECT_THAT(carried(),
                UnorderedElementsAre("gradle.properties", "init.d", "init.gradle", "init.gradle.kts"));
    EXPECT_EQ(text("new/gradle.properties"), "a=1\n");
    EXPECT_EQ(text("new/init.d/one.gradle"), "one");
    EXPECT_EQ(text("new/init.gradle"), "groovy");
    EXPECT_EQ(text("new/init.gradle.kts"), "kotlin");
    EXPECT_EQ(text("old/gradle.properties"), "a=1\n");
    EXPECT_EQ(text("old/init.d/one.gradle"), "one");
}

TEST_F(GradleConfigurationTests, withoutAGradleHomeThereIsNothingToCopy) {
    carryOver();
    EXPECT_THAT(carried(), IsEmpty());
}

TEST_F(GradleConfigurationTests, bytesStayAsTheyAre) {
    const std::string bytes("\xff\0\r\n", 4);
    temp.file("old/gradle.properties", {.text = bytes});
    temp.file("old/init.gradle");
    carryOver();
    EXPECT_EQ(text("new/gradle.properties"), bytes);
    EXPECT_EQ(text("new/init.gradle"), "");
}

TEST_F(GradleConfigurationTests, whatStandsThereAlreadyStaysAsItIs) {
    temp.file("old/gradle.properties", {.text = "old"});
    temp.file("old/init.d/one.gradle", {.text = "old"});
    temp.file("old/init.gradle", {.text = "old"});
    temp.file("new/gradle.properties", {.text = "new"});
    temp.file("new/init.d/two.gradle", {.text = "new"});
    temp.symlink("new/init.gradle", "nowhere");

    carryOver();

    EXPECT_EQ(text("new/gradle.properties"), "new");
    EXPECT_THAT(PathTools::children(temp.path("new/init.d")),
                UnorderedElementsAre(temp.path("new/init.d/two.gradle")));
    EXPECT_TRUE(PathTools::isSymlink(temp.path("new/init.gradle")));
    EXPECT_FALSE(PathTools::exists(temp.path("new/nowhere")));
}

TEST_F(GradleConfigurationTests, aFolderIsCopiedWithAllThatIsInIt) {
    temp.file("old/init.d/a/b/deep.gradle", {.text = "deep"});
    temp.folder("old/init.d/empty");
    temp.file("old/init.d/not \xff utf-8", {.text = "odd"});
    temp.file("old/init.d/.hidden", {.text = "hidden"});

    carryOver();

    EXPECT_EQ(text("new/init.d/a/b/deep.gradle"), "deep");
    EXPECT_TRUE(PathTools::isDirectory(temp.path("new/init.d/empty")));
    EXPECT_EQ(text("new/init.d/not \xff utf-8"), "odd");
    EXPECT_EQ(text("new/init.d/.hidden"), "hidden");
}

TEST_F(GradleConfigurationTests, aLinkIsCopiedAsALink) {
    temp.file("dotfiles/secret", {.text = "secret"});
    temp.symlink("old/gradle.properties", "../dotfiles/secret");
    temp.symlink("old/init.d/out", temp.path("dotfiles"));
    temp.symlink("old/init.d/self", ".");
    temp.symlink("old/init.gradle", "nowhere");

    carryOver();

    EXPECT_EQ(std::filesystem::read_symlink(temp.path("new/gradle.properties")), "../dotfiles/secret");
    EXPECT_EQ(std::filesystem::read_symlink(temp.path("new/init.d/out")), temp.path("dotfiles"));
    EXPECT_EQ(std::filesystem::read_symlink(temp.path("new/init.d/self")), ".");
    EXPECT_EQ(std::filesystem::read_symlink(temp.path("new/init.gradle")), "nowhere");
}

TEST_F(GradleConfigurationTests, modesAreKept) {
    temp.file("old/gradle.properties");
    temp.setMode("old/gradle.properties", 0600);
    temp.file("old/init.gradle");
    temp.setMode("old/init.gradle", 0644);
    temp.file("old/init.d/tool", {.text = "x"});
    temp.setMode("old/init.d/tool", 0755);
    temp.setMode("old/init.d", 0555);

    carryOver();

    EXPECT_EQ(mode("new/gradle.properties"), 0600U);
    EXPECT_EQ(mode("new/init.gradle"), 0644U);
    EXPECT_EQ(mode("new/init.d/tool"), 0755U);
    EXPECT_EQ(mode("new/init.d"), 0555U);
    EXPECT_EQ(text("new/init.d/tool"), "x");
}

TEST_F(GradleConfigurationTests, whatCanNotBeCopiedIsLeftOut) {
    temp.file("old/gradle.properties", {.sparseBytes = FileContents::defaultLimit + 1});
    temp.folder("old/init.d");
    ASSERT_EQ(::mkfifo(temp.path("old/init.d/pipe").c_str(), 0600), 0);
    temp.file("old/init.d/one.gradle", {.text = "one"});
    temp.file("old/init.gradle.kts", {.text = "kotlin"});

    carryOver();

    EXPECT_THAT(carried(), UnorderedElementsAre("init.d", "init.gradle.kts"));
    EXPECT_THAT(PathTools::children(temp.path("new/init.d")),
                UnorderedElementsAre(temp.path("new/init.d/one.gradle")));
}

TEST_F(GradleConfigurationTests, nothingComesIntoBeingInAFolderThatIsGone) {
    temp.file("old/gradle.properties");
    temp.file("old/init.d/one.gradle");
    GradleConfiguration::carryOver(temp.path("old"), temp.path("gone"));
    EXPECT_FALSE(PathTools::exists(temp.path("gone")));
}

TEST_F(GradleConfigurationTests, anAbsurdlyDeepFolderEndsSomewhere) {
    std::string deep = "old/init.d";
    for (int level = 0; level < 300; ++level)
        deep += "/d";
    temp.folder(deep);

    carryOver();

    EXPECT_TRUE(PathTools::isDirectory(temp.path("new/init.d/d/d/d/d/d/d/d/d")));
    std::string tooDeep = "new/init.d";
    for (int level = 0; level < 40; ++level)
        tooDeep += "/d";
    EXPECT_FALSE(PathTools::exists(temp.path(tooDeep)));
}

TEST_F(GradleConfigurationTests, aNewHomeInsideTheOldFolderEndsSomewhere) {
    temp.file("old/init.d/one.gradle", {.text = "one"});
    temp.folder("old/init.d/new");
    GradleConfiguration::carryOver(temp.path("old"), temp.path("old/init.d/new"));
    EXPECT_EQ(text("old/init.d/new/init.d/one.gradle"), "one");
}

} // namespace
} // namespace korvanti
