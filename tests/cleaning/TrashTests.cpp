#include "cleaning/Trash.h"

#include "RemovalSupport.h"
#include "support/TempFolder.h"

#include <cerrno>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <vector>

namespace korvanti {
namespace {

using namespace korvanti::testing;

class TrashTests : public RemovalTests {
protected:
    [[nodiscard]] AdmittedEntry entry(const std::string& name) const {
        return admitted(home(), arena(name), {.allowRepository = true});
    }
    [[nodiscard]] Removal move(const std::string& name) const { return Trash::move(entry(name), home()); }
    [[nodiscard]] Names trash() const { return namesBelow(home(".Trash")); }
};

// What goes there

TEST_F(TrashTests, aFileGoesThereUnderItsName) {
    temp.folder("home/.Trash");
    temp.file("home/arena/report.pdf", {.text = "text"});
    temp.file("home/arena/beside");
    EXPECT_EQ(move("report.pdf"), done);
    EXPECT_EQ(trash(), Names{"report.pdf"});
    EXPECT_EQ(left(), Names{"beside"});
    EXPECT_EQ(textOf(home(".Trash/report.pdf")), "text");
}

TEST_F(TrashTests, aFolderGoesThereAsAWhole) {
    temp.file("home/arena/x/a/file", {.text = "text"});
    temp.file("home/arena/x/.git/HEAD");
    temp.symlink("home/arena/x/link", "a/file");
    EXPECT_EQ(move("x"), done);
    EXPECT_EQ(trash(), (Names{"x", "x/a", "x/a/file", "x/.git", "x/.git/HEAD", "x/link"}));
    EXPECT_EQ(left(), Names{});
}

TEST_F(TrashTests, itIsMovedAndNotCopied) {
    const auto file = temp.file("home/arena/file", {.modified = 1'234'567});
    temp.setMode("home/arena/file", 0640);
    temp.hardLink("other name", file);
    EXPECT_EQ(move("file"), done);
    EXPECT_TRUE(std::filesystem::equivalent(home(".Trash/file"), temp.path("other name")));
    EXPECT_EQ(modeOf(temp.path("other name")), 0640U);
}

TEST_F(TrashTests, aLinkGoesThereAsALink) {
    for (const auto& target : {precious(), precious("file"), std::string("nowhere"), std::string("..")}) {
        temp.symlink("home/arena/link", target);
        EXPECT_EQ(move("link"), done) << target;
        EXPECT_EQ(trash(), Names{"link"}) << target;
        EXPECT_EQ(std::filesystem::read_symlink(home(".Trash/link")), target);
        std::filesystem::remove(home(".Trash/link"));
    }
}

TEST_F(TrashTests, pipesGoThereWithoutWaitingForAnybody) {
    makePipe("home/arena/pipe");
    EXPECT_EQ(move("pipe"), done);
    EXPECT_EQ(trash(), Names{"pipe"});
}

TEST_F(TrashTests, namesMayBeAnything) {
    std::vector<std::string> names = {"two\nlines", "a b", "-rf", "*", "...", std::string(255, 'n')};
#ifndef __APPLE__ // whose file systems take no such names
    names.insert(names.end(), {"\xff\xfe", "\xc3.\xff"});
#endif
    for (const auto& name : names) {
        temp.file("home/arena/" + name);
        EXPECT_EQ(move(name), done) << name;
    }
    EXPECT_EQ(trash(), Names(names.begin(), names.end()));
}

// The Trash

TEST_F(TrashTests, aMissingTrashIsMadeForItsUserAlone) {
    const auto mask = ::umask(0);
    temp.file("home/arena/file");
    EXPECT_EQ(move("file"), done);
    ::umask(mask);
    EXPECT_EQ(modeOf(home(".Trash")), 0700U);
    EXPECT_EQ(trash(), Names{"file"});
}

TEST_F(TrashTests, aTrashThatIsThereKeepsItsMode) {
    temp.folder("home/.Trash");
    temp.setMode("home/.Trash", 0750);
    temp.file("home/arena/file");
    EXPECT_EQ(move("file"), done);
    EXPECT_EQ(modeOf(home(".Trash")), 0750U);
}

TEST_F(TrashTests, theHomeMayBeALink) {
    temp.file("home/arena/file");
    const auto link = temp.symlink("link", "home");
    EXPECT_EQ(Trash::move(admitted(link, link + "/arena/file"), link), done);
    EXPECT_EQ(trash(), Names{"file"});
}

TEST_F(TrashTests, aLinkInThePlaceOfTheTrashIsNotFollowed) {
    for (const std::string target : {"../elsewhere", "arena", "nowhere", ".Trash"}) {
        temp.folder("elsewhere");
        temp.file("home/arena/file");
        temp.symlink("home/.Trash", target);
        EXPECT_FALSE(move("file")) << target;
        EXPECT_EQ(left(), Names{"file"}) << target;
        EXPECT_EQ(namesBelow(temp.path("elsewhere")), Names{}) << target;
        EXPECT_EQ(std::filesystem::read_symlink(home(".Trash")), target);
        std::filesystem::remove(home(".Trash"));
    }
}

TEST_F(TrashTests, aFileInThePlaceOfTheTrashStays) {
    temp.file("home/arena/file");
    temp.file("home/.Trash", {.text = "text"});
    EXPECT_EQ(move("file"), failure(std::errc::not_a_directory, arena("file")));
    EXPECT_EQ(left(), Names{"file"});
    EXPECT_EQ(textOf(home(".Trash")), "text");
}

TEST_F(TrashTests, withoutAHomeNothingIsMoved) {
    temp.file("home/arena/file");
    EXPECT_EQ(Trash::move(entry("file"), temp.path("no-home")),
              failure(std::errc::no_such_file_or_directory, arena("file")));
    EXPECT_EQ(left(), Names{"file"});
}

// Names that are taken

TEST_F(TrashTests, aNameThatIsTakenGetsANumber) {
    const std::vector<std::vector<std::string>> series = {
        {"name", "name 2", "name 3", "name 4"}, {"name.ext", "name 2.ext", "name 3.ext"},
        {".hidden", ".hidden 2", ".hidden 3"},  {".hidden.ext", ".hidden 2.ext"},
        {"archive.tar.gz", "archive.tar 2.gz"}, {"two words.txt", "two words 2.txt"},
    };
    Names all;
    for (const auto& names : series) {
        for (std::size_t i = 0; i < names.size(); ++i) {
            temp.file("home/arena/" + names.front(), {.text = std::to_string(i)});
            EXPECT_EQ(move(names.front()), done);
            all.insert(names[i]);
            EXPECT_EQ(trash(), all);
            EXPECT_EQ(textOf(home(".Trash/" + names[i])), std::to_string(i));
        }
    }
}

TEST_F(TrashTests, theFirstFreeNumberIsTaken) {
    for (const auto* taken : {"name", "name 2", "name 4"})
        temp.file(std::string("home/.Trash/") + taken);
    temp.file("home/arena/name", {.text = "moved"});
    EXPECT_EQ(move("name"), done);
    EXPECT_EQ(textOf(home(".Trash/name 3")), "moved");
}

TEST_F(TrashTests, nothingThatIsThereIsReplaced) {
    temp.folder("home/.Trash/empty folder");
    temp.file("home/.Trash/folder/file");
    temp.symlink("home/.Trash/dangling", "nowhere");
    temp.symlink("home/.Trash/link", "../arena");
    temp.file("home/.Trash/file", {.text = "old"});
    makePipe("home/.Trash/pipe");
    const auto before = trash();
    for (const auto& name : {"empty folder", "folder", "dangling", "link", "file", "pipe"}) {
        for (const bool folder : {true, false}) {
            const auto relative = std::string("home/arena/") + name;
            folder ? temp.folder(relative) : temp.file(relative);
            EXPECT_EQ(move(name), done) << name;
        }
    }
    auto after = before;
    for (const std::string name : {"empty folder", "folder", "dangling", "link", "file", "pipe"})
        after.insert({name + " 2", name + " 3"});
    EXPECT_EQ(trash(), after);
    EXPECT_EQ(textOf(home(".Trash/file")), "old");
    EXPECT_EQ(left(), Names{});
}

TEST_F(TrashTests, aNameWithoutRoomForANumberStaysWhereItStood) {
    const std::string name(255, 'n');
    temp.file("home/.Trash/" + name, {.text = "old"});
    temp.file("home/arena/" + name, {.text = "new"});
    EXPECT_EQ(move(name), failure(std::errc::filename_too_long, arena(name)));
    EXPECT_EQ(textOf(arena(name)), "new");
    EXPECT_EQ(textOf(home(".Trash/" + name)), "old");
}

// What happens between the verdict and the move

TEST_F(TrashTests, whatIsGoneAlreadyIsToldAsSuch) {
    temp.file("home/arena/file");
    const auto held = entry("file");
    std::filesystem::remove(arena("file"));
    EXPECT_EQ(Trash::move(held, home()), failure(std::errc::no_such_file_or_directory, arena("file")));
    EXPECT_EQ(trash(), Names{});
}

TEST_F(TrashTests, whatWasExchangedStays) {
    const auto exchanged = [&](const std::function<void()>& make, const std::function<void()>& put) {
        std::filesystem::remove_all(arena());
        make();
        const auto held = entry("x");
        rename("x", "old");
        put();
        const auto before = left();
        EXPECT_EQ(Trash::move(held, home()), failure(stale, arena("x")));
        EXPECT_EQ(left(), before);
        EXPECT_EQ(trash(), Names{});
    };
    const std::vector<std::function<void()>> kinds = {
        [&] { temp.file("home/arena/x"); },
        [&] { temp.file("home/arena/x/file"); },
        [&] { temp.symlink("home/arena/x", precious()); },
        [&] { temp.file("home/arena/x/.git/HEAD"); },
    };
    for (const auto& make : kinds) {
        for (const auto& put : kinds)
            exchanged(make, put);
    }
}

TEST_F(TrashTests, theEntryGoesFromTheFolderThatHeldItWhereverThatIsNow) {
    temp.file("home/arena/parent/x", {.text = "held"});
    temp.file("decoy/x", {.text = "decoy"});
    const auto held = entry("parent/x");
    rename("parent", "moved");
    temp.symlink("home/arena/parent", temp.path("decoy"));
    EXPECT_EQ(Trash::move(held, home()), done);
    EXPECT_EQ(textOf(home(".Trash/x")), "held");
    EXPECT_EQ(textOf(temp.path("decoy/x")), "decoy");
    EXPECT_EQ(left(), (Names{"moved", "parent"}));
}

} // namespace
} // namespace korvanti
