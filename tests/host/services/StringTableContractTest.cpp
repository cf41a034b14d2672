#include <thread>
#include <vector>

#include "OrvLibrary/host/StringUtils.h"
#include "tests/host/ServiceContract.h"

namespace {

constexpr std::uint32_t kNumbers[] = {2749, 2750, 2752, 2753, 2754,  2893,  8709, 8717,
                                      8723, 8727, 8745, 8930, 10000, 10014, 10108};

class StringTableContract : public test::ServiceContract
{
};

TEST_P(StringTableContract, hasEveryTextThatTheLibraryUses)
{
    for (const std::uint32_t number : kNumbers) {
        const std::string text = StringTable::get().text(number);
        EXPECT_FALSE(text.empty()) << number;
        EXPECT_EQ(StringUtils::loadString(number), text);
        EXPECT_EQ(StringUtils::loadQString(number).toStdString(), text) << "UTF-8";
    }
    expectCalls(test::Service::Strings);
}

TEST_P(StringTableContract, anUnknownNumberHasNoText)
{
    for (const std::uint32_t number : {0u, 1u, 4294967295u})
        EXPECT_EQ(StringTable::get().text(number), "") << number;
}

TEST_P(StringTableContract, anUnknownKeyIsItsOwnTranslation)
{
    for (const std::string key : {"no such key", "", "orv-2749 "}) {
        EXPECT_EQ(StringTable::get().translation(key), key);
        EXPECT_EQ(xl8(key), key);
    }
}

TEST_P(StringTableContract, saysTheSameOnEveryThread)
{
    const std::string expected = StringTable::get().text(2749);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < 50; ++round)
                EXPECT_EQ(StringTable::get().text(2749), expected);
        });
    for (std::thread& thread : threads)
        thread.join();
}

ORV_TEST_IMPLEMENTATIONS(StringTableContract);

} // namespace
