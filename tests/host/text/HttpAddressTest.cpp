#include "OrvLibrary/host/impl/text/HttpAddress_p.h"

#include <gtest/gtest.h>

namespace {

struct Row
{
    std::string given;
    std::string expected;
};

} // namespace

TEST(HttpAddress, wireTextEncodesWhatHttpCannotCarryAndNothingElse)
{
    const Row rows[] = {
        {"http://h/a b", "http://h/a%20b"},
        {"http://h/\t\r\n\x01", "http://h/%09%0D%0A%01"},
        {std::string("http://h/\0x", 11), "http://h/%00x"},
        {"http://h/\x7f\x80\xff", "http://h/%7F%80%FF"},
        {"http://h/T\xc3\xbcr", "http://h/T%C3%BCr"},
        {"http://h/100%", "http://h/100%25"},
        {"http://h/100%2", "http://h/100%252"},
        {"http://h/%zz%2g%g2", "http://h/%25zz%252g%25g2"},
        {"http://h/%20%aF", "http://h/%20%aF"},
        {"http://h/%%20", "http://h/%25%20"},
        {"http://h/?a&b#c+d\"<>\\^`{|}~!$'()*,;:@[]=", "http://h/?a&b#c+d\"<>\\^`{|}~!$'()*,;:@[]="},
    };
    for (const Row& row : rows)
        EXPECT_EQ(HttpAddress::wireText(row.given), row.expected) << row.given;
}

TEST(HttpAddress, webAddressesAreHttpOrHttpsWithAHost)
{
    for (const char* url : {"http://h", "https://h/x", "HTTP://h", "HtTpS://h:8/", "http://[::1]",
                            "http://u:p@h/", "http://h?x", "http://127.0.0.1:80"})
        EXPECT_TRUE(HttpAddress::isWebAddress(url)) << url;
    for (const char* url :
         {"",          "http",      "http:",     "http:/",        "http://",    "http:///x",   "http://:80/",
          "http://?x", "http:h",    "ftp://h",   "file:///etc/x", "file://h/x", "/a/http://h", "a.zip",
          "C:\\a",     " http://h", "httpx://h", "//h/x",         "http://u@/", "http://#x"})
        EXPECT_FALSE(HttpAddress::isWebAddress(url)) << url;
}

TEST(HttpAddress, hostAndPortKnowTheDefaultPorts)
{
    const Row rows[] = {
        {"http://Host/x", "host:80"},
        {"https://Host", "host:443"},
        {"http://h:8080?x", "h:8080"},
        {"http://h:/x", "h:80"},
        {"http://u:p@h:1/", "h:1"},
        {"http://[::1]:7/", "[::1]:7"},
        {"http://[2001:DB8::1]", "[2001:db8::1]:80"},
        {"ftp://h", ""},
    };
    for (const Row& row : rows)
        EXPECT_EQ(HttpAddress::hostAndPort(row.given), row.expected) << row.given;
}

TEST(HttpAddress, loneTrailingQuestionMarkSurvivesResolving)
{
    EXPECT_EQ(HttpAddress::resolve("http://h/redirect", "/content?"), "http://h/content?");
    EXPECT_EQ(HttpAddress::resolve("http://h/redirect?a", "?"), "http://h/redirect?");
    EXPECT_EQ(HttpAddress::resolve("http://h/redirect", "https://other/content?"), "https://other/content?");
}

TEST(HttpAddress, referencesAreResolvedAgainstTheFormerAddress)
{
    // The examples of RFC 3986 that do not need a fragment in the base address, and each mark of a scheme.
    const std::string base = "http://a/b/c/d;p?q";
    const Row rows[] = {
        {"g:h", "g:h"},
        {"g+:h", "g+:h"},
        {"g-:h", "g-:h"},
        {"g.:h", "g.:h"},
        {"g_:h", "http://a/b/c/g_:h"},
        {"1g:h", "http://a/b/c/1g:h"},
        {"g", "http://a/b/c/g"},
        {"./g", "http://a/b/c/g"},
        {"g/", "http://a/b/c/g/"},
        {"/g", "http://a/g"},
        {"//g", "http://g"},
        {"?y", "http://a/b/c/d;p?y"},
        {"g?y", "http://a/b/c/g?y"},
        {"#s", "http://a/b/c/d;p?q#s"},
        {"g#s", "http://a/b/c/g#s"},
        {"g?y#s", "http://a/b/c/g?y#s"},
        {";x", "http://a/b/c/;x"},
        {"g;x", "http://a/b/c/g;x"},
        {"", "http://a/b/c/d;p?q"},
        {".", "http://a/b/c/"},
        {"./", "http://a/b/c/"},
        {"..", "http://a/b/"},
        {"../", "http://a/b/"},
        {"../g", "http://a/b/g"},
        {"../..", "http://a/"},
        {"../../g", "http://a/g"},
        {"../../../g", "http://a/g"},
        {"/./g", "http://a/g"},
        {"/../g", "http://a/g"},
        {"/g//../h", "http://a/g/h"},
        {"g.", "http://a/b/c/g."},
        {"..g", "http://a/b/c/..g"},
        {"./../g", "http://a/b/g"},
        {"g/./h", "http://a/b/c/g/h"},
        {"g/../h", "http://a/b/c/h"},
        {"g?y/../x", "http://a/b/c/g?y/../x"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(HttpAddress::resolve(base, row.given), row.expected) << row.given;
    EXPECT_EQ(HttpAddress::resolve("http://h", "x"), "http://h/x");
    EXPECT_EQ(HttpAddress::resolve("http://h?x=/a/b", "c"), "http://h/c");
}

TEST(HttpAddress, redirectsLeadWithinTheWebAndNeverOutOfAProtectedConnection)
{
    EXPECT_TRUE(HttpAddress::mayLead("http://h/", "http://g/"));
    EXPECT_TRUE(HttpAddress::mayLead("http://h/", "https://g/"));
    EXPECT_TRUE(HttpAddress::mayLead("https://h/", "HTTPS://g/"));
    EXPECT_FALSE(HttpAddress::mayLead("https://h/", "http://h/"));
    EXPECT_FALSE(HttpAddress::mayLead("HTTPS://h/", "HTTP://h/"));
    EXPECT_FALSE(HttpAddress::mayLead("http://h/", "ftp://h/"));
    EXPECT_FALSE(HttpAddress::mayLead("https://h/", "file:///x"));
}
