#include "base/PropertyList.h"

#include "base/Text.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <limits>
#include <pthread.h>
#include <string>
#include <vector>

namespace korvanti {

/// How a failed comparison shows a value.
void PrintTo(const PropertyList& value, std::ostream* out) {
    if (const auto text = value.text())
        *out << '"' << *text << '"';
    else if (const auto integer = value.integer())
        *out << *integer;
    else if (const auto real = value.real())
        *out << *real;
    else
        *out << (value.array() ? "an array" : value.dictionary() ? "a dictionary" : "another value");
}

namespace {

using namespace std::string_literals;
using testing::textOf;

constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();

std::string sample(const std::string& name) {
    return textOf(KORVANTI_TEST_DATA "/" + name);
}

std::string xml(const std::string& element) {
    return R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">)" +
           element + "</plist>\n";
}

std::optional<PropertyList> parseXml(const std::string& element) {
    return PropertyList::parse(xml(element));
}

std::string bigEndian(std::uint64_t value, std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size && i < 8; ++i)
        bytes[size - 1 - i] = static_cast<char>(value >> (8 * i) & 0xFFU);
    return bytes;
}

/// Writes the binary form object by object, sound or not.
struct Binary {
    std::vector<std::string> objects;
    std::size_t referenceSize = 2;
    std::size_t offsetSize = 4;
    std::uint64_t top = 0;

    std::string head(unsigned type, std::size_t count) const {
        const char first = static_cast<char>(type << 4U | (count < 15 ? count : 15U));
        return std::string(1, first) + (count < 15 ? ""s : "\x12" + bigEndian(count, 4));
    }
    std::string references(const std::vector<std::uint64_t>& numbers) const {
        std::string bytes;
        for (const auto number : numbers)
            bytes += bigEndian(number, referenceSize);
        return bytes;
    }
    std::string array(const std::vector<std::uint64_t>& elements) const {
        return head(0xA, elements.size()) + references(elements);
    }
    std::string dictionary(const std::vector<std::uint64_t>& keys,
                           const std::vector<std::uint64_t>& values) const {
        return head(0xD, keys.size()) + references(keys) + references(values);
    }
    std::string bytes() const {
        std::string all = "bplist00";
        std::string table;
        for (const auto& object : objects) {
            table += bigEndian(all.size(), offsetSize);
            all += object;
        }
        const std::uint64_t tableStart = all.size();
        return all + table + std::string(6, '\0') + static_cast<char>(offsetSize) +
               static_cast<char>(referenceSize) + bigEndian(objects.size(), 8) + bigEndian(top, 8) +
               bigEndian(tableStart, 8);
    }
};

std::optional<PropertyList> parseBinary(const std::string& object) {
    return PropertyList::parse(Binary{.objects = {object}}.bytes());
}

std::optional<PropertyList> parseBinary(std::initializer_list<std::string> objects) {
    return PropertyList::parse(Binary{.objects = objects}.bytes());
}

std::string binaryReal(double value) {
    return "\x23" + bigEndian(std::bit_cast<std::uint64_t>(value), 8);
}
std::string binaryDate(double value) {
    return "\x33" + bigEndian(std::bit_cast<std::uint64_t>(value), 8);
}

std::optional<std::int64_t> integerOf(const std::optional<PropertyList>& value) {
    return value ? value->integer() : std::nullopt;
}
std::optional<double> realOf(const std::optional<PropertyList>& value) {
    return value ? value->real() : std::nullopt;
}
std::optional<std::string> textIn(const std::optional<PropertyList>& value) {
    return value ? value->text() : std::nullopt;
}
std::optional<Instant> dateOf(const std::optional<PropertyList>& value) {
    return value ? value->date() : std::nullopt;
}
std::optional<std::string> dataOf(const std::optional<PropertyList>& value) {
    return value && value->data() ? std::optional(value->data()->bytes) : std::nullopt;
}

PropertyList text(std::string value) {
    return PropertyList(std::move(value));
}
PropertyList integer(std::int64_t value) {
    return PropertyList(value);
}

/// All texts in a value are Unicode.
bool isRepaired(const PropertyList& value) {
    const auto repaired = [](const std::string& bytes) { return Text::repaired(bytes) == bytes; };
    if (const auto* array = value.array())
        return std::ranges::all_of(*array, isRepaired);
    if (const auto* dictionary = value.dictionary())
        return std::ranges::all_of(*dictionary, [&](const auto& entry) {
            return repaired(entry.first) && isRepaired(entry.second);
        });
    return repaired(value.text().value_or(""));
}

std::string repeated(const std::string& part, std::size_t count) {
    std::string all;
    for (std::size_t i = 0; i < count; ++i)
        all += part;
    return all;
}

// What real tools and applications write

TEST(PropertyListTests, theXmlAndTheBinaryFormOfOneListAreEqual) {
    const auto binary = PropertyList::parse(sample("Info-binary.plist"));
    ASSERT_TRUE(binary);
    EXPECT_EQ(PropertyList::parse(sample("Info-xml.plist")), binary);
}

TEST(PropertyListTests, readsAnApplicationsInfoList) {
    const auto info = PropertyList::parse(sample("Info-binary.plist"));
    ASSERT_TRUE(info);
    EXPECT_EQ(info->text("CFBundleIdentifier"), "com.contoh.Catatan");
    EXPECT_EQ(info->text("CFBundleDisplayName"), "Catatan é 日本");
    EXPECT_EQ(info->find("NSHighResolutionCapable")->boolean(), true);
    EXPECT_EQ(info->find("ContohData")->data()->bytes, "\x00\x01\xfe\xff"s);
    EXPECT_EQ(info->find("ContohTanggal")->date(), instantFromSeconds(1'748'594'515));
    EXPECT_EQ(*info->find("ContohAngka"),
              PropertyList(PropertyList::Array{integer(0), integer(1), integer(-1), integer(255),
                                               integer(256), integer(65'536), integer(4'294'967'296),
                                               integer(smallest), integer(largest)}));
    EXPECT_EQ(*info->find("ContohPecahan"),
              PropertyList(PropertyList::Array{PropertyList(0.5), PropertyList(-1.25), PropertyList(1e20)}));
    EXPECT_EQ(info->text("ContohPanjang")->size(), 300U);
    EXPECT_TRUE(info->find("ContohKosong")->find("larik")->array()->empty());
    EXPECT_TRUE(info->find("ContohKosong")->find("kamus")->dictionary()->empty());
    EXPECT_EQ(info->find("ContohKosong")->text("teks"), "");
}

TEST(PropertyListTests, readsEverySample) {
    int samples = 0;
    for (const auto& file : std::filesystem::directory_iterator(KORVANTI_TEST_DATA)) {
        if (file.path().extension() != ".plist")
            continue;
        ++samples;
        EXPECT_TRUE(PropertyList::parse(textOf(file.path().string()))) << file.path();
    }
    EXPECT_GE(samples, 12);
}

TEST(PropertyListTests, readsTheAnswerOfAToolThatFailed) {
    const auto answer = PropertyList::parse(sample("diskutil-info-error.plist"));
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->find("Error")->boolean(), true);
    EXPECT_EQ(answer->find("ExitCode")->integer(), 1);
}

TEST(PropertyListTests, noPartOfASampleFromItsStartIsAList) {
    for (const char* name : {"Info-binary.plist", "Info-xml.plist"}) {
        const auto whole = sample(name);
        const auto end = std::string_view(whole).find_last_not_of('\n') + 1;
        for (std::size_t length = 0; length < end; ++length)
            EXPECT_FALSE(PropertyList::parse(std::string_view(whole).substr(0, length)))
                << name << ' ' << length;
    }
}

TEST(PropertyListTests, aChangedByteYieldsNothingOrASoundList) {
    for (const char* name : {"Info-binary.plist", "Info-xml.plist"}) {
        auto bytes = sample(name);
        for (auto& byte : bytes) {
            for (const unsigned flip : {0x01U, 0x10U, 0x80U, 0xFFU}) {
                const char old = byte;
                byte = static_cast<char>(static_cast<unsigned char>(byte) ^ flip);
                const auto list = PropertyList::parse(bytes);
                EXPECT_TRUE(!list || isRepaired(*list)) << name << ' ' << &byte - bytes.data();
                byte = old;
            }
        }
    }
}

// Values

TEST(PropertyListTests, aValueIsOfItsOwnTypeOnly) {
    const auto number = parseXml("<integer>1</integer>");
    ASSERT_TRUE(number);
    EXPECT_EQ(number->integer(), 1);
    EXPECT_FALSE(number->boolean());
    EXPECT_FALSE(number->real());
    EXPECT_FALSE(number->text());
    EXPECT_FALSE(number->date());
    EXPECT_FALSE(number->data());
    EXPECT_FALSE(number->array());
    EXPECT_FALSE(number->dictionary());
    EXPECT_FALSE(number->find("key"));
    EXPECT_FALSE(number->text("key"));
}

TEST(PropertyListTests, aKeyIsFoundInADictionaryOnly) {
    const auto list = parseXml("<dict><key>a</key><string>x</string><key>b</key><integer>1</integer></dict>");
    ASSERT_TRUE(list);
    EXPECT_EQ(list->text("a"), "x");
    EXPECT_EQ(list->text("b"), std::nullopt);
    EXPECT_EQ(list->find("c"), nullptr);
    EXPECT_EQ(list->find("b")->integer(), 1);
}

TEST(PropertyListTests, readsTruthInBothForms) {
    EXPECT_EQ(parseXml("<true/>"), PropertyList(true));
    EXPECT_EQ(parseXml("<false />"), PropertyList(false));
    EXPECT_EQ(parseXml("<true></true>"), PropertyList(true));
    EXPECT_EQ(parseBinary("\x09"), PropertyList(true));
    EXPECT_EQ(parseBinary("\x08"), PropertyList(false));
}

TEST(PropertyListTests, readsXmlIntegers) {
    EXPECT_EQ(integerOf(parseXml("<integer>0</integer>")), 0);
    EXPECT_EQ(integerOf(parseXml("<integer>-1</integer>")), -1);
    EXPECT_EQ(integerOf(parseXml("<integer>+7</integer>")), 7);
    EXPECT_EQ(integerOf(parseXml("<integer> 010\n</integer>")), 10);
    EXPECT_EQ(integerOf(parseXml("<integer>0x1F</integer>")), 31);
    EXPECT_EQ(integerOf(parseXml("<integer>-0x1f</integer>")), -31);
    EXPECT_EQ(integerOf(parseXml("<integer>9223372036854775807</integer>")), largest);
    EXPECT_EQ(integerOf(parseXml("<integer>-9223372036854775808</integer>")), smallest);
}

TEST(PropertyListTests, readsBinaryIntegersOfEverySize) {
    EXPECT_EQ(integerOf(parseBinary("\x10\xff")), 255);
    EXPECT_EQ(integerOf(parseBinary("\x11\xff\xfe")), 65'534);
    EXPECT_EQ(integerOf(parseBinary("\x12\xff\xff\xff\xfe")), 4'294'967'294);
    EXPECT_EQ(integerOf(parseBinary("\x13" + bigEndian(0xFFFF'FFFF'FFFF'FFFE, 8))), -2);
    EXPECT_EQ(integerOf(parseBinary("\x13" + bigEndian(0x8000'0000'0000'0000, 8))), smallest);
    EXPECT_EQ(integerOf(parseBinary("\x14" + bigEndian(5, 16))), 5);
    EXPECT_EQ(integerOf(parseBinary("\x14" + std::string(15, '\xff') + "\xfb")), -5);
}

TEST(PropertyListTests, anIntegerBeyondTheRangeIsEmpty) {
    for (const char* digits : {"9223372036854775808", "-9223372036854775809", "18446744073709551615",
                               "99999999999999999999999999", "-99999999999999999999999999"}) {
        EXPECT_EQ(parseXml("<integer>"s + digits + "</integer>"), PropertyList()) << digits;
    }
    EXPECT_EQ(parseBinary("\x14" + bigEndian(0xFFFF'FFFF'FFFF'FFFF, 16)), PropertyList());
    EXPECT_EQ(parseBinary("\x14\x01" + std::string(15, '\0')), PropertyList());
    EXPECT_EQ(parseBinary("\x14" + std::string(8, '\xff') + std::string(8, '\0')), PropertyList());
}

TEST(PropertyListTests, whatIsNoIntegerIsDamaged) {
    for (const char* wrong : {"", "x", "12ab", "1.0", "--1", "+-1", "-", "0x", "1 2", "1<!-- -->2"})
        EXPECT_FALSE(parseXml("<integer>"s + wrong + "</integer>")) << wrong;
    EXPECT_FALSE(parseXml("<integer/>"));
    EXPECT_FALSE(parseBinary("\x15" + std::string(32, '\0')));
    EXPECT_FALSE(parseBinary("\x13" + std::string(7, '\0')));
}

TEST(PropertyListTests, readsRealsInBothForms) {
    EXPECT_EQ(realOf(parseXml("<real>0.5</real>")), 0.5);
    EXPECT_EQ(realOf(parseXml("<real> -1.25e+3 </real>")), -1250);
    EXPECT_EQ(realOf(parseXml("<real>3</real>")), 3);
    EXPECT_EQ(realOf(parseXml("<real>.5</real>")), 0.5);
    EXPECT_EQ(realOf(parseXml("<real>-infinity</real>")), -std::numeric_limits<double>::infinity());
    EXPECT_EQ(realOf(parseXml("<real>1e999</real>")), std::numeric_limits<double>::infinity());
    EXPECT_TRUE(std::isnan(realOf(parseXml("<real>nan</real>")).value_or(0)));
    EXPECT_EQ(realOf(parseBinary("\x22\x3f\x80\x00\x00"s)), 1);
    EXPECT_EQ(realOf(parseBinary(binaryReal(-1.25))), -1.25);
}

TEST(PropertyListTests, whatIsNoRealIsDamaged) {
    for (const char* wrong : {"", "x", "1,5", "0x10", "1e", "1e+", ".", "1.5.2", "- 1"})
        EXPECT_FALSE(parseXml("<real>"s + wrong + "</real>")) << wrong;
    EXPECT_FALSE(parseBinary("\x21\x3f\x80"s));
}

TEST(PropertyListTests, readsDatesInBothForms) {
    EXPECT_EQ(dateOf(parseXml("<date>2026-11-15T18:42:59Z</date>")), instantFromSeconds(1'794'768'179));
    EXPECT_EQ(dateOf(parseXml("<date>0001-01-01T00:00:00Z</date>")), instantFromSeconds(-62'135'596'800));
    EXPECT_EQ(dateOf(parseXml("<date>9999-12-31T23:59:59Z</date>")), instantFromSeconds(253'402'300'799));
    EXPECT_EQ(dateOf(parseBinary(binaryDate(0))), instantFromSeconds(978'307'200));
    EXPECT_EQ(dateOf(parseBinary(binaryDate(-63'113'904'000))), instantFromSeconds(-62'135'596'800));
}

TEST(PropertyListTests, aBinaryDateHasItsFraction) {
    using std::chrono::microseconds;
    const auto reference = instantFromSeconds(978'307'200);
    EXPECT_EQ(dateOf(parseBinary(binaryDate(1.25))), reference + microseconds(1'250'000));
    EXPECT_EQ(dateOf(parseBinary(binaryDate(-0.25))), reference - microseconds(250'000));
}

TEST(PropertyListTests, aDateOutOfReachIsTheNearestInstant) {
    EXPECT_EQ(dateOf(parseBinary(binaryDate(1e300))), Instant::max());
    EXPECT_EQ(dateOf(parseBinary(binaryDate(-std::numeric_limits<double>::infinity()))), Instant::min());
    EXPECT_EQ(dateOf(parseBinary(binaryDate(1e13))), Instant::max());
    EXPECT_EQ(dateOf(parseBinary(binaryDate(-1e13))), Instant::min());
    EXPECT_EQ(parseBinary(binaryDate(std::numeric_limits<double>::quiet_NaN())), PropertyList());
}

TEST(PropertyListTests, whatIsNoDateIsDamaged) {
    for (const char* wrong : {"", "2025", "2025-99-01T00:00:00Z", "2025-02-29T00:00:00Z",
                              "2025-01-01T24:00:00Z", "2025-01-01T00:60:00Z", "2025-01-01T00:00:60Z",
                              "2025-01-01 00:00:00Z", "2025-999999999-01T00:00:00Z", "hello world, no date"})
        EXPECT_FALSE(parseXml("<date>"s + wrong + "</date>")) << wrong;
    EXPECT_FALSE(parseBinary("\x32" + bigEndian(0, 4)));
}

TEST(PropertyListTests, readsDataInBothForms) {
    EXPECT_EQ(dataOf(parseXml("<data>\n\tAAH+\n\t/w==\n</data>")), "\x00\x01\xfe\xff"s);
    EXPECT_EQ(dataOf(parseXml("<data>YWI=</data>")), "ab");
    EXPECT_EQ(dataOf(parseXml("<data></data>")), "");
    EXPECT_EQ(dataOf(parseXml("<data/>")), "");
    EXPECT_EQ(dataOf(parseBinary("\x43"
                                 "a\0b"s)),
              "a\0b"s);
    EXPECT_EQ(dataOf(parseBinary("\x4f\x11\x01\x00"s + std::string(256, 'x'))), std::string(256, 'x'));
}

TEST(PropertyListTests, whatIsNoBase64IsDamaged) {
    for (const char* wrong : {"*", "AAE", "A===", "AA=A", "AA==AAAA", "=", "AAAA===="})
        EXPECT_FALSE(parseXml("<data>"s + wrong + "</data>")) << wrong;
}

TEST(PropertyListTests, readsBinaryTexts) {
    EXPECT_EQ(textIn(parseBinary("\x50")), "");
    EXPECT_EQ(textIn(parseBinary("\x53"
                                 "a\0b"s)),
              "a\0b"s);
    EXPECT_EQ(textIn(parseBinary("\x63\x00\xe9\x65\xe5\x67\x2c"s)), "é日本");
    EXPECT_EQ(textIn(parseBinary("\x62\xd8\x3d\xde\x00"s)), "😀");
}

TEST(PropertyListTests, readsReferencesAndSectionsInXmlTexts) {
    EXPECT_EQ(textIn(parseXml("<string>&lt;&amp;lt;&gt; &quot;&apos; &#233;&#x65E5;&#x1F600;</string>")),
              "<&lt;> \"' é日😀");
    EXPECT_EQ(textIn(parseXml("<string>a<![CDATA[<b>&amp;]]>c<!-- <d> -->e</string>")), "a<b>&amp;ce");
    EXPECT_EQ(textIn(parseXml("<string> a\n b </string>")), " a\n b ");
    EXPECT_EQ(textIn(parseXml("<string/>")), "");
}

TEST(PropertyListTests, whatIsNoReferenceIsDamaged) {
    for (const char* wrong : {"&", "&amp", "&;", "&nbsp;", "&ampx;", "&#;", "&#x;", "&#0;", "&#xD800;",
                              "&#x110000;", "&#-1;", "&#99999999999999999999;", "&#12x;"})
        EXPECT_FALSE(parseXml("<string>"s + wrong + "</string>")) << wrong;
}

TEST(PropertyListTests, textThatIsNotUnicodeIsRepaired) {
    EXPECT_EQ(textIn(parseXml("<string>a\xff"
                              "b</string>")),
              "a\uFFFD"
              "b");
    EXPECT_EQ(textIn(parseBinary("\x53"
                                 "a\xff"
                                 "b")),
              "a\uFFFD"
              "b");
    EXPECT_EQ(textIn(parseBinary("\x63\x00\x61\xd8\x00\x00\x62"s)), "a\uFFFD"
                                                                    "b");
    const auto key = parseXml("<dict><key>\xff</key><true/></dict>");
    ASSERT_TRUE(key);
    EXPECT_TRUE(key->find("\uFFFD"));
}

TEST(PropertyListTests, aNullAndAnArchivesReferenceAreEmpty) {
    EXPECT_EQ(parseBinary("\x00"s), PropertyList());
    EXPECT_EQ(parseBinary("\x80\x05"), PropertyList());
    EXPECT_EQ(parseBinary("\x83\x00\x00\x00\x05"s), PropertyList());
}

TEST(PropertyListTests, readsArraysAndDictionariesInsideOneAnother) {
    const PropertyList expected(PropertyList::Array{
        PropertyList(PropertyList::Dictionary{{"a", text("a")}, {"b", PropertyList(PropertyList::Array())}}),
        text("a")});
    EXPECT_EQ(parseXml("<array><dict><key>a</key><string>a</string><key>b</key><array/></dict>"
                       "<string>a</string></array>"),
              expected);
    const Binary form;
    EXPECT_EQ(parseBinary({form.array({1, 2}), form.dictionary({2, 3}, {2, 4}),
                           "\x51"
                           "a",
                           "\x51"
                           "b",
                           form.array({})}),
              expected);
}

TEST(PropertyListTests, theLastOfEqualKeysWins) {
    const PropertyList expected(PropertyList::Dictionary{{"a", integer(2)}});
    EXPECT_EQ(parseXml("<dict><key>a</key><integer>1</integer><key>a</key><integer>2</integer></dict>"),
              expected);
    EXPECT_EQ(parseBinary({Binary().dictionary({1, 1}, {2, 3}),
                           "\x51"
                           "a",
                           "\x10\x01", "\x10\x02"}),
              expected);
}

TEST(PropertyListTests, readsLongArrays) {
    const auto fromXml = parseXml("<array>" + repeated("<integer>7</integer>", 300'000) + "</array>");
    ASSERT_TRUE(fromXml);
    EXPECT_EQ(fromXml->array()->size(), 300'000U);

    Binary form{.referenceSize = 3};
    std::vector<std::uint64_t> numbers(70'000);
    for (std::size_t i = 0; i < numbers.size(); ++i)
        numbers[i] = i + 1;
    form.objects.push_back(form.array(numbers));
    for (const auto number : numbers)
        form.objects.push_back("\x12" + bigEndian(number, 4));
    const auto fromBinary = PropertyList::parse(form.bytes());
    ASSERT_TRUE(fromBinary);
    EXPECT_EQ(fromBinary->array()->back().integer(), 70'000);
}

// The XML around the values

TEST(PropertyListTests, whatSurroundsTheListIsNotLookedAt) {
    EXPECT_EQ(PropertyList::parse("\xEF\xBB\xBF" + xml("<true/>")), PropertyList(true));
    EXPECT_EQ(PropertyList::parse(xml("<true/>") + "\nnonsense <"), PropertyList(true));
    EXPECT_EQ(PropertyList::parse("<!-- > <array> --><?note <dict>?>" + xml("<!----><true/><!-- -->")),
              PropertyList(true));
    EXPECT_EQ(PropertyList::parse("<true/>"), PropertyList(true));
}

TEST(PropertyListTests, attributesAreNotLookedAt) {
    EXPECT_EQ(PropertyList::parse("<plist version = '1.0'><string a=\"/>\" b='<x>' >x</string ></plist >"),
              text("x"));
}

TEST(PropertyListTests, whatIsNoXmlIsDamaged) {
    for (const char* wrong : {"",
                              " \n",
                              "text",
                              "<",
                              "<true",
                              "<true/",
                              "</true>",
                              "<plist/>",
                              "<plist></plist>",
                              "<plist><true/>",
                              "<plist><true/></array>",
                              "<plist><true/><true/></plist>",
                              "<plist><true/>x</plist>",
                              "</plist>",
                              "<plist>x<true/></plist>",
                              "<plist><nothing/></plist>",
                              "<plist><TRUE/></plist>",
                              "<?xml",
                              "<!-- ",
                              "<!DOCTYPE plist",
                              "<!DOCTYPE plist [<!ENTITY a 'b'>]><plist><true/></plist>",
                              "<![CDATA[<true/>]]>",
                              "<plist><string>x",
                              "<plist><string>x</key></plist>",
                              "<plist><string>x<b/></string></plist>",
                              "<plist><string><![CDATA[x</string></plist>",
                              "<plist><string a=\"></string></plist>",
                              "<plist><true>x</true></plist>",
                              "<plist><plist><true/></plist></plist>"})
        EXPECT_FALSE(PropertyList::parse(wrong)) << wrong;
}

TEST(PropertyListTests, aDictionaryHoldsKeysAndValuesInTurn) {
    for (const char* wrong :
         {"<dict><true/></dict>", "<dict><key>a</key></dict>", "<dict><key>a</key><key>b</key><true/></dict>",
          "<dict><key>a</key><true/><false/></dict>", "<array><key>a</key></array>", "<key>a</key>",
          "<dict><key>a</key><array></dict></array>", "<array></dict>", "<dict>", "<array><true/>"})
        EXPECT_FALSE(parseXml(wrong)) << wrong;
}

// The binary form and its references

TEST(PropertyListTests, aTrailerThatDoesNotFitIsDamaged) {
    const auto sound = Binary{.objects = {"\x09"}}.bytes();
    ASSERT_TRUE(PropertyList::parse(sound));
    const auto with = [&](std::size_t fromEnd, const std::string& bytes) {
        auto changed = sound;
        changed.replace(changed.size() - fromEnd, bytes.size(), bytes);
        return PropertyList::parse(changed);
    };
    constexpr std::size_t offsetSize = 26;
    constexpr std::size_t referenceSize = 25;
    constexpr std::size_t count = 24;
    constexpr std::size_t top = 16;
    constexpr std::size_t table = 8;
    for (const char size : {'\0', '\x03', '\x08', '\x09', '\xff'})
        EXPECT_FALSE(with(offsetSize, {size})) << static_cast<int>(size);
    EXPECT_FALSE(with(referenceSize, {'\0'}));
    EXPECT_FALSE(with(referenceSize, {'\x09'}));
    for (const std::uint64_t number :
         {std::uint64_t(0), std::uint64_t(2), std::uint64_t(1) << 62U, ~std::uint64_t(0)}) {
        EXPECT_FALSE(with(count, bigEndian(number, 8))) << number;
        EXPECT_FALSE(with(table, bigEndian(number, 8))) << number;
        EXPECT_EQ(with(top, bigEndian(number, 8)).has_value(), number == 0) << number;
    }
    EXPECT_FALSE(PropertyList::parse(sound + "x"));
    EXPECT_FALSE(PropertyList::parse(std::string(sound).insert(sound.size() - 32, "x")));
    EXPECT_FALSE(PropertyList::parse("bplist00"));
    EXPECT_FALSE(PropertyList::parse("bplist00" + std::string(32, '\0')));
}

TEST(PropertyListTests, anObjectOutsideTheObjectsIsDamaged) {
    const auto sound = Binary{.objects = {"\x09"}}.bytes();
    for (const std::uint64_t offset :
         {std::uint64_t(0), std::uint64_t(7), std::uint64_t(9), std::uint64_t(0xFFFF'FFFF)}) {
        auto changed = sound;
        changed.replace(9, 4, bigEndian(offset, 4));
        EXPECT_FALSE(PropertyList::parse(changed)) << offset;
    }
    EXPECT_FALSE(parseBinary(Binary().array({1})));
    EXPECT_FALSE(parseBinary({Binary().array({0xFFFF}), "\x09"}));
}

TEST(PropertyListTests, aReferenceBehindTheLastOffsetIsDamaged) {
    const Binary form{.objects = {Binary().array({2}), "\x09"}, .offsetSize = 1};
    auto bytes = form.bytes();
    bytes[bytes.size() - 32] =
        11; // read as an offset, the trailer's first byte would lead to the second object
    EXPECT_FALSE(PropertyList::parse(bytes));
}

TEST(PropertyListTests, contentsThatReachBeyondTheObjectsAreDamaged) {
    const std::string most = "\x13" + std::string(8, '\xff');
    for (const char type : {'\x4f', '\x5f', '\x6f', '\xaf', '\xdf'}) {
        EXPECT_FALSE(parseBinary(type + most)) << static_cast<int>(type);
        EXPECT_FALSE(parseBinary(type + "\x13\x80"s + std::string(7, '\0'))) << static_cast<int>(type);
        EXPECT_FALSE(parseBinary(type + "\x10\x10"s)) << static_cast<int>(type);
        EXPECT_FALSE(parseBinary(type + "\x13"s)) << static_cast<int>(type);
        EXPECT_FALSE(parseBinary(type + ("\x14" + bigEndian(0, 16)))) << static_cast<int>(type);
        EXPECT_FALSE(parseBinary(type + "\x50"s)) << static_cast<int>(type);
        EXPECT_FALSE(parseBinary(std::string(1, type))) << static_cast<int>(type);
    }
    for (const char* object :
         {"\x41", "\x51", "\x61z", "\xa1z", "\xd1zzz", "\x81z", "\x10", "\x22zzz", "\x33zzzzzzz"})
        EXPECT_FALSE(parseBinary(object)) << object;
}

TEST(PropertyListTests, anUnknownKindOfObjectIsDamaged) {
    for (const char* object : {"\x01", "\x0f", "\x70", "\x90", "\xb0", "\xc0", "\xe0", "\xf0"})
        EXPECT_FALSE(parseBinary(object)) << object;
}

TEST(PropertyListTests, aKeyThatIsNoTextIsDamaged) {
    const Binary form;
    EXPECT_FALSE(parseBinary({form.dictionary({1}, {1}), "\x10\x01"}));
    EXPECT_FALSE(parseBinary({form.dictionary({0}, {1}), "\x09"}));
    EXPECT_FALSE(parseBinary({form.dictionary({5}, {1}), "\x09"}));
}

TEST(PropertyListTests, aCycleIsDamaged) {
    const Binary form;
    EXPECT_FALSE(parseBinary(form.array({0})));
    EXPECT_FALSE(parseBinary({form.array({1}), form.array({2, 2}), form.array({0, 1})}));
    EXPECT_FALSE(parseBinary({form.dictionary({1}, {0}), "\x51"
                                                         "a"}));
}

// Limits

TEST(PropertyListTests, readsAnArrayNestedAtTheLimitAndNotBeyondIt) {
    const auto nested = [](std::size_t depth) {
        return repeated("<array>", depth) + repeated("</array>", depth);
    };
    const auto nestedBinary = [](std::size_t depth) {
        Binary form;
        for (std::size_t level = 1; level < depth; ++level)
            form.objects.push_back(form.array({level}));
        form.objects.push_back(form.array({}));
        return form.bytes();
    };
    EXPECT_TRUE(parseXml(nested(512)));
    EXPECT_FALSE(parseXml(nested(513)));
    EXPECT_FALSE(parseXml(nested(300'000)));
    EXPECT_EQ(PropertyList::parse(nestedBinary(512)), parseXml(nested(512)));
    EXPECT_FALSE(PropertyList::parse(nestedBinary(513)));
}

TEST(PropertyListTests, readsADictionaryNestedAtTheLimitAndNotBeyondIt) {
    const auto nested = [](std::size_t depth) {
        return repeated("<dict><key>a</key>", depth) + "<true/>" + repeated("</dict>", depth);
    };
    EXPECT_TRUE(parseXml(nested(512)));
    EXPECT_FALSE(parseXml(nested(513)));
}

TEST(PropertyListTests, theDeepestListOfLargeDictionariesFitsTheStackOfAThread) {
    std::string dictionary = "<dict>";
    for (int entry = 0; entry < 1900; ++entry)
        dictionary += "<key>" + std::to_string(1000 + entry) + "</key><true/>";
    static const std::string list =
        xml(repeated(dictionary + "<key>last</key>", 512) + "<true/>" + repeated("</dict>", 512));

    pthread_attr_t attributes;
    ASSERT_EQ(::pthread_attr_init(&attributes), 0);
    ASSERT_EQ(::pthread_attr_setstacksize(&attributes, 512UL * 1024), 0); // what a Mac gives a thread
    bool found = false;
    const auto parse = [](void* result) -> void* {
        *static_cast<bool*>(result) = PropertyList::parse(list).has_value();
        return nullptr;
    };
    pthread_t thread{};
    ASSERT_EQ(::pthread_create(&thread, &attributes, parse, &found), 0);
    ASSERT_EQ(::pthread_join(thread, nullptr), 0);
    ::pthread_attr_destroy(&attributes);
    EXPECT_TRUE(found);
}

TEST(PropertyListTests, tagsInCommentsAndTextsDoNotNest) {
    const auto many = repeated("<array>", 1000);
    EXPECT_EQ(textIn(parseXml("<!--" + many + "--><?x " + many + "?><string a='" + many + "'><!--" + many +
                              "--><![CDATA[" + many + "]]></string>")),
              many);
}

TEST(PropertyListTests, sharedArraysThatUnfoldWithoutEndAreDamaged) {
    Binary form;
    for (std::uint64_t level = 1; level < 60; ++level)
        form.objects.push_back(form.array({level, level}));
    form.objects.push_back("\x09");
    EXPECT_FALSE(PropertyList::parse(form.bytes()));
}

TEST(PropertyListTests, readsAMillionValuesAndNotOneMore) {
    const auto unfolding = [](std::size_t single) {
        // One array, a thousand in it of 998 values each, and some single values.
        Binary form;
        std::vector<std::uint64_t> top(1000, 1);
        top.insert(top.end(), single, 2);
        form.objects = {form.array(top), form.array(std::vector<std::uint64_t>(998, 2)), "\x09"};
        return PropertyList::parse(form.bytes());
    };
    EXPECT_TRUE(unfolding(999));
    EXPECT_FALSE(unfolding(1000));

    EXPECT_TRUE(parseXml("<array>" + repeated("<true/>", 999'999) + "</array>"));
    EXPECT_FALSE(parseXml("<array>" + repeated("<true/>", 1'000'000) + "</array>"));
    EXPECT_FALSE(parseXml("<array>" + repeated("<array/>", 1'000'000) + "</array>"));
}

TEST(PropertyListTests, oneLongTextReferredToOverAndOverIsDamaged) {
    const auto sharing = [](std::size_t times) {
        Binary form;
        form.objects = {form.array(std::vector<std::uint64_t>(times, 1)),
                        form.head(0x5, 1'048'576) + std::string(1'048'576, 'x')};
        return PropertyList::parse(form.bytes());
    };
    EXPECT_TRUE(sharing(64));
    EXPECT_FALSE(sharing(65));
}

TEST(PropertyListTests, aListLargerThanTheLimitIsNotRead) {
    constexpr std::size_t limit = 64UL * 1024 * 1024;
    auto bytes = xml("<true/>");
    bytes.resize(limit, ' ');
    EXPECT_TRUE(PropertyList::parse(bytes));
    EXPECT_FALSE(PropertyList::parse(bytes + ' '));
}

TEST(PropertyListTests, aTextOfNothingButReferencesTakesNoLongerThanItsLength) {
    EXPECT_EQ(textIn(parseXml("<string>" + repeated("&lt;", 4'000'000) + "</string>")),
              std::string(4'000'000, '<'));
}

} // namespace
} // namespace korvanti
