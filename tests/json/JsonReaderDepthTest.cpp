#include "OrvLibrary/json/json_reader.h"

#include <pthread.h>

#include <functional>
#include <string>

#include <gtest/gtest.h>

namespace {

using Node = json::grammar<char>::variant;

Node parse(const std::string& text)
{
    return json::parse(text.begin(), text.end());
}

std::string repeat(const std::string& piece, int times)
{
    std::string result;
    for (int i = 0; i < times; ++i)
        result += piece;
    return result;
}

/// A text with `levels` levels: the root object, then containers made of the given parts.
std::string nested(int levels, const std::string& open, const std::string& close)
{
    return "{\"k\":" + repeat(open, levels - 1) + repeat(close, levels - 1) + "}";
}

std::string nestedArrays(int levels)
{
    return nested(levels, "[", "]");
}

/// Objects in which each has two members around the next one.
std::string nestedObjects(int levels)
{
    return "{" + repeat("\"a\":1,\"k\":{", levels - 1) + repeat("},\"z\":null", levels - 1) + "}";
}

std::string nestedInTurn(int levels)
{
    const int pairs = (levels - 2) / 2;
    return "{\"k\":[" + repeat("1,{\"k\":[", pairs) + repeat("],\"l\":[]}", pairs) + "]}";
}

void* run(void* job)
{
    (*static_cast<std::function<void()>*>(job))();
    return nullptr;
}

/// Runs a job on a thread with a stack of 512 KiB.
void onSmallStack(std::function<void()> job)
{
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, 512 * 1024), 0);
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, &attributes, run, &job), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

int levelsOf(Node node)
{
    for (int levels = 0;; ++levels) {
        if (const auto* elements = boost::any_cast<json::array>(node.get())) {
            if (elements->empty())
                return levels + 1;
            node = elements->back();
        } else if (const auto* members = boost::any_cast<json::object>(node.get())) {
            if (members->count("k") == 0)
                return levels + 1;
            node = members->find("k")->second;
        } else {
            return levels;
        }
    }
}

} // namespace

TEST(JsonReaderDepth, thousandLevelsParseOnASmallStack)
{
    for (const std::string& text : {nestedArrays(1000), nestedObjects(1000), nestedInTurn(1000)}) {
        onSmallStack([&text] {
            Node root = parse(text);
            EXPECT_EQ(levelsOf(root), 1000);
            root.reset();
        });
    }
}

TEST(JsonReaderDepth, deepSiblingsAreReleasedOnASmallStack)
{
    const std::string array = repeat("[", 998) + repeat("]", 998);
    const std::string object = repeat("{\"k\":", 997) + "{}" + repeat("}", 997);
    for (const std::string& text : {"{\"k\":[" + array + "," + array + "," + array + "]}",
                                    R"({"a":)" + object + R"(,"b":)" + object + R"(,"c":)" + object + "}"}) {
        onSmallStack([&text] {
            Node root = parse(text);
            EXPECT_FALSE(root->empty());
            root.reset();
        });
    }
}

TEST(JsonReaderDepth, deeperTextsYieldAnEmptyValue)
{
    for (const std::string& text : {nestedArrays(1001), nestedObjects(1001), nestedInTurn(1002),
                                    nestedArrays(100000), std::string(100000, '['), std::string(100000, '{'),
                                    "{\"k\":" + std::string(100000, '['), repeat("{\"k\":", 50000)}) {
        onSmallStack([&text] { EXPECT_TRUE(parse(text)->empty()); });
    }
}

TEST(JsonReaderDepth, nothingIsLeftOfADeepTextThatFails)
{
    onSmallStack([] {
        EXPECT_TRUE(parse("{\"k\":" + std::string(999, '['))->empty());
        EXPECT_TRUE(parse(nestedObjects(1000) + "x")->empty());
    });
}

TEST(JsonReaderDepth, siblingsDoNotCountAsDepth)
{
    const Node root = parse("{\"k\":[" + repeat("[],{},", 5000) + "1]}");
    ASSERT_TRUE(boost::any_cast<json::object>(root.get()));
    EXPECT_EQ(boost::any_cast<json::array>(*boost::any_cast<json::object>(*root).find("k")->second).size(),
              10001U);
}

TEST(JsonReaderDepth, partOfADeepTreeOutlivesItsRoot)
{
    Node root = parse(nestedArrays(1000));
    Node part = boost::any_cast<json::object>(*root).find("k")->second;
    root.reset();
    EXPECT_EQ(levelsOf(part), 999);
}

TEST(JsonReaderDepth, deepTreeMayBeChangedByItsOwner)
{
    Node root = parse(nestedArrays(500));
    auto& members = *boost::any_cast<json::object>(root.get());
    for (int i = 0; i < 100; ++i) {
        json::array wrapper;
        wrapper.push_back(members.find("k")->second);
        members.find("k")->second = std::make_shared<boost::any>(wrapper);
    }
    EXPECT_EQ(levelsOf(root), 600);
}
