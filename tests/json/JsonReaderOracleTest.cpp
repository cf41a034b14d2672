// Compares the reader with a second reader of the same language on generated texts.
#include "OrvLibrary/json/json_reader.h"

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "tests/json/JsonOracle.h"
#include "tests/json/JsonTexts.h"

namespace {

std::string difference(const std::string& text)
{
    return test::compareWithOracle(text, json::parse(text.begin(), text.end()));
}

bool isRead(const std::string& text)
{
    return test::JsonOracle::judge(text).tree.has_value();
}

} // namespace

TEST(JsonReaderOracle, agreesOnGeneratedAndMutatedTexts)
{
    test::JsonTexts texts(20261121);
    int read = 0;
    int refused = 0;
    for (int i = 0; i < 70000; ++i) {
        const std::string document = texts.document();
        for (const std::string& text : {document, texts.mutate(document), texts.mutate(document)}) {
            ASSERT_EQ(difference(text), "") << text;
            (isRead(text) ? read : refused)++;
        }
    }
    EXPECT_EQ(read + refused, 210000);
    EXPECT_GT(read, 70000) << "too few texts are read for the comparison to mean much";
    EXPECT_GT(refused, 50000) << "too few texts are refused for the comparison to mean much";
}

TEST(JsonReaderOracle, agreesOnEveryCutOfADocument)
{
    const std::string document = R"( { "a" : [ 1 , -2.5e3 , "x\u00e9\n" , { } , [ ] , true , false , null ] ,
                                        "a" : { "b" : .5 , "c" : 5. , "d" : +7 , "e" : "" } } )";
    for (std::size_t length = 0; length <= document.size(); ++length)
        EXPECT_EQ(difference(document.substr(0, length)), "") << length;
}

TEST(JsonReaderOracle, agreesOnEveryByteInEveryPlace)
{
    const std::string document = R"({"a":[1,.5e1,"\u00e9\n",{}],"b":true} )";
    for (std::size_t at = 0; at < document.size(); ++at) {
        for (int byte = 0; byte < 256; ++byte) {
            std::string text = document;
            text[at] = static_cast<char>(byte);
            ASSERT_EQ(difference(text), "") << text;
        }
    }
}

TEST(JsonReaderOracle, agreesOnNumbersAtTheEndsOfTheRange)
{
    const std::string nines(308, '9');
    const std::string manyNines(400, '9');
    const std::string zeros(400, '0');
    for (const std::string& number :
         {nines, nines + ".", nines + ".5", manyNines + ".5", "1." + manyNines, "1." + nines, "." + manyNines,
          "0." + zeros + "1", zeros + "1", zeros + "1.5", std::string("1e400"), std::string("1e-400"),
          "1e" + nines, "1e" + manyNines, "1e" + zeros + "1", "1." + zeros, std::string("0e400"),
          "-" + nines + ".5"})
        EXPECT_EQ(difference("{\"k\":" + number + "}"), "") << number;
}

TEST(JsonReaderOracle, agreesOnEightThreadsAtOnce)
{
    std::atomic<int> differences{0};
    std::vector<std::thread> threads;
    for (unsigned seed = 1; seed <= 8; ++seed) {
        threads.emplace_back([seed, &differences] {
            test::JsonTexts texts(seed);
            for (int i = 0; i < 1000; ++i) {
                const std::string document = texts.document();
                const std::string mutated = texts.mutate(document);
                if (!difference(document).empty() || !difference(mutated).empty())
                    ++differences;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(differences, 0);
}
