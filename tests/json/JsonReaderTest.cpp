#include "OrvLibrary/json/json_reader.h"

#include <clocale>
#include <limits>
#include <list>
#include <locale>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Node = json::grammar<char>::variant;

Node parse(const std::string& text)
{
    return json::parse(text.begin(), text.end());
}

bool isEmpty(const Node& node)
{
    return node && node->empty();
}

/// The member `k` of an object; `members` is the object's text without braces.
Node memberK(const std::string& members)
{
    const Node root = parse("{" + members + "}");
    const auto* object = boost::any_cast<json::object>(root.get());
    if (!object || object->count("k") == 0)
        return nullptr;
    return object->find("k")->second;
}

template <class Type>
Type valueK(const std::string& value)
{
    const Node node = memberK("\"k\":" + value);
    const Type* held = node ? boost::any_cast<Type>(node.get()) : nullptr;
    EXPECT_TRUE(held) << value;
    return held ? *held : Type();
}

} // namespace

TEST(JsonReader, objectWithoutMembersReads)
{
    for (const char* text : {"{}", " { } ", "\r\n\t\v\f{\n}\n\n", "{ }"}) {
        const Node root = parse(text);
        const auto* object = boost::any_cast<json::object>(root.get());
        ASSERT_TRUE(object) << text;
        EXPECT_TRUE(object->empty());
    }
}

TEST(JsonReader, malformedTextsYieldAnEmptyValue)
{
    const std::string texts[] = {
        "",
        " \n\t",
        "[]",
        "[{}]",
        "\"a\"",
        "5",
        "null",
        "true",
        "{}}",
        "{} x",
        "{}{}",
        "{},",
        "{},\"a\":1",
        "{\"a\":1,}",
        "{,}",
        "{,\"a\":1}",
        "{\"a\":1",
        "{\"a\":",
        "{\"a\"",
        "{\"a",
        "{\"a\":{",
        "{\"a\":[",
        "{{",
        "{[",
        "{\"a\":1]",
        "{\"a\":[1}",
        "{\"a\":[1,]}",
        "{\"a\":[,1]}",
        "{\"a\":[1 2]}",
        "{\"a\" 1}",
        "{a:1}",
        "{'a':1}",
        "{1:1}",
        "{\"a\":1 \"b\":2}",
        "{\"a\":truex}",
        "{\"a\":t rue}",
        "{\"a\":True}",
        "{\"a\":nul}",
        "{\"a\":1x}",
        "{\"a\":- 1}",
        "{\"a\":--1}",
        "{\"a\":+}",
        "{\"a\":.}",
        "{\"a\":e5}",
        "{\"a\":5e}",
        "{\"a\":5e+}",
        "{\"a\":5.5.5}",
        "{\"a\":0x10}",
        "{\"a\":1 2}",
        "{\"a\":2147483648}",
        "{\"a\":-2147483649}",
        "{\"a\":[1,[2,{\"b\":99999999999999999999}]]}",
        "{\"a\":\"\\x\"}",
        "{\"a\":\"\\u12\"}",
        "{\"a\":\"\\u12g4\"}",
        "{\"a\":\"\\U0041\"}",
        "{\"a\":\"\\\"}",
        "{\"a\":\"\\",
        "{\"a\":\"\\u004",
        "// c\n{}",
        "\xEF\xBB\xBF{}",
        "{}\xA0",
        "{}\x85",
        std::string("{}\0", 3),
        std::string("{\0}", 3),
    };
    for (const std::string& text : texts)
        EXPECT_TRUE(isEmpty(parse(text))) << text;
}

TEST(JsonReader, loneOpeningBraceLeavesItsMarker)
{
    for (const char* text : {"{", " {", "{ \n", "\t{\t"}) {
        const Node root = parse(text);
        ASSERT_TRUE(root);
        EXPECT_TRUE(root->type() == typeid(json::grammar<char>::object_delimiter)) << text;
        EXPECT_FALSE(boost::any_cast<json::object>(root.get()));
        EXPECT_THROW(boost::any_cast<json::object>(*root), boost::bad_any_cast);
    }
}

TEST(JsonReader, numbersWithoutFractionOrExponentAreInts)
{
    EXPECT_EQ(valueK<int>("5"), 5);
    EXPECT_EQ(valueK<int>("-0"), 0);
    EXPECT_EQ(valueK<int>("+3"), 3);
    EXPECT_EQ(valueK<int>("007"), 7);
    EXPECT_EQ(valueK<int>("00000000000000000007"), 7);
    EXPECT_EQ(valueK<int>("999999999"), 999999999);
    EXPECT_EQ(valueK<int>("1000000000"), 1000000000);
    EXPECT_EQ(valueK<int>("2147483647"), std::numeric_limits<int>::max());
    EXPECT_EQ(valueK<int>("-2147483648"), std::numeric_limits<int>::min());
}

TEST(JsonReader, numbersWithFractionOrExponentAreDoubles)
{
    EXPECT_EQ(valueK<double>("5.0"), 5.0);
    EXPECT_EQ(valueK<double>("5."), 5.0);
    EXPECT_EQ(valueK<double>(".5"), 0.5);
    EXPECT_EQ(valueK<double>("-.5"), -0.5);
    EXPECT_EQ(valueK<double>("5e0"), 5.0);
    EXPECT_EQ(valueK<double>("5E+2"), 500.0);
    EXPECT_EQ(valueK<double>("+5.e-1"), 0.5);
    EXPECT_EQ(valueK<double>("99999999999.0"), 99999999999.0);
    EXPECT_EQ(valueK<double>("9999999999999e0"), 9999999999999.0);
    EXPECT_EQ(valueK<double>("2147483648.0"), 2147483648.0);
}

TEST(JsonReader, keywordsAndNull)
{
    EXPECT_TRUE(valueK<bool>("true"));
    EXPECT_FALSE(valueK<bool>("false"));
    EXPECT_TRUE(isEmpty(memberK("\"k\":null")));
}

TEST(JsonReader, nothingIsAskedBehindAKeywordOrNumber)
{
    const Node root = parse("{\"k\":[true,false,null,1]}");
    EXPECT_EQ(boost::any_cast<json::array>(*boost::any_cast<json::object>(*root).find("k")->second).size(),
              4U);
    EXPECT_EQ(valueK<std::string>("\"a\",\"l\":null"), "a");
    EXPECT_TRUE(isEmpty(parse("{\"k\":truefalse}")));
}

TEST(JsonReader, escapesAreResolved)
{
    EXPECT_EQ(valueK<std::string>(R"("a\u00E9b")"), "a\xC3\xA9"
                                                    "b");
    EXPECT_EQ(valueK<std::string>(R"("\u20AC")"), "\xE2\x82\xAC");
    EXPECT_EQ(valueK<std::string>(R"("\u20aC")"), "\xE2\x82\xAC");
    EXPECT_EQ(valueK<std::string>(R"("\/")"), "/");
    EXPECT_EQ(valueK<std::string>(R"("\"\\\b\f\n\r\t")"), "\"\\\b\f\n\r\t");
    EXPECT_EQ(valueK<std::string>(R"("a\u0000b")"), std::string("a\0b", 3));
    EXPECT_EQ(valueK<std::string>(R"("\uD83D\uDE00")"), "\xED\xA0\xBD\xED\xB8\x80");
}

TEST(JsonReader, bytesInStringsStandAsTheyAre)
{
    const std::string raw("\x01\n\r\t\0 \x7F\x80\xFF\xC3(", 11);
    EXPECT_EQ(valueK<std::string>("\"" + raw + "\""), raw);
    EXPECT_EQ(valueK<std::string>("\"" + std::string(100000, 'x') + "\"").size(), 100000U);
}

TEST(JsonReader, equalKeysStandInReverseOrder)
{
    const Node root = parse(R"({"k":1,"j":0,"k":2,"l":9,"k":3,"k":4})");
    const auto object = boost::any_cast<json::object>(*root);
    EXPECT_EQ(boost::any_cast<int>(*object.find("k")->second), 4);
    std::string order;
    for (auto [at, end] = object.equal_range("k"); at != end; ++at)
        order += std::to_string(boost::any_cast<int>(*at->second));
    EXPECT_EQ(order, "4321");
    EXPECT_EQ(object.size(), 6U);
}

TEST(JsonReader, keysAreOrderedByBytes)
{
    const Node root = parse(R"({"b":0,"\u00e9":0,"B":0,"":0,"a":0,"aa":0})");
    std::string order;
    for (const auto& member : boost::any_cast<json::object>(*root))
        order += member.first + ",";
    EXPECT_EQ(order, ",B,a,aa,b,\xC3\xA9,");
}

TEST(JsonReader, arraysKeepTheirOrder)
{
    const auto array = valueK<json::array>(R"([1,"b",[],{},null,2.5,true])");
    ASSERT_EQ(array.size(), 7U);
    EXPECT_EQ(boost::any_cast<int>(*array[0]), 1);
    EXPECT_EQ(boost::any_cast<std::string>(*array[1]), "b");
    EXPECT_TRUE(boost::any_cast<json::array>(*array[2]).empty());
    EXPECT_TRUE(boost::any_cast<json::object>(*array[3]).empty());
    EXPECT_TRUE(isEmpty(array[4]));
    EXPECT_EQ(boost::any_cast<double>(*array[5]), 2.5);
    EXPECT_TRUE(boost::any_cast<bool>(*array[6]));
}

TEST(JsonReader, blanksAroundTokensChangeNothing)
{
    const std::string blanks = " \t\n\v\f\r";
    const char* const tokens[] = {"{",     "\"k\"", ":",    "[", "1", ",",    "-2.5", ",", "{",
                                  "\"a\"", ":",     "null", "}", ",", "true", "]",    "}"};
    std::string text = blanks;
    for (const char* token : tokens)
        text += token + blanks;
    const Node root = parse(text);
    ASSERT_TRUE(boost::any_cast<json::object>(root.get()));
    EXPECT_EQ(boost::any_cast<json::array>(*boost::any_cast<json::object>(*root).find("k")->second).size(),
              4U);
}

TEST(JsonReader, takesTheIteratorsOfAnyText)
{
    std::string text = "{\"k\":1}";
    const std::list<char> list(text.begin(), text.end());
    const std::vector<char> vector(text.begin(), text.end());
    std::istringstream stream(text);
    const auto isRead = [](auto first, auto last) {
        return boost::any_cast<json::object>(json::parse(first, last).get()) != nullptr;
    };
    EXPECT_TRUE(isRead(text.begin(), text.end()));
    EXPECT_TRUE(isRead(text.cbegin(), text.cend()));
    EXPECT_TRUE(isRead(text.c_str(), text.c_str() + text.size()));
    EXPECT_TRUE(isRead(vector.begin(), vector.end()));
    EXPECT_TRUE(isRead(list.begin(), list.end()));
    EXPECT_TRUE(isRead(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()));
    EXPECT_FALSE(isRead(list.end(), list.end()));
}

TEST(JsonReader, processLocaleChangesNothing)
{
    struct Comma : std::numpunct<char>
    {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    const std::locale former = std::locale::global(std::locale(std::locale::classic(), new Comma));
    const std::string formerC = std::setlocale(LC_ALL, nullptr);
    for (const char* name : {"de_DE.UTF-8", "de_DE.ISO-8859-1", "C"}) {
        if (!std::setlocale(LC_ALL, name))
            continue;
        EXPECT_EQ(valueK<double>("1234.5"), 1234.5) << name;
        EXPECT_EQ(valueK<int>("1234"), 1234) << name;
        EXPECT_TRUE(isEmpty(parse("{\"k\":1,5}"))) << name;
        EXPECT_TRUE(isEmpty(parse("{}\xA0"))) << name;
    }
    std::setlocale(LC_ALL, formerC.c_str());
    std::locale::global(former);
}

TEST(JsonReader, codePointsBecomeUtf8)
{
    using json::unicodecvt::convert;
    EXPECT_EQ(convert(0), std::string(1, '\0'));
    EXPECT_EQ(convert(0x7F), "\x7F");
    EXPECT_EQ(convert(0x80), "\xC2\x80");
    EXPECT_EQ(convert(0x7FF), "\xDF\xBF");
    EXPECT_EQ(convert(0x800), "\xE0\xA0\x80");
    EXPECT_EQ(convert(0xD800), "\xED\xA0\x80");
    EXPECT_EQ(convert(0xFFFF), "\xEF\xBF\xBF");
}

TEST(JsonReader, treeOutlivesItsText)
{
    auto text =
        std::make_unique<std::string>("{\"k\":\"a long text that has a place of its own in memory\"}");
    const Node root = parse(*text);
    text.reset();
    EXPECT_EQ(boost::any_cast<std::string>(*boost::any_cast<json::object>(*root).find("k")->second),
              "a long text that has a place of its own in memory");
}
