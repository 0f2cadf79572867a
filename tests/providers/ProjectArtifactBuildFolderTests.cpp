#include "providers/ProjectArtifactCandidates.h"

#include "ProjectArtifactFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace korvanti {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

class ProjectArtifactBuildFolderTests : public testing::ProjectArtifactFixture {};

TEST_F(ProjectArtifactBuildFolderTests, aBuildFolderBesideAGradleFileIsOfGradle) {
    for (const auto* marker : {"build.gradle", "build.gradle.kts"}) {
        SCOPED_TRACE(marker);
        projects = {};
        const auto place = std::string("repo ") + marker;
        repository(place, "build/\n");
        // What the later rules look for does not count.
        for (const auto* name : {marker, "package.json", "project.yml", "Package.swift", "App.xcodeproj"})
            home.file(place + "/module/" + name);
        home.file(place + "/module/build/data");

        EXPECT_THAT(candidates(), ElementsAre(known(place + "/module/build", "Build Gradle (module/build)")));
    }
}

TEST_F(ProjectArtifactBuildFolderTests, aGradleBuildWithReleaseOutputsIsCostlyAndSaysWhich) {
    const struct {
        std::vector<std::string> files;
        std::string labels;
    } rows[] = {
        {{"bundle/release/app.aab"}, "AAB rilis"},
        {{"bundle/any file"}, "AAB rilis"},
        {{"apk/release/app.apk"}, "APK rilis"},
        {{"apk/debug/app.apk", "apk/freeProdRelease/app.apk"}, "APK rilis"},
        {{"apk/myPRODuct/app.apk"}, "APK rilis"},
        {{"apk/app-RELEASE.apk"}, "APK rilis"},
        {{"mapping/release/mapping.txt"}, "mapping R8"},
        {{"mapping"}, "mapping R8"},
        {{"bundle/a", "mapping/a"}, "AAB rilis, mapping R8"},
        {{"mapping/a", "apk/prod/a", "bundle/a"}, "AAB rilis, APK rilis, mapping R8"},
    };
    int count = 0;
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::PrintToString(row.files));
        projects = {};
        const auto place = "repo" + std::to_string(++count);
        looseProject(place);
        home.file(place + "/build.gradle");
        for (const auto& file : row.files)
            home.file(place + "/build/outputs/" + file);

        auto expected =
            known(place + "/build", "Build Gradle (" + place + "/build)", Kind::buildOutput, Safety::costly);
        expected.warnings = {"Berisi " + row.labels +
                             ". Pastikan sudah diunggah ke Play Console sebelum menghapus."};
        EXPECT_THAT(withoutActivity(), ElementsAre(expected));
    }
}

TEST_F(ProjectArtifactBuildFolderTests, aGradleBuildWithoutReleaseOutputsIsRegenerable) {
    looseProject("loose");
    home.file("loose/build.gradle");
    home.folder("loose/build/outputs/bundle");
    home.file("loose/build/outputs/apk/debug/release.apk");
    home.file("loose/build/outputs/logs/mapping");
    home.file("loose/build/bundle/release/app.aab");

    EXPECT_THAT(withoutActivity(), ElementsAre(known("loose/build", "Build Gradle (loose/build)")));
}

TEST_F(ProjectArtifactBuildFolderTests, aBuildFolderOfAnXcodeProjectIsListedByItsFolders) {
    for (const auto* marker : {"App.xcodeproj", "App.xcworkspace", "project.yml", "Package.swift"}) {
        SCOPED_TRACE(marker);
        projects = {};
        const auto place = std::string("repo ") + marker;
        repository(place, "build/\n");
        home.file(place + "/ios/" + marker);
        home.file(place + "/ios/package.json"); // which the rule after this one looks for
        for (const auto* name :
             {"DerivedData", "OldDerivedData2", "Archives", "Archives2", "screenshots", ".x"})
            home.file(place + "/ios/build/" + name + "/data");
        home.file(place + "/ios/build/file");
        home.symlink(place + "/ios/build/link", home.path());

        const auto build = place + "/ios/build/";
        auto archives = unknown(build + "Archives", "Arsip rilis iOS (Archives)", 20'000'000);
        archives.warnings = {
            "Berisi dSYM untuk membaca crash build yang beredar. Lebih baik pindahkan ke SSD."};
        EXPECT_THAT(candidates(),
                    UnorderedElementsAre(
                        known(build + "DerivedData", "DerivedData proyek (ios/build/DerivedData)"),
                        known(build + "OldDerivedData2", "DerivedData proyek (ios/build/OldDerivedData2)"),
                        archives, unknown(build + "Archives2", "Hasil kerja build/Archives2", 50'000'000),
                        unknown(build + "screenshots", "Hasil kerja build/screenshots", 50'000'000),
                        unknown(build + ".x", "Hasil kerja build/.x", 50'000'000)));
    }
}

TEST_F(ProjectArtifactBuildFolderTests, aSecretInTheBuildFolderOfAnXcodeProjectIsLeftAlone) {
    looseProject("loose");
    home.folder("loose/App.xcodeproj");
    for (const auto& name : testing::protectedNames) {
        home.file("loose/build/" + name + "/data");
        home.file("loose/build/" + testing::upper(name) + "/data");
    }
    for (const auto& word : testing::protectedWords)
        home.file("loose/build/DerivedData-" + word + "/data");
    home.file("loose/build/.env.d/data");
    home.file("loose/build/Archives/data");

    EXPECT_THAT(folders(), ElementsAre(home.path("loose/build/Archives")));
}

TEST_F(ProjectArtifactBuildFolderTests, theBuildFolderOfAnXcodeProjectIsNotEnteredForSecretsEither) {
    looseProject("loose");
    home.folder("loose/App.xcodeproj");
    home.file("loose/build/signing/.venv/data");

    EXPECT_THAT(candidates(), IsEmpty());
}

TEST_F(ProjectArtifactBuildFolderTests, aBuildFolderBesideAnotherProjectFileIsBuildOutput) {
    for (const auto* marker : {"package.json", "Cargo.toml", "CMakeLists.txt"}) {
        SCOPED_TRACE(marker);
        projects = {};
        const auto place = std::string("repo ") + marker;
        repository(place, "build/\n");
        home.file(place + "/" + marker);
        home.file(place + "/build/outputs/mapping/data"); // which only Gradle makes for release

        EXPECT_THAT(candidates(), ElementsAre(known(place + "/build", "Hasil build (" + place + "/build)")));
    }
}

TEST_F(ProjectArtifactBuildFolderTests, anyOtherBuildFolderIsUnknownWhetherIgnoredOrNot) {
    repository("repo", "build/\n");
    home.file("repo/Makefile");
    home.file("repo/build/data");
    looseProject("loose");
    home.file("loose/go.mod");
    home.file("loose/build/data");

    EXPECT_THAT(withoutActivity(), ElementsAre(unknown("repo/build", "Folder build (repo/build)"),
                                               unknown("loose/build", "Folder build (loose/build)")));
}

TEST_F(ProjectArtifactBuildFolderTests, neighboursOfABuildFolderAreComparedExactly) {
    looseProject("loose");
    for (const auto* name :
         {"Build.gradle", "Package.json", "App.xcodeproj.bak", "project.yaml", "cargo.toml"})
        home.file(std::string("loose/") + name);
    home.file("loose/build/package.json");

    EXPECT_THAT(withoutActivity(), ElementsAre(unknown("loose/build", "Folder build (loose/build)")));
}

} // namespace
} // namespace korvanti
