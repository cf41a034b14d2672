#include <thread>
#include <vector>

#include "tests/host/ServiceContract.h"

namespace {

constexpr int kUnknown = 987654;

class PreferenceEngineContract : public test::ServiceContract
{
protected:
    PreferenceEngineContract() { error::MessagingSystem::install(&mMessages); }

    static PreferenceEngine& prefs() { return PreferenceEngine::getThePrefs(); }

    test::RecordingMessagingSystem mMessages;
};

TEST_P(PreferenceEngineContract, whatIsWrittenIsRead)
{
    prefs().setPrefAs<bool>(PrefId::kLastCoreUpdateHadError, true);
    prefs().setPrefAs<int>(PrefId::kProgressDisplayType, 3);
    EXPECT_TRUE(prefs().getPrefAs<bool>(PrefId::kLastCoreUpdateHadError));
    EXPECT_EQ(prefs().getPrefAs<int>(PrefId::kProgressDisplayType), 3);
    prefs().setPrefAs<bool>(PrefId::kLastCoreUpdateHadError, false);
    EXPECT_FALSE(prefs().getPrefAs<bool>(PrefId::kLastCoreUpdateHadError));
    EXPECT_TRUE(mMessages.messages().empty());
    expectCalls(test::Service::Preferences);
}

TEST_P(PreferenceEngineContract, anUnknownNumberReadsAsNothingAndTakesTheTypeOfItsFirstWrite)
{
    EXPECT_FALSE(prefs().getPrefAs<bool>(kUnknown));
    EXPECT_EQ(prefs().getPrefAs<int>(kUnknown), 0);
    EXPECT_EQ(prefs().getPrefAs<std::string>(kUnknown), "");
    EXPECT_TRUE(mMessages.messages().empty());
    prefs().setPrefAs<std::string>(kUnknown, "text");
    EXPECT_EQ(prefs().getPrefAs<std::string>(kUnknown), "text");
    prefs().setPrefAs<int>(kUnknown, 5);
    EXPECT_EQ(prefs().getPrefAs<std::string>(kUnknown), "text");
    ASSERT_EQ(mMessages.messages().size(), 1u);
    EXPECT_EQ(mMessages.messages()[0].text1.rfind("Set pref isA failure: ", 0), 0u);
}

TEST_P(PreferenceEngineContract, aReadOfAnotherTypeWarnsAndGivesNothing)
{
    prefs().setPrefAs<int>(PrefId::kProgressDisplayType, 3);
    EXPECT_FALSE(prefs().getPrefAs<bool>(PrefId::kProgressDisplayType));
    ASSERT_EQ(mMessages.messages().size(), 1u);
    EXPECT_EQ(mMessages.messages()[0].number, 272032175);
    EXPECT_EQ(mMessages.messages()[0].kind, error::Trait::Kind::Warning);
    EXPECT_EQ(mMessages.messages()[0].text1.rfind("Get pref isA failure: Expected preference '", 0), 0u);
}

TEST_P(PreferenceEngineContract, mayBeUsedFromEveryThread)
{
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([thread] {
            for (int round = 1; round <= 5; ++round) {
                prefs().setPrefAs<int>(kUnknown + thread, round);
                EXPECT_EQ(prefs().getPrefAs<int>(kUnknown + thread), round);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
}

ORV_TEST_IMPLEMENTATIONS(PreferenceEngineContract);

} // namespace
