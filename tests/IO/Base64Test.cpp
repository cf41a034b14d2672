#include "OrvLibrary/IO/Base64.h"

#include <algorithm>
#include <random>
#include <string_view>

#include <gmock/gmock.h>

#include "OrvLibrary/IO/Base64Kernels_p.h"
#include "tests/IO/Base64Reference.h"

using Bytes = std::vector<unsigned char>;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

Bytes bytesOf(std::string_view text)
{
    return {text.begin(), text.end()};
}

std::string failureOf(const std::string& text)
{
    try {
        Base64::decode(text);
    } catch (const Base64::InvalidCharacterException& exception) {
        return exception.what();
    }
    return "";
}

Bytes randomBytes(std::mt19937& random, std::size_t count)
{
    Bytes bytes(count);
    for (unsigned char& byte : bytes)
        byte = static_cast<unsigned char>(random());
    return bytes;
}

void expectAsReference(const std::string& text)
{
    const test::ReferenceDecoding expected = test::referenceDecode(text);
    if (expected.failure.empty())
        ASSERT_EQ(Base64::decode(text), expected.bytes) << testing::PrintToString(text);
    else
        ASSERT_STREQ(failureOf(text).c_str(), expected.failure.c_str()) // a NUL character ends both
            << testing::PrintToString(text);
}

} // namespace

TEST(Base64, encodesThePublishedVectors)
{
    const char* const pairs[][2] = {{"", ""},
                                    {"f", "Zg=="},
                                    {"fo", "Zm8="},
                                    {"foo", "Zm9v"},
                                    {"foob", "Zm9vYg=="},
                                    {"fooba", "Zm9vYmE="},
                                    {"foobar", "Zm9vYmFy"},
                                    {"M", "TQ=="}};
    for (const auto& pair : pairs) {
        EXPECT_EQ(Base64::encode(bytesOf(pair[0])), pair[1]);
        EXPECT_EQ(Base64::decode(pair[1]), bytesOf(pair[0]));
    }
}

TEST(Base64, encodesEveryValueOfSixBits)
{
    Bytes bytes;
    for (unsigned value = 0; value < 64; value += 4) {
        const unsigned group = value << 18 | (value + 1) << 12 | (value + 2) << 6 | (value + 3);
        for (const int shift : {16, 8, 0})
            bytes.push_back(static_cast<unsigned char>(group >> shift));
    }
    const std::string text = Base64::encode(bytes);
    EXPECT_EQ(text, "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/");
    EXPECT_EQ(Base64::decode(text), bytes);
}

TEST(Base64, aCutGroupIsCompletedWithZeroBits)
{
    EXPECT_THAT(Base64::decode("TQ=="), ElementsAre(0x4D));
    EXPECT_THAT(Base64::decode("TQ"), ElementsAre(0x4D, 0, 0));
    EXPECT_THAT(Base64::decode("T"), ElementsAre(0x4C, 0, 0));
    EXPECT_THAT(Base64::decode("TWE"), ElementsAre(0x4D, 0x61, 0));
    EXPECT_THAT(Base64::decode("TWFuT"), ElementsAre('M', 'a', 'n', 0x4C, 0, 0));
    EXPECT_THAT(Base64::decode("TQ="), ElementsAre(0x4D, 0xC0)) << "the third is skipped, the fourth is not";
    EXPECT_THAT(Base64::decode(""), IsEmpty());
}

TEST(Base64, paddingIsTakenAnywhere)
{
    EXPECT_THAT(Base64::decode("TQ=a"), ElementsAre(0x4D, 0xDA));
    EXPECT_THAT(Base64::decode("QQ=A"), ElementsAre(0x41, 0xC0));
    EXPECT_THAT(Base64::decode("===="), ElementsAre(0xFF));
    EXPECT_THAT(Base64::decode("="), ElementsAre(0xFC, 0, 0));
    EXPECT_THAT(Base64::decode("=AAA"), ElementsAre(0xFC, 0, 0));
    EXPECT_THAT(Base64::decode("A=AA"), ElementsAre(0x03, 0xF0, 0));
    EXPECT_THAT(Base64::decode("TQ==TWFu"), ElementsAre('M', 'M', 'a', 'n'));
}

TEST(Base64, theFirstBadCharacterIsNamedWithItsPosition)
{
    EXPECT_EQ(failureOf("TQ\n="), "Invalid character '\n' at position 2.");
    EXPECT_EQ(failureOf("-"), "Invalid character '-' at position 0.");
    EXPECT_EQ(failureOf("TWFuTW_u"), "Invalid character '_' at position 6.");
    EXPECT_EQ(failureOf("TWFu *()"), "Invalid character ' ' at position 4.");
    EXPECT_EQ(failureOf("AAA\xC3\xA9"), "Invalid character '\xC3' at position 3.");
    EXPECT_EQ(failureOf(std::string(100, 'A') + "AA!?"), "Invalid character '!' at position 102.");
    EXPECT_EQ(failureOf(std::string(100000, 'A') + "."), "Invalid character '.' at position 100000.");
}

TEST(Base64, exactly65CharactersAreTaken)
{
    for (int code = 0; code < 256; ++code) {
        for (std::size_t place = 0; place < 40; ++place) {
            std::string text(40, 'A');
            text[place] = static_cast<char>(code);
            expectAsReference(text);
        }
    }
}

TEST(Base64, theExceptionIsAStandardOneThatKeepsItsText)
{
    const Base64::InvalidCharacterException exception("text");
    const Base64::InvalidCharacterException copy = exception;
    const std::exception& base = copy;
    EXPECT_STREQ(base.what(), "text");
}

TEST(Base64, randomBytesComeBackAtEveryLength)
{
    std::mt19937 random(1);
    for (std::size_t length = 0; length < 400; ++length) {
        const Bytes bytes = randomBytes(random, length);
        const std::string text = Base64::encode(bytes);
        ASSERT_EQ(text, test::referenceEncode(bytes));
        ASSERT_EQ(Base64::decode(text), bytes);
    }
}

TEST(Base64, lengthsAroundThePiecesComeBack)
{
    std::mt19937 random(2);
    for (const std::size_t piece : {12288u, 24576u}) {
        for (std::size_t length = piece - 40; length < piece + 40; ++length) {
            const Bytes bytes = randomBytes(random, length);
            const std::string text = Base64::encode(bytes);
            ASSERT_TRUE(text == test::referenceEncode(bytes)) << length;
            ASSERT_TRUE(Base64::decode(text) == bytes) << length;
        }
    }
}

TEST(Base64, contentOfManyPagesComesBack)
{
    Bytes bytes(12'000'000);
    for (std::size_t at = 0; at < bytes.size(); ++at)
        bytes[at] = static_cast<unsigned char>(at * 31 >> 8U);
    const std::string text = Base64::encode(bytes);
    EXPECT_TRUE(text == test::referenceEncode(bytes));
    EXPECT_TRUE(Base64::decode(text) == bytes);
}

TEST(Base64, mutatedTextsAreReadAsTheRulesSay)
{
    const std::string favourites = "==AZaz09+/ \n-_@[`{:,.\x7F\x80\xFF";
    std::mt19937 random(3);
    for (int round = 0; round < 20000; ++round) {
        std::string text = test::referenceEncode(randomBytes(random, random() % 60));
        for (unsigned change = random() % 3; change > 0 && !text.empty(); --change) {
            const std::size_t at = random() % text.size();
            const char c = favourites[random() % favourites.size()];
            switch (random() % 4) {
            case 0:
                text.erase(at, 1);
                break;
            case 1:
                text.insert(at, 1, c);
                break;
            default:
                text[at] = c;
            }
        }
        expectAsReference(text);
    }
}

TEST(Base64, aLateMutationOfALongTextIsReadAsTheRulesSay)
{
    std::mt19937 random(4);
    const std::string clean = test::referenceEncode(randomBytes(random, 40000));
    for (int round = 0; round < 100; ++round) {
        std::string text = clean;
        text[random() % text.size()] = round % 2 ? '=' : '*';
        const test::ReferenceDecoding expected = test::referenceDecode(text);
        if (expected.failure.empty())
            ASSERT_TRUE(Base64::decode(text) == expected.bytes);
        else
            ASSERT_EQ(failureOf(text), expected.failure);
    }
}

TEST(Base64Kernels, allGiveTheSameAndKeepInsideTheirCounts)
{
    std::mt19937 random(5);
    EXPECT_FALSE(base64::runnableKernels().empty());
    for (const base64::Kernels& kernels : base64::runnableKernels()) {
        for (std::size_t groups = 0; groups < 60; ++groups) {
            const Bytes bytes = randomBytes(random, groups * 3);
            std::string text(groups * 4 + 16, '#');
            kernels.encode(bytes.data(), bytes.size(), text.data());
            ASSERT_EQ(text, test::referenceEncode(bytes) + std::string(16, '#')) << kernels.name;
            Bytes back(bytes.size() + 16, 0x23);
            ASSERT_EQ(kernels.decode(text.data(), groups * 4, back.data()), groups * 4) << kernels.name;
            ASSERT_TRUE(std::equal(bytes.begin(), bytes.end(), back.begin())) << kernels.name;
            ASSERT_THAT(Bytes(back.end() - 16, back.end()), testing::Each(0x23)) << kernels.name;
        }
    }
}

TEST(Base64Kernels, stopAtTheGroupThatNeedsCare)
{
    for (const base64::Kernels& kernels : base64::runnableKernels()) {
        for (std::size_t place = 0; place < 80; ++place) {
            std::string text(80, 'z');
            text[place] = '=';
            Bytes bytes(60);
            EXPECT_EQ(kernels.decode(text.data(), text.size(), bytes.data()), place / 4 * 4) << kernels.name;
        }
    }
}
