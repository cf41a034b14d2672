#include "OrvLibrary/host/impl/text/HttpRedirect_p.h"

#include <gmock/gmock.h>

using testing::ElementsAre;

namespace {

const std::string kUrl = "https://a.example/b/c?d";

std::string targetOf(std::int64_t status, const std::string& header)
{
    return HttpRedirect::target(kUrl, status, "HTTP/1.1 302 Found\r\n" + header + "\r\n");
}

std::vector<std::string> linesFor(const std::string& target)
{
    std::vector<std::string> lines{"Authorization: a", "Accept: b", "cookie: c", "X-Cookie: d"};
    HttpRedirect::removeSecrets(lines, kUrl, target);
    return lines;
}

} // namespace

TEST(HttpRedirectTest, onlyTheFiveRedirectsLeadOn)
{
    for (const std::int64_t status : {301, 302, 303, 307, 308})
        EXPECT_EQ(targetOf(status, "Location: https://e.example/\r\n"), "https://e.example/") << status;
    for (const std::int64_t status : {0, 200, 300, 304, 305, 306, 309, 404})
        EXPECT_EQ(targetOf(status, "Location: https://e.example/\r\n"), "") << status;
}

TEST(HttpRedirectTest, targetIsRelativeToTheAddressAndHasNoFragment)
{
    EXPECT_EQ(targetOf(302, "location: e?f#g\r\n"), "https://a.example/b/e?f");
    EXPECT_EQ(targetOf(302, "Location: /e?\r\n"), "https://a.example/e?");
    EXPECT_EQ(targetOf(302, "Location: \r\n"), "");
    EXPECT_EQ(targetOf(302, "Server: x\r\n"), "");
}

TEST(HttpRedirectTest, anotherServerDoesNotSeeTheSecrets)
{
    EXPECT_THAT(linesFor("https://a.example/e"),
                ElementsAre("Authorization: a", "Accept: b", "cookie: c", "X-Cookie: d"));
    for (const char* target : {"https://e.example/b", "https://a.example:444/b", "http://a.example/b"})
        EXPECT_THAT(linesFor(target), ElementsAre("Accept: b", "X-Cookie: d")) << target;
}
