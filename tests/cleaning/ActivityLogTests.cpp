#include "cleaning/ActivityLog.h"

#include "support/NewProcess.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <limits>
#include <set>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace korvanti {
namespace {

using ::testing::ElementsAre;
using testing::inANewProcess;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using ::testing::SizeIs;
using ::testing::StartsWith;
using testing::textOf;
using ::testing::UnorderedElementsAre;

constexpr std::size_t all = 500;

const std::array<std::string, 8> keys = {"id",   "date",  "kind",    "title",
                                         "path", "bytes", "success", "message"};

ActivityEntry entry(const std::string& title = "Judul") {
    return {.date = instantFromSeconds(1'769'847'300), // 2026-01-31T08:15:00Z
            .kind = "Hapus permanen",
            .title = title,
            .path = "/Users/ani/Library/Caches/x",
            .bytes = 4711,
            .success = true,
            .message = "Dihapus"};
}

/// The value of each key in a good line, as JSON.
std::string valueOf(const std::string& key, const std::string& title) {
    if (key == "id")
        return R"("E621E1F8-C36C-495A-93FC-0C247A3E6E5F")";
    if (key == "date")
        return R"("2026-01-31T08:15:00Z")";
    if (key == "title")
        return '"' + title + '"';
    if (key == "bytes")
        return "1";
    return key == "success" ? "true" : R"("x")";
}

/// A good line without its line feed but for one key: it has `value` (as JSON), or is missing without one.
std::string lineWith(const std::string& changed, const std::string& value,
                     const std::string& title = "Judul") {
    std::string line;
    for (const auto& key : keys) {
        if (key != changed || !value.empty())
            line +=
                (line.empty() ? "{\"" : ",\"") + key + "\":" + (key == changed ? value : valueOf(key, title));
    }
    return line + "}";
}

std::string line(const std::string& title = "Judul") {
    return lineWith("none", "", title);
}

std::vector<std::string> titlesOf(const std::vector<ActivityEntry>& entries) {
    std::vector<std::string> titles;
    std::ranges::transform(entries, std::back_inserter(titles), &ActivityEntry::title);
    return titles;
}

class ActivityLogTests : public ::testing::Test {
protected:
    [[nodiscard]] std::vector<std::string> titlesIn(const std::string& text, std::size_t limit = all) const {
        temp.file("activity.jsonl", {.text = text});
        return titlesOf(log.load(limit));
    }
    [[nodiscard]] std::string text() const { return textOf(log.url()); }

    testing::TempFolder temp;
    const ActivityLog log{temp.path("activity.jsonl")};
};

// An entry

TEST_F(ActivityLogTests, everyEntryHasAnIdentityOfItsOwn) {
    std::set<std::string> identities;
    for (int count = 0; count < 1000; ++count)
        identities.insert(entry().id.text());
    EXPECT_THAT(identities, SizeIs(1000));
}

TEST_F(ActivityLogTests, entriesDifferByEachField) {
    const auto one = entry();
    EXPECT_EQ(one, ActivityEntry(one));
    std::array<ActivityEntry, 8> others;
    others.fill(one);
    others[0].id = Uuid::random();
    others[1].date += std::chrono::seconds(1);
    others[2].kind += "x";
    others[3].title += "x";
    others[4].path += "x";
    others[5].bytes += 1;
    others[6].success = false;
    others[7].message += "x";
    for (const auto& other : others)
        EXPECT_NE(one, other);
}

// The form of the file

TEST_F(ActivityLogTests, aLogIsItsPlaceAndTouchesNoFile) {
    const ActivityLog other(temp.path("folder/other.jsonl"));
    EXPECT_EQ(other.url(), temp.path("folder/other.jsonl"));
    EXPECT_TRUE(std::filesystem::is_empty(temp.path()));
}

TEST_F(ActivityLogTests, theFirstAppendMakesTheFile) {
    EXPECT_THAT(log.load(all), IsEmpty());
    EXPECT_FALSE(std::filesystem::exists(log.url()));

    const auto first = entry();
    log.append(first);

    EXPECT_TRUE(std::filesystem::is_regular_file(log.url()));
    EXPECT_THAT(log.load(all), ElementsAre(first));
}

TEST_F(ActivityLogTests, eachEntryIsOneLineThatEndsInOneLineFeed) {
    log.append(entry());
    EXPECT_EQ(std::ranges::count(text(), '\n'), 1);
    EXPECT_EQ(text().back(), '\n');
    const auto first = text();

    log.append(entry());
    EXPECT_EQ(std::ranges::count(text(), '\n'), 2);
    EXPECT_EQ(text().back(), '\n');
    EXPECT_THAT(text(), StartsWith(first));
    EXPECT_EQ(text()[first.size()], '{');
}

TEST_F(ActivityLogTests, aLineIsACompactObjectOfExactlyTheEightKeys) {
    const auto written = entry();
    log.append(written);

    const auto json = Json::parse(text());
    std::vector<std::string> found;
    for (const auto& [key, value] : json.items())
        found.push_back(key);
    EXPECT_THAT(found,
                UnorderedElementsAre("id", "date", "kind", "title", "path", "bytes", "success", "message"));
    EXPECT_EQ(json["id"], written.id.text());
    EXPECT_EQ(json["date"], "2026-01-31T08:15:00Z");
    EXPECT_EQ(json["kind"], "Hapus permanen");
    EXPECT_EQ(json["title"], "Judul");
    EXPECT_EQ(json["path"], "/Users/ani/Library/Caches/x");
    EXPECT_TRUE(json["bytes"].is_number_integer());
    EXPECT_EQ(json["bytes"], 4711);
    EXPECT_TRUE(json["success"].is_boolean());
    EXPECT_EQ(json["success"], true);
    EXPECT_EQ(json["message"], "Dihapus");
    EXPECT_EQ(text().find(": "), std::string::npos);
    EXPECT_EQ(text().find(", "), std::string::npos);
}

TEST_F(ActivityLogTests, identityAndDateHaveTheirCanonicalForm) {
    auto written = entry();
    written.date += std::chrono::microseconds(999'999);
    log.append(written);

    const auto json = Json::parse(text());
    EXPECT_THAT(json["id"].get<std::string>(),
                MatchesRegex("[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12}"));
    EXPECT_EQ(json["date"], "2026-01-31T08:15:00Z"); // no fraction
}

TEST_F(ActivityLogTests, whatWasWrittenIsReadAgain) {
    std::vector<ActivityEntry> written = {entry("pertama"), entry("kedua")};
    written[1].success = false;
    written[1].bytes = std::numeric_limits<std::int64_t>::max();
    written[1].date = instantFromSeconds(0);
    written[0].bytes = std::numeric_limits<std::int64_t>::min();
    for (const auto& one : written)
        log.append(one);

    std::ranges::reverse(written);
    EXPECT_EQ(log.load(all), written);
}

TEST_F(ActivityLogTests, anyTextStaysOnItsLineAndIsReadAgain) {
    auto hard = entry("line\nfeed\r\n \"quotes\" \\ \t \x01 \x7f / \u2028 é \U0001F600");
    hard.path = std::string("/zero\0byte", 10);
    hard.kind = "";
    hard.message = std::string(100'000, 'x');
    log.append(hard);
    log.append(entry("kedua"));

    EXPECT_EQ(std::ranges::count(text(), '\n'), 2);
    const auto entries = log.load(all);
    ASSERT_THAT(entries, SizeIs(2));
    EXPECT_EQ(entries[1], hard);
}

TEST_F(ActivityLogTests, aPathThatIsNotUtf8DoesNotSpoilTheFile) {
    log.append(entry("pertama"));
    auto odd = entry("kedua");
    odd.path = "/Users/ani/\xff\xfe/x";
    log.append(odd);

    EXPECT_THAT(titlesOf(log.load(all)), ElementsAre("kedua", "pertama"));
    EXPECT_EQ(log.load(all).front().path, "/Users/ani/\uFFFD\uFFFD/x");
}

// Appending

TEST_F(ActivityLogTests, whatTheFileHeldStaysByteForByte) {
    const std::string before = "no JSON at all \xff\n\n\n" + line() + "\n";
    temp.file("activity.jsonl", {.text = before});
    log.append(entry());
    EXPECT_THAT(text(), StartsWith(before + "{"));
}

TEST_F(ActivityLogTests, withoutItsFolderAnAppendDoesNothing) {
    const ActivityLog other(temp.path("missing/activity.jsonl"));
    other.append(entry());
    EXPECT_FALSE(std::filesystem::exists(temp.path("missing")));
    EXPECT_THAT(other.load(all), IsEmpty());
}

TEST_F(ActivityLogTests, theFileIsMadeAgainAfterItWasTakenAway) {
    log.append(entry("pertama"));
    std::filesystem::rename(log.url(), temp.path("old"));
    log.append(entry("kedua"));
    EXPECT_THAT(titlesOf(log.load(all)), ElementsAre("kedua"));
}

TEST_F(ActivityLogTests, anAppendBehindATornLineSpoilsOnlyItself) {
    const auto torn = line("torn");
    temp.file("activity.jsonl", {.text = line("pertama") + "\n" + torn.substr(0, torn.size() / 2)});
    log.append(entry("lost"));
    EXPECT_THAT(titlesOf(log.load(all)), ElementsAre("pertama"));

    log.append(entry("ketiga"));
    EXPECT_THAT(titlesOf(log.load(all)), ElementsAre("ketiga", "pertama"));
}

TEST_F(ActivityLogTests, anAppendBehindAWholeLineWithoutLineFeedContinuesIt) {
    temp.file("activity.jsonl", {.text = line("pertama")});
    log.append(entry("kedua"));
    EXPECT_THAT(text(), StartsWith(line("pertama") + "{"));
    EXPECT_THAT(log.load(all), IsEmpty());
}

TEST_F(ActivityLogTests, aFolderInPlaceOfTheFileStaysAsItIs) {
    temp.folder("activity.jsonl");
    log.append(entry());
    EXPECT_THAT(log.load(all), IsEmpty());
    EXPECT_TRUE(std::filesystem::is_empty(log.url()));
    EXPECT_TRUE(std::filesystem::is_directory(log.url()));
}

TEST_F(ActivityLogTests, aPipeInPlaceOfTheFileKeepsNobodyWaiting) {
    ASSERT_EQ(::mkfifo(log.url().c_str(), 0600), 0);
    inANewProcess([&] { // which would wait there for ever
        log.append(entry());
        EXPECT_THAT(log.load(all), IsEmpty());
    });
    EXPECT_TRUE(std::filesystem::is_fifo(log.url()));
}

TEST_F(ActivityLogTests, aLinkToAFileIsFollowed) {
    const auto file = temp.file("elsewhere/log", {.text = line("pertama") + "\n"});
    temp.symlink("activity.jsonl", file);
    log.append(entry("kedua"));
    EXPECT_THAT(titlesOf(log.load(all)), ElementsAre("kedua", "pertama"));
    EXPECT_TRUE(std::filesystem::is_symlink(log.url()));
    EXPECT_EQ(std::ranges::count(textOf(file), '\n'), 2);
}

TEST_F(ActivityLogTests, aLinkToItselfIsNoFile) {
    temp.symlink("activity.jsonl", log.url());
    log.append(entry());
    EXPECT_THAT(log.load(all), IsEmpty());
    EXPECT_TRUE(std::filesystem::is_symlink(log.url()));
}

TEST_F(ActivityLogTests, whereTheFileCanNotGrowTheOldLinesStay) {
    log.append(entry("pertama"));
    const auto before = text();
    for (const std::size_t room :
         {std::size_t{0}, std::size_t{10}}) { // for nothing of the line, for a part of it
        inANewProcess([&] {
            static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
            const rlimit limit = {before.size() + room, before.size() + room};
            ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
            log.append(entry("lost"));
        });
        EXPECT_THAT(text(), StartsWith(before));
        EXPECT_THAT(titlesOf(log.load(all)), ElementsAre("pertama")) << room;
    }
}

TEST_F(ActivityLogTests, twoProcessesAppendWholeLines) {
    constexpr int lines = 2000;
    std::vector<pid_t> processes;
    for (const auto* name : {"satu", "dua"}) {
        const pid_t process = ::fork();
        ASSERT_GE(process, 0);
        if (process == 0) {
            for (int count = 0; count < lines; ++count)
                log.append(entry(std::string(name) + std::to_string(count)));
            ::_exit(0);
        }
        processes.push_back(process);
    }
    for (const auto process : processes) {
        int status = -1;
        ASSERT_EQ(::waitpid(process, &status, 0), process);
        EXPECT_EQ(status, 0);
    }

    const auto titles = titlesOf(log.load(10 * lines));
    const std::set<std::string> different(titles.begin(), titles.end());
    EXPECT_THAT(titles, SizeIs(2 * lines));
    EXPECT_THAT(different, SizeIs(2 * lines));
    EXPECT_EQ(std::ranges::count(text(), '\n'), 2 * lines);
}

TEST_F(ActivityLogTests, aReaderBesideAWriterSeesWholeLines) {
    constexpr int lines = 500;
    const pid_t writer = ::fork();
    ASSERT_GE(writer, 0);
    if (writer == 0) {
        for (int count = 0; count < lines; ++count)
            log.append(entry(std::to_string(count)));
        ::_exit(0);
    }
    for (int status = 0; ::waitpid(writer, &status, WNOHANG) == 0;) {
        const auto titles = titlesOf(log.load(lines));
        for (std::size_t index = 0; index < titles.size(); ++index)
            ASSERT_EQ(titles[index], std::to_string(titles.size() - 1 - index));
    }
    EXPECT_THAT(log.load(lines), SizeIs(lines));
}

// Loading: which lines

TEST_F(ActivityLogTests, aMissingFileAndAnEmptyOneLoadAsNothing) {
    EXPECT_THAT(log.load(all), IsEmpty());
    EXPECT_THAT(titlesIn(""), IsEmpty());
    EXPECT_THAT(titlesIn("\n\n\n"), IsEmpty());
}

TEST_F(ActivityLogTests, theNewestLineComesFirstWhateverItsDate) {
    const auto older = lineWith("date", R"("2001-01-01T00:00:00Z")", "last written");
    EXPECT_THAT(titlesIn(line("first") + "\n" + line("second") + "\n" + older + "\n"),
                ElementsAre("last written", "second", "first"));
}

TEST_F(ActivityLogTests, theLastLinesUpToTheLimitAreTaken) {
    const auto file = line("1") + "\n" + line("2") + "\n" + line("3") + "\n";
    EXPECT_THAT(titlesIn(file, 0), IsEmpty());
    EXPECT_THAT(titlesIn(file, 1), ElementsAre("3"));
    EXPECT_THAT(titlesIn(file, 2), ElementsAre("3", "2"));
    EXPECT_THAT(titlesIn(file, 3), ElementsAre("3", "2", "1"));
    EXPECT_THAT(titlesIn(file, 4), ElementsAre("3", "2", "1"));
    EXPECT_THAT(titlesIn(file, std::numeric_limits<std::size_t>::max()), ElementsAre("3", "2", "1"));
}

TEST_F(ActivityLogTests, aLastLineWithoutLineFeedIsALine) {
    EXPECT_THAT(titlesIn(line("1") + "\n" + line("2")), ElementsAre("2", "1"));
}

TEST_F(ActivityLogTests, aDamagedLineCostsOnlyItself) {
    EXPECT_THAT(titlesIn(line("1") + "\nrusak\n" + line("3") + "\n"), ElementsAre("3", "1"));
}

TEST_F(ActivityLogTests, aDamagedLineCostsAPlaceOfTheLimit) {
    EXPECT_THAT(titlesIn(line("1") + "\nrusak\n" + line("3") + "\n", 2), ElementsAre("3"));
    EXPECT_THAT(titlesIn(line("1") + "\nrusak\n", 1), IsEmpty());
}

TEST_F(ActivityLogTests, ofAThousandLinesTheLastOfThemDamaged499AreLoaded) {
    std::string file;
    for (int number = 1; number < 1000; ++number)
        file += line(std::to_string(number)) + "\n";
    const auto titles = titlesIn(file + line("1000").substr(0, 40) + "\n");
    ASSERT_THAT(titles, SizeIs(499));
    EXPECT_EQ(titles.front(), "999");
    EXPECT_EQ(titles.back(), "501");
}

TEST_F(ActivityLogTests, blankLinesTakeNoPlaceInTheLimit) {
    EXPECT_THAT(titlesIn("\n\n" + line("1") + "\n\n\n" + line("2") + "\n\n\n\n", 2), ElementsAre("2", "1"));
}

TEST_F(ActivityLogTests, aLineOfBlanksIsALine) {
    EXPECT_THAT(titlesIn(line("1") + "\n  \n" + line("2") + "\n", 2), ElementsAre("2"));
}

TEST_F(ActivityLogTests, linesAreToldApartByLineFeedsOnly) {
    EXPECT_THAT(titlesIn(line("1") + "\r\n" + line("2") + "\r\n"), ElementsAre("2", "1"));
    EXPECT_THAT(titlesIn(line("1") + "\r" + line("2")), IsEmpty());
    EXPECT_THAT(titlesIn(line("1\u2028\u0085") + "\n"), ElementsAre("1\u2028\u0085"));
}

TEST_F(ActivityLogTests, aFileThatIsNotUtf8LoadsAsNothing) {
    const auto good = line("1") + "\n";
    for (const std::string bad :
         {"\xff", "\xc3", "\xed\xa0\x80", "\xc0\xaf", "\xf4\x90\x80\x80", "\x80", "\xe2\x82"}) {
        EXPECT_THAT(titlesIn(bad + "\n" + good + good), IsEmpty());
        EXPECT_THAT(titlesIn(good + bad + "\n" + good), IsEmpty());
        EXPECT_THAT(titlesIn(good + good + bad), IsEmpty());
        EXPECT_THAT(titlesIn(bad + "\n" + good, 1), IsEmpty());
    }
}

TEST_F(ActivityLogTests, aZeroByteDamagesOnlyItsLine) {
    EXPECT_THAT(titlesIn(line("1") + "\n" + std::string(1, '\0') + line("2") + "\n" + line("3") + "\n"),
                ElementsAre("3", "1"));
}

TEST_F(ActivityLogTests, aFileOfAnySizeIsRead) {
    {
        std::ofstream file(log.url(), std::ios::binary);
        file.seekp(std::int64_t{80} * 1024 * 1024); // a hole: one long damaged line
        file << "\n" << line("terakhir") << "\n";
    }
    EXPECT_THAT(titlesOf(log.load(all)), ElementsAre("terakhir"));
}

// Loading: one line

TEST_F(ActivityLogTests, aLineIsReadFieldByField) {
    temp.file("activity.jsonl", {.text = R"({"message":"m","success":false,"bytes":-7,"path":"\/a\/b",)"
                                         R"("title":"t","kind":"k","date":"2026-01-31T08:15:00Z",)"
                                         R"("id":"E621E1F8-C36C-495A-93FC-0C247A3E6E5F"})"
                                         "\n"});
    EXPECT_THAT(log.load(all),
                ElementsAre(ActivityEntry{.id = *Uuid::parse("E621E1F8-C36C-495A-93FC-0C247A3E6E5F"),
                                          .date = instantFromSeconds(1'769'847'300),
                                          .kind = "k",
                                          .title = "t",
                                          .path = "/a/b",
                                          .bytes = -7,
                                          .success = false,
                                          .message = "m"}));
}

TEST_F(ActivityLogTests, aSlashMayBeEscapedOrNot) {
    EXPECT_THAT(titlesIn(line(R"(a\/b/c)") + "\n"), ElementsAre("a/b/c"));
}

TEST_F(ActivityLogTests, unknownKeysDoNotMatter) {
    for (const std::string more : {R"("extra":1)", R"("extra":null)", R"("extra":{"id":[1,{}]})", R"("":"")"})
        EXPECT_THAT(titlesIn("{" + more + "," + line("1").substr(1) + "\n"), ElementsAre("1")) << more;
}

TEST_F(ActivityLogTests, blanksBetweenTheTokensDoNotMatter) {
    EXPECT_THAT(titlesIn(" { " + line("1").substr(1) + "\t \n"), ElementsAre("1"));
}

TEST_F(ActivityLogTests, eachOfTheEightKeysIsRequired) {
    for (const auto& key : keys) {
        EXPECT_THAT(titlesIn(lineWith(key, "") + "\n" + line("good") + "\n"), ElementsAre("good")) << key;
        EXPECT_THAT(titlesIn(lineWith(key, "null") + "\n" + line("good") + "\n"), ElementsAre("good")) << key;
    }
}

TEST_F(ActivityLogTests, aValueOfAnotherTypeSpoilsTheLine) {
    for (const auto& key : keys) {
        for (const std::string value : {"[]", "{}", "[\"x\"]"})
            EXPECT_THAT(titlesIn(lineWith(key, value) + "\n"), IsEmpty()) << key << value;
        if (key != "bytes") {
            EXPECT_THAT(titlesIn(lineWith(key, "1") + "\n"), IsEmpty()) << key;
        }
        if (key != "success") {
            EXPECT_THAT(titlesIn(lineWith(key, "true") + "\n"), IsEmpty()) << key;
        }
    }
    EXPECT_THAT(titlesIn(lineWith("bytes", "\"1\"") + "\n"), IsEmpty());
    EXPECT_THAT(titlesIn(lineWith("success", "\"true\"") + "\n"), IsEmpty());
}

TEST_F(ActivityLogTests, bytesAreAWholeNumberOf64Bits) {
    for (const std::string good : {"0", "-1", "9223372036854775807", "-9223372036854775808"})
        EXPECT_THAT(titlesIn(lineWith("bytes", good) + "\n"), ElementsAre("Judul")) << good;
    for (const std::string bad :
         {"1.5", "9223372036854775808", "-9223372036854775809", "1e300", "0x10", "01", "+1", "NaN"})
        EXPECT_THAT(titlesIn(lineWith("bytes", bad) + "\n"), IsEmpty()) << bad;
}

TEST_F(ActivityLogTests, aDateHasSecondsAndAZoneAndNoFraction) {
    const auto withDate = [&](const std::string& date) {
        return titlesIn(lineWith("date", '"' + date + '"') + "\n");
    };
    EXPECT_THAT(withDate("2026-01-31T08:15:00Z"), ElementsAre("Judul"));
    EXPECT_THAT(withDate("2026-01-31T15:15:00+07:00"), ElementsAre("Judul"));
    EXPECT_EQ(log.load(1).at(0).date, instantFromSeconds(1'769'847'300));
    for (const std::string bad :
         {"2026-01-31T08:15:00.5Z", "2026-01-31T08:15:00.000Z", "2026-01-31T08:15:00,5Z",
          "2026-01-31T08:15:00", "2026-01-31T08:15Z", "2026-01-31", "", "kemarin", "2026-13-31T08:15:00Z",
          "2026-01-31 08:15:00", "1769847300"})
        EXPECT_THAT(withDate(bad), IsEmpty()) << bad;
}

TEST_F(ActivityLogTests, anIdentityHasTheCanonicalForm) {
    const auto withId = [&](const std::string& id) {
        return titlesIn(lineWith("id", '"' + id + '"') + "\n");
    };
    EXPECT_THAT(withId("e621e1f8-c36c-495a-93fc-0c247a3e6e5f"), ElementsAre("Judul"));
    for (const std::string bad :
         {"", "E621E1F8C36C495A93FC0C247A3E6E5F", "{E621E1F8-C36C-495A-93FC-0C247A3E6E5F}",
          "E621E1F8-C36C-495A-93FC-0C247A3E6E5", "E621E1F8-C36C-495A-93FC-0C247A3E6E5F0",
          "G621E1F8-C36C-495A-93FC-0C247A3E6E5F"})
        EXPECT_THAT(withId(bad), IsEmpty()) << bad;
}

TEST_F(ActivityLogTests, aLineIsExactlyOneObject) {
    for (const std::string& bad :
         {std::string("null"), std::string("1"), std::string("\"x\""), std::string("[]"), std::string("{}"),
          "[" + line() + "]", line() + line(), line() + ",", line() + "x", line().substr(1),
          line().substr(0, line().size() - 1), std::string(100'000, '['), std::string(100'000, '{'),
          "{\"extra\":" + std::string(100'000, '[') + std::string(100'000, ']') + "," + line().substr(1)})
        EXPECT_THAT(titlesIn(bad + "\n" + line("good") + "\n"), ElementsAre("good")) << bad.substr(0, 200);
}

TEST_F(ActivityLogTests, aVeryLongLineIsRead) {
    const std::string title(5'000'000, 'x');
    EXPECT_THAT(titlesIn(line("1") + "\n" + line(title) + "\n"), ElementsAre(title, "1"));
}

} // namespace
} // namespace korvanti
