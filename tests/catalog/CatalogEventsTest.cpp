#include "OrvLibrary/catalog/CatalogEvents_p.h"

#include <atomic>
#include <limits>
#include <optional>
#include <thread>

#include <QCoreApplication>
#include <QMetaType>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/SlotRecorder.h"

using LibraryCatalogUpdate::CatalogEvents;
using LibraryCatalogUpdate::UpdateData;
using test::SlotRecorder;
using testing::ElementsAre;

namespace {

/// A host object with two of the slots. They use no types of the library.
class SmallHost : public QObject
{
    Q_OBJECT

public:
    /// How many connections the end of this object has.
    int listeners() const { return receivers(SIGNAL(destroyed(QObject*))); }

    int updates = 0;
    int closes = 0;

public Q_SLOTS:
    void onUpdateInGauge() { ++updates; }
    void onClose() { ++closes; }
};

void sendEverything(CatalogEvents& events)
{
    UpdateData data;
    data.result = 2;
    data.updatedCatalogs = {"Doors"};
    events.setText("text");
    events.setUnits("KB");
    events.setRangeInGauge(12);
    events.setValueInGauge(7);
    events.updateInGauge();
    events.catalogUpdated({fileString("/to"), fileString("/from")});
    events.closeCatalogUpdate(data);
    events.close();
}

} // namespace

TEST(CatalogEvents, everySlotIsInvokedWithItsArgumentInOrder)
{
    SlotRecorder host;
    host.swapsIn = false;
    sendEverything(*CatalogEvents::watch(host));
    QCoreApplication::sendPostedEvents(&host);
    EXPECT_THAT(host.texts(),
                ElementsAre("onSetText(text)", "onSetUnits(KB)", "onSetRangeInGauge(12)",
                            "onSetValueInGauge(7)", "onUpdateInGauge()", "onCatalogUpdatedEvent(/to, /from)",
                            "closeCatalogUpdateEvent(2, 0x10369189, [Doors])", "onClose()"));
}

TEST(CatalogEvents, nothingRunsBeforeTheEventLoopDoes)
{
    SlotRecorder host;
    sendEverything(*CatalogEvents::watch(host));
    EXPECT_TRUE(host.events().empty());
}

TEST(CatalogEvents, slotsThatTheHostLacksArePassedOver)
{
    SmallHost host;
    sendEverything(*CatalogEvents::watch(host));
    QCoreApplication::sendPostedEvents(&host);
    EXPECT_EQ(host.updates, 1);
    EXPECT_EQ(host.closes, 1);
}

TEST(CatalogEvents, theGaugeIsNeverToldMoreThanTheLargestInt)
{
    SlotRecorder host;
    const auto events = CatalogEvents::watch(host);
    constexpr std::uint64_t kLargest = std::numeric_limits<int>::max();
    for (const std::uint64_t number : {kLargest - 1, kLargest, kLargest + 1, ~std::uint64_t(0)}) {
        events->setRangeInGauge(number);
        events->setValueInGauge(number);
    }
    QCoreApplication::sendPostedEvents(&host);
    EXPECT_THAT(host.argumentsOf("onSetRangeInGauge"),
                ElementsAre("2147483646", "2147483647", "2147483647", "2147483647"));
    EXPECT_EQ(host.argumentsOf("onSetRangeInGauge"), host.argumentsOf("onSetValueInGauge"));
}

TEST(CatalogEvents, textsKeepEveryByte)
{
    SlotRecorder host;
    const std::string text("a\0\xfc\xff%1", 6);
    CatalogEvents::watch(host)->setText(text);
    QCoreApplication::sendPostedEvents(&host);
    EXPECT_THAT(host.argumentsOf("onSetText"), ElementsAre(text));
}

TEST(CatalogEvents, aDestroyedHostIsToldNothing)
{
    std::optional<SlotRecorder> host(std::in_place);
    const auto events = CatalogEvents::watch(*host);
    const SlotRecorder* const former = &*host;
    host.reset();
    host.emplace();
    ASSERT_EQ(&*host, former) << "whoever still sends to the address reaches another object";
    sendEverything(*events);
    QCoreApplication::sendPostedEvents();
    EXPECT_THAT(host->texts(), testing::IsEmpty());
}

TEST(CatalogEvents, theHostMayOutliveTheEvents)
{
    SmallHost host;
    CatalogEvents::watch(host).reset();
    QCoreApplication::sendPostedEvents(&host);
    EXPECT_EQ(host.updates, 0);
}

TEST(CatalogEvents, nothingStaysConnectedToAHostThatOutlivesThem)
{
    SmallHost host;
    auto events = CatalogEvents::watch(host);
    EXPECT_EQ(host.listeners(), 1);
    events.reset();
    EXPECT_EQ(host.listeners(), 0);
}

TEST(CatalogEvents, theTypesAreKnownByTheirNames)
{
    SlotRecorder host;
    CatalogEvents::watch(host);
    for (const char* name :
         {"std::string", "size_t", "fileString", "FileStringPair", "LibraryCatalogUpdate::UpdateData"})
        EXPECT_NE(QMetaType::type(name), QMetaType::UnknownType) << name;
}

// Each round destroys the host object at another moment while invocations are sent. The test fails (or the
// thread sanitizer reports it) if checking the pointer and using it are not one step.
TEST(CatalogEvents, theHostMayDieWhileAnotherThreadSends)
{
    for (int round = 0; round < 500; ++round) {
        auto host = std::make_unique<SmallHost>();
        const auto events = CatalogEvents::watch(*host);
        std::atomic<int> sent{0};
        std::thread sender([&] {
            for (; sent < 200; ++sent)
                events->updateInGauge();
        });
        while (sent < round % 150)
            std::this_thread::yield();
        host.reset();
        sender.join();
    }
}

TEST(CatalogEvents, theLastCopyMayGoWhileTheHostDies)
{
    for (int round = 0; round < 500; ++round) {
        auto host = std::make_unique<SmallHost>();
        auto events = CatalogEvents::watch(*host);
        std::atomic<bool> go{false};
        std::thread other([&go, last = std::move(events)]() mutable {
            while (!go)
                std::this_thread::yield();
            last.reset();
        });
        go = true;
        host.reset();
        other.join();
    }
}

#include "CatalogEventsTest.moc"
