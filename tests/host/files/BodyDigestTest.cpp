#include "OrvLibrary/host/impl/files/BodyDigest_p.h"

#include <gtest/gtest.h>

using host::BodyDigest;
using host::parseDigestField;

namespace {

const char kSha256OfAbc[] = "ungWv48Bz+pBQUDeXa4iI7ADYaOWF3qctBD/YfIAFa0=";
const char kSha512OfAbc[] =
    "3a81oZNherrMQXNJriBBMRLm+k6JqX6iCp7u5ktV05ohkpkqJ0/BqDa6PCOj/uu9RU1EI2Q86A4qmslPpUyknw==";

bool abcMatches(const std::string& headerText)
{
    WebUtils::HeaderMap headers;
    WebUtils::parseReturnHeader(headerText, headers);
    BodyDigest digest(headers);
    digest.update("a", 1);
    digest.update("bc", 2);
    return digest.matches();
}

} // namespace

TEST(BodyDigest, announcedDigestsMustBeTheBodys)
{
    const std::string right256 = std::string("sha-256=:") + kSha256OfAbc + ":";
    const std::string right512 = std::string("sha-512=:") + kSha512OfAbc + ":";
    const std::string wrong256 = "sha-256=:AAAAv48Bz+pBQUDeXa4iI7ADYaOWF3qctBD/YfIAFa0=:";
    const struct
    {
        std::string header;
        bool matches;
    } rows[] = {
        {"", true},
        {"Repr-Digest: " + right256, true},
        {"repr-digest: " + wrong256, false},
        {"Content-Digest: " + right512, true},
        {"Content-Digest: " + right512 + ", " + right256, true},
        {"Content-Digest: " + right512 + " , " + wrong256, false},
        {"Content-Digest: " + right512 + "\nContent-Digest: " + wrong256, false},
        {"Repr-Digest: " + right256 + "\nContent-Digest: " + wrong256, false},
        {"Repr-Digest: " + wrong256 + ", " + right256, true}, // the last value of a key counts
        {"Repr-Digest: " + wrong256 + ";weight=1, md5=:AAAA:", false},
        {"Repr-Digest: md5=:AAAA:, unixsum=:AA==:", true},
        {"Repr-Digest: sha-256=:AAAA:", false}, // too short for a digest
        {"Repr-Digest: sha-256=::", false},
        // These are not dictionaries of byte sequences, so the field is ignored.
        {"Repr-Digest: sha-256=AAAA", true},
        {"Repr-Digest: sha-256=:AAA:", true},
        {"Repr-Digest: sha-256=:AA!A:", true},
        {"Repr-Digest: sha-256=:A===:", true},
        {"Repr-Digest: sha-256=:AAAA", true},
        {"Repr-Digest: " + wrong256 + " x", true},
        {"Repr-Digest: " + wrong256 + ",", true},
        {"Repr-Digest: " + wrong256 + ", =:AAAA:", true},
        {"Repr-Digest: SHA-256=:AAAA:", true},
        {"Repr-Digest: sha-256", true},
    };
    for (const auto& row : rows)
        EXPECT_EQ(abcMatches(row.header), row.matches) << row.header;
}

TEST(BodyDigest, membersAreReadInOrder)
{
    std::vector<std::pair<std::string, std::string>> members;
    EXPECT_TRUE(parseDigestField("a=:YQ==:;p=1,\tb-1.*=:YWI=: , c_=:YWJj:", members));
    const std::vector<std::pair<std::string, std::string>> expected{
        {"a", "a"}, {"b-1.*", "ab"}, {"c_", "abc"}};
    EXPECT_EQ(members, expected);
}
