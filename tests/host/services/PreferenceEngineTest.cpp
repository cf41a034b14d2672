#include "OrvLibrary/host/PreferenceEngine.h"

#include <map>
#include <thread>
#include <vector>

#include <QByteArray>

#include <gmock/gmock.h>

#include "tests/support/ScopedHost.h"

using test::SentMessage;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Preferences in memory.
class MemoryPrefSet : public PrefSet
{
public:
    Pref getPref(int id) const override { return prefs.at(id); }
    void setPref(int id, const PrefValue& value) override
    {
        prefs[id] = {"Number " + std::to_string(id), value};
    }
    bool hasPref(int id) const override { return prefs.count(id) != 0; }

    std::map<int, Pref> prefs;
};

SentMessage warning(const std::string& text)
{
    return {272032175, error::Trait::Kind::Warning, text, "", ""};
}

class PreferenceEngineTest : public testing::Test
{
protected:
    test::ScopedHost mHost;
    MemoryPrefSet mSet;
    PreferenceEngine mEngine{mSet};
};

/// Sets an environment variable until the destructor.
class ScopedVariable
{
public:
    ScopedVariable(const char* name, const std::string& value) : mName(name), mFormer(qgetenv(name))
    {
        qputenv(name, QByteArray::fromStdString(value));
    }
    ~ScopedVariable() { mFormer.isNull() ? qunsetenv(mName) : qputenv(mName, mFormer); }

private:
    const char* mName;
    QByteArray mFormer;
};

} // namespace

TEST_F(PreferenceEngineTest, readsBackEveryType)
{
    mEngine.setPrefAs<bool>(1, true);
    mEngine.setPrefAs<int>(2, -7);
    mEngine.setPrefAs<double>(3, 2.5);
    mEngine.setPrefAs<std::string>(4, "text");
    EXPECT_EQ(mEngine.getPrefAs<bool>(1), true);
    EXPECT_EQ(mEngine.getPrefAs<int>(2), -7);
    EXPECT_EQ(mEngine.getPrefAs<double>(3), 2.5);
    EXPECT_EQ(mEngine.getPrefAs<std::string>(4), "text");
    EXPECT_THAT(mHost.messages(), IsEmpty());
}

TEST_F(PreferenceEngineTest, aReadOfAnotherTypeWarnsAndGivesZero)
{
    mSet.prefs[239] = {"Library progress display type", true};
    EXPECT_EQ(mEngine.getPrefAs<int>(239), 0);
    EXPECT_THAT(
        mHost.messages(),
        ElementsAre(warning("Get pref isA failure: Expected preference 'Library progress display type' to "
                            "be of type 'int', but instead found it to be of type 'bool'.")));
}

TEST_F(PreferenceEngineTest, namesEveryTypeInTheWarning)
{
    const struct
    {
        PrefValue value;
        const char* name;
    } cases[] = {{true, "bool"}, {1, "int"}, {1.5, "double"}, {std::string("x"), "std::string"}};
    for (const auto& c : cases) {
        mHost.messaging().clear();
        mSet.prefs[5] = {"P", c.value};
        EXPECT_EQ(mEngine.getPrefAs<bool>(5), std::holds_alternative<bool>(c.value));
        EXPECT_EQ(mEngine.getPrefAs<int>(5), std::holds_alternative<int>(c.value) ? 1 : 0);
        EXPECT_EQ(mEngine.getPrefAs<double>(5), std::holds_alternative<double>(c.value) ? 1.5 : 0.0);
        EXPECT_EQ(mEngine.getPrefAs<std::string>(5), std::holds_alternative<std::string>(c.value) ? "x" : "");
        std::vector<SentMessage> expected;
        for (const char* const wanted : {"bool", "int", "double", "std::string"}) {
            if (std::string(wanted) != c.name)
                expected.push_back(
                    warning(std::string("Get pref isA failure: Expected preference 'P' to be of "
                                        "type '") +
                            wanted + "', but instead found it to be of type '" + c.name + "'."));
        }
        EXPECT_EQ(mHost.messages(), expected);
    }
}

TEST_F(PreferenceEngineTest, aWriteOfAnotherTypeWarnsAndChangesNothing)
{
    mSet.prefs[254] = {"Had error", 3};
    mEngine.setPrefAs<bool>(254, true);
    EXPECT_EQ(mSet.prefs[254].value, PrefValue(3));
    EXPECT_THAT(
        mHost.messages(),
        ElementsAre(warning("Set pref isA failure: Expected preference 'Had error' to be of type 'bool', "
                            "but instead found it to be of type 'int'.")));
}

TEST_F(PreferenceEngineTest, anUnknownNumberReadsAsZeroAndTakesTheTypeOfItsFirstWrite)
{
    EXPECT_EQ(mEngine.getPrefAs<bool>(900), false);
    EXPECT_EQ(mEngine.getPrefAs<int>(900), 0);
    EXPECT_EQ(mEngine.getPrefAs<std::string>(900), "");
    EXPECT_THAT(mHost.messages(), IsEmpty());
    mEngine.setPrefAs<int>(900, 4);
    mEngine.setPrefAs<bool>(900, true);
    EXPECT_EQ(mEngine.getPrefAs<int>(900), 4);
    EXPECT_THAT(mHost.messages(), testing::SizeIs(1));
}

TEST_F(PreferenceEngineTest, installGivesTheFormerStoreBack)
{
    EXPECT_EQ(&PreferenceEngine::getThePrefs(), &mHost.prefs());
    EXPECT_EQ(PreferenceEngine::install(&mEngine), &mHost.prefs());
    EXPECT_EQ(&PreferenceEngine::getThePrefs(), &mEngine);
    EXPECT_EQ(PreferenceEngine::install(&mHost.prefs()), &mEngine);
}

TEST(DefaultPreferences, areAFileInTheDefaultRoot)
{
    test::TempFolder folder;
    ASSERT_EQ(PreferenceEngine::install(nullptr), nullptr);
    const ScopedVariable root("ORV_LIBRARY_ROOT", folder.path() + "/new");
    PreferenceEngine& prefs = PreferenceEngine::getThePrefs();
    EXPECT_EQ(prefs.getPrefAs<int>(239), 2);
    EXPECT_EQ(prefs.prefSet().getPref(239).description, "Library progress display type");
    EXPECT_EQ(prefs.prefSet().getPref(254).value, PrefValue(false));
    EXPECT_EQ(prefs.prefSet().getPref(273).value, PrefValue(false));
    EXPECT_THAT(test::listTree(folder.path()), IsEmpty()) << "reading makes nothing";
    prefs.setPrefAs<int>(239, 3);
    EXPECT_THAT(test::listTree(folder.path()), ElementsAre("new/", "new/preferences.json"));
    EXPECT_EQ(&PreferenceEngine::getThePrefs(), &prefs) << "made once for one root";
}

TEST(DefaultPreferences, areMadeOnceThoughThreadsAskAtOnce)
{
    test::TempFolder folder;
    for (int round = 0; round < 20; ++round) {
        const ScopedVariable root("ORV_LIBRARY_ROOT", folder.path() + "/" + std::to_string(round));
        std::vector<PreferenceEngine*> seen(4);
        std::vector<std::thread> threads;
        for (PreferenceEngine*& slot : seen)
            threads.emplace_back([&slot] { slot = &PreferenceEngine::getThePrefs(); });
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_EQ(seen, std::vector<PreferenceEngine*>(4, &PreferenceEngine::getThePrefs()));
    }
}

TEST(DefaultPreferences, followTheDefaultRoot)
{
    test::TempFolder folder;
    {
        const ScopedVariable root("ORV_LIBRARY_ROOT", folder.path() + "/a");
        PreferenceEngine::getThePrefs().setPrefAs<int>(239, 1);
    }
    {
        const ScopedVariable root("ORV_LIBRARY_ROOT", folder.path() + "/b");
        EXPECT_EQ(PreferenceEngine::getThePrefs().getPrefAs<int>(239), 2);
    }
    const ScopedVariable root("ORV_LIBRARY_ROOT", folder.path() + "/a");
    EXPECT_EQ(PreferenceEngine::getThePrefs().getPrefAs<int>(239), 1);
}
