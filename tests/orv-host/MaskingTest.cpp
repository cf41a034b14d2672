#include "OrvHost/health/Masking.h"

#include <pwd.h>
#include <unistd.h>

#include <gmock/gmock.h>

#include "tests/support/ScopedEnvironment.h"

using OrvHost::Masking::withoutNames;
using OrvHost::Masking::withoutSecrets;
using test::ScopedEnvironment;

TEST(Masking, passwordsAndKeysOfAddressesAreHidden)
{
    const std::pair<const char*, const char*> table[] = {
        {"", ""},
        {"plain text, a@b", "plain text, a@b"},
        {"http://u:p@a.example/x", "http://***@a.example/x"},
        {"http://u@a.example and ftp://v:q@b.example", "http://***@a.example and ftp://***@b.example"},
        {"http://a.example/u@b", "http://a.example/u@b"},
        {"\"http://a\" <b@c>", "\"http://a\" <b@c>"},
        {"?key=1&token=2&password=3&secret=4&auth=5", "?key=***&token=***&password=***&secret=***&auth=***"},
        {"?shop=7&API_KEY=1#part", "?shop=7&API_KEY=***#part"},
        {"?apikey=1 &my-token=2", "?apikey=*** &my-token=***"},
        {"?monkey=1&keys=2&x=key=3", "?monkey=1&keys=2&x=key=3"},
        {"key=1", "key=1"},
        {"T\xC3\xBCr ?key=", "T\xC3\xBCr ?key=***"}};
    for (const auto& [text, expected] : table) {
        EXPECT_EQ(withoutSecrets(text), expected);
        EXPECT_EQ(withoutNames(text), expected);
    }
}

TEST(Masking, homeFoldersAreHidden)
{
    const ScopedEnvironment home("HOME", "/data/people/annabel.x");
    const std::pair<const char*, const char*> table[] = {
        {"/data/people/annabel.x/library and /data/people/annabel.x", "~/library and ~"},
        {"/home/berta/library, \"/home/carl\"", "/home/USER/library, \"/home/USER\""},
        {"/data/people/other", "/data/people/other"}};
    for (const auto& [text, expected] : table) {
        EXPECT_EQ(withoutNames(text), expected);
        EXPECT_EQ(withoutSecrets(text), text);
    }
}

TEST(Masking, rootOfAllFoldersIsNoHome)
{
    const ScopedEnvironment user("USER", nullptr), logName("LOGNAME", nullptr);
    {
        const ScopedEnvironment home("HOME", "/");
        EXPECT_EQ(withoutNames("/x/y"), "/x/y");
    }
    const ScopedEnvironment home("HOME", "/x");
    EXPECT_EQ(withoutNames("/x/y"), "~/y");
}

TEST(Masking, wholeWordsThatNameTheUserAreHidden)
{
    const std::string account = getpwuid(getuid())->pw_name;
    const ScopedEnvironment user("USER", "anna.b"), logName("LOGNAME", "bert");
    EXPECT_EQ(withoutNames("of anna.b, annaxb, anna.bx and Bert or bert@x"),
              "of USER, annaxb, anna.bx and Bert or USER@x");
    EXPECT_EQ(withoutNames(account + " x" + account), "USER x" + account);
}

TEST(Masking, emptyVariableNamesNobody)
{
    for (const char* const value : {static_cast<const char*>(nullptr), ""}) {
        const ScopedEnvironment user("USER", value), logName("LOGNAME", value);
        EXPECT_EQ(withoutNames("a plain text"), "a plain text");
    }
}
