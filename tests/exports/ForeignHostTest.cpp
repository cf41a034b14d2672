// A host object that is compiled outside the library receives every invocation of an update, no matter which
// types the host has registered with Qt.
#include <QMetaType>
#include <QObject>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "OrvLibrary/LibraryCatalogUpdater.h"
#include "tests/catalog/ScriptedCurl.h"
#include "tests/catalog/UpdateRun.h"
#include "tests/support/ScopedHost.h"

#if defined(HOST_DECLARES_TEXT_AND_PATH)
Q_DECLARE_METATYPE(std::string)
Q_DECLARE_METATYPE(fileString) // also declares pairs of it
Q_DECLARE_METATYPE(LibraryCatalogUpdate::UpdateData)
#elif defined(HOST_DECLARES_PAIR)
Q_DECLARE_METATYPE(FileStringPair)
#endif

using testing::ElementsAre;

namespace {

class ForeignHost : public QObject
{
    Q_OBJECT

public:
    std::vector<std::string> texts;
    std::vector<size_t> numbers;
    std::vector<FileStringPair> files;
    std::vector<LibraryCatalogUpdate::UpdateData> closings;
    int updates = 0;

public Q_SLOTS:
    void onSetText(std::string text) { texts.push_back(text); }
    void onSetUnits(const std::string& unit) { texts.push_back(unit); }
    void onSetRangeInGauge(size_t range) { numbers.push_back(range); }
    void onSetValueInGauge(size_t value) { numbers.push_back(value); }
    void onUpdateInGauge() { ++updates; }
    void onCatalogUpdatedEvent(FileStringPair pair) { files.push_back(pair); }
    void closeCatalogUpdateEvent(const LibraryCatalogUpdate::UpdateData& data) { closings.push_back(data); }
};

void registerTypesOfTheHost()
{
#if defined(HOST_DECLARES_TEXT_AND_PATH)
    qRegisterMetaType<std::string>();
    qRegisterMetaType<std::string>("std::string");
    qRegisterMetaType<fileString>("fileString");
    qRegisterMetaType<LibraryCatalogUpdate::UpdateData>("LibraryCatalogUpdate::UpdateData");
#endif
#if defined(HOST_DECLARES_TEXT_AND_PATH) || defined(HOST_DECLARES_PAIR)
    qRegisterMetaType<FileStringPair>();
#endif
    qRegisterMetaType<FileStringPair>("FileStringPair");
    qRegisterMetaType<size_t>("size_t");
}

class ForeignHostObject : public testing::Test
{
protected:
    ForeignHostObject() : mFormerCurl(Curl::install(&mCurl)) {}
    ~ForeignHostObject() override { Curl::install(mFormerCurl); }

    void expectEverythingArrives()
    {
        mCurl.files["Orv_Core_Content_Index.txt"].page = "Doors.orvlib\n";
        mCurl.files["Doors.orvlib"].body = std::string(5000, 'n');
        mCurl.files["Doors.orvlib"].tag = "new";
        ForeignHost object;
        runUpdate(object, test::UpdateArguments());
        EXPECT_EQ(object.texts.back(), "Downloading Doors");
        EXPECT_THAT(object.numbers, ElementsAre(1u, 1u, 5u));
        EXPECT_EQ(object.updates, 2);
        ASSERT_EQ(object.files.size(), 1u);
        EXPECT_EQ(object.files[0].first, mHost.folder().file("core/Doors.orvlib"));
        EXPECT_TRUE(object.files[0].second.pathExists());
        ASSERT_EQ(object.closings.size(), 1u);
        EXPECT_EQ(object.closings[0].result, LibraryCatalogUpdate::kResultUpdated);
        EXPECT_THAT(object.closings[0].updatedCatalogs, ElementsAre("Doors"));
    }

    test::ScopedHost mHost;
    test::ScriptedCurl mCurl;

private:
    Curl* mFormerCurl;
};

} // namespace

TEST_F(ForeignHostObject, hostFirst)
{
    registerTypesOfTheHost();
    expectEverythingArrives();
}

TEST_F(ForeignHostObject, libraryFirst)
{
    expectEverythingArrives();
    registerTypesOfTheHost();
    expectEverythingArrives();
}

#include "ForeignHostTest.moc"
