#include "shell/linux/LoginEntry.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>

namespace korvanti {
namespace {

TEST(LoginEntryTests, anEntryIsReadAsItWasWritten) {
    EXPECT_TRUE(LoginEntry::isEnabled(LoginEntry::text("/usr/bin/korvanti-window", true)));
    EXPECT_FALSE(LoginEntry::isEnabled(LoginEntry::text("/usr/bin/korvanti-window", false)));
}

TEST(LoginEntryTests, theWholeFile) {
    EXPECT_EQ(LoginEntry::text("/usr/bin/korvanti-window", true),
              "[Desktop Entry]\nType=Application\nName=Korvanti\nExec=\"/usr/bin/korvanti-window\"\n"
              "Hidden=false\n");
}

TEST(LoginEntryTests, aPathStaysOneWordOfOneLine) {
    const std::pair<std::string, std::string> rows[] = {
        {"/a b", R"("/a b")"},
        {"/100%f", R"("/100%%f")"},
        {"/a\"b", R"("/a\\"b")"},
        {"/$HOME", R"("/\\$HOME")"},
        {"/`id`", R"("/\\`id\\`")"},
        {"/a\\b", R"("/a\\\\b")"},
        {"/a\nHidden=true", R"("/a\nHidden=true")"},
        {"/a\rb", R"("/a\rb")"},
        {"/\xFF", "\"/\xFF\""},
    };
    for (const auto& [path, command] : rows) {
        const auto text = LoginEntry::text(path, true);
        EXPECT_TRUE(text.contains("\nExec=" + command + "\nHidden=false\n")) << text;
        EXPECT_TRUE(LoginEntry::isEnabled(text)) << text;
    }
}

TEST(LoginEntryTests, whatOthersSwitchedOffIsOff) {
    EXPECT_FALSE(LoginEntry::isEnabled("[Desktop Entry]\nX-GNOME-Autostart-enabled=false\nHidden=false\n"));
    EXPECT_TRUE(LoginEntry::isEnabled("[Desktop Entry]\nX-GNOME-Autostart-enabled=true\n"));
}

TEST(LoginEntryTests, whatIsNoEntryIsOff) {
    for (const auto* text : {"", "\n", "Hidden=false", "[Desktop", "\xFF\xFE"})
        EXPECT_FALSE(LoginEntry::isEnabled(text)) << text;
}

} // namespace
} // namespace korvanti
