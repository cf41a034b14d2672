#include "OrvHost/history/CatalogPins.h"

#include <stdexcept>

#include <gmock/gmock.h>

#include "OrvHost/update/HostLock.h"
#include "OrvLibrary/host/SHA1.h"
#include "tests/orv-host/HostedTest.h"

using OrvHost::CatalogCategory;
using OrvHost::CatalogPins;
using OrvHost::CatalogPlace;

namespace {

class CatalogPinsTest : public test::HostedTest
{
protected:
    /// Writes a core catalog and records that it was restored.
    CatalogPlace putBack(CatalogPins& pins, const std::string& name) const
    {
        const CatalogPlace place{CatalogCategory::Core, name};
        const fileString file = folder.write("root/core/" + name, "content of " + name);
        pins.setRestored(place, {"v1", SHA1::fileContentsToSHA1Hex(file), {"v2"}});
        return place;
    }
    std::vector<std::string> restoredNames(const CatalogPins& pins) const
    {
        std::vector<std::string> names;
        for (const auto& [place, record] : pins.restored())
            names.push_back(place.name);
        return names;
    }
};

} // namespace

TEST_F(CatalogPinsTest, namesAndVersionsOfAnyBytesComeBack)
{
    const CatalogPlace held{CatalogCategory::Bonus, "G\xC3\xA4rten \"\xFF%41.orvlib"};
    const CatalogPlace restored{CatalogCategory::Referenced, "a b.zip"};
    CatalogPins pins(host.root());
    pins.hold(held, {"v/1 \xFE", "W/\"2\""});
    pins.setRestored(restored, {"v 1", "0a", {"v2", "\xFD"}});
    pins.save();
    const CatalogPins read(host.root());
    ASSERT_TRUE(read.isHeld(held));
    EXPECT_EQ("v/1 \xFE", read.held().at(held).version);
    EXPECT_EQ("W/\"2\"", read.held().at(held).newer);
    ASSERT_EQ(1U, read.restored().count(restored));
    EXPECT_EQ("v 1", read.restored().at(restored).version);
    EXPECT_EQ("0a", read.restored().at(restored).contents);
    EXPECT_EQ((std::set<std::string>{"v2", "\xFD"}), read.restored().at(restored).leaves);
}

TEST_F(CatalogPinsTest, missingVersionIsForgotten)
{
    CatalogPins pins(host.root());
    for (const char* name : {"a.orvlib", "b.orvlib", "c.orvlib", "d.orvlib"})
        putBack(pins, name);
    EXPECT_FALSE(pins.forgetReplaced());
    folder.write("root/core/a.orvlib", "replaced");
    std::remove(folder.file("root/core/c.orvlib").toNativeString().c_str());
    // A file that cannot be read does not count as replaced.
    std::remove(folder.file("root/core/d.orvlib").toNativeString().c_str());
    folder.write("root/core/d.orvlib/in the way", "x");
    EXPECT_TRUE(pins.forgetReplaced());
    EXPECT_THAT(restoredNames(pins), testing::ElementsAre("b.orvlib", "d.orvlib"));
    EXPECT_FALSE(pins.forgetReplaced());
}

TEST_F(CatalogPinsTest, missingHashLinesComeBackForWhatIsStillInItsPlace)
{
    CatalogPins pins(host.root());
    for (const char* name : {"a.orvlib", "b.orvlib", "c.orvlib"})
        putBack(pins, name);
    const fileString archive = folder.write("root/referenced/a.zip", "archive");
    pins.setRestored({CatalogCategory::Referenced, "a.zip"},
                     {"v1", SHA1::fileContentsToSHA1Hex(archive), {}});
    folder.write("root/core/catalog_hash.txt", "b.orvlib:newer\n");
    folder.write("root/core/c.orvlib", "replaced");
    EXPECT_TRUE(pins.reconcile());
    EXPECT_EQ("a.orvlib:v1\nb.orvlib:newer\n", test::readFile(folder.file("root/core/catalog_hash.txt")));
    EXPECT_FALSE(pins.reconcile());
}

TEST_F(CatalogPinsTest, aFileThatCannotBeUnderstoodPinsNothingInSilence)
{
    for (const char* text : {"", "[]", "{\"held\": ["}) {
        folder.write("root/catalog-pins.json", text);
        EXPECT_THAT([this] { CatalogPins pins(host.root()); },
                    testing::ThrowsMessage<std::runtime_error>(
                        testing::HasSubstr("repair or remove it, which releases all catalogs")))
            << text;
    }
}

TEST_F(CatalogPinsTest, noChangeIsMadeWhileAnUpdateRuns)
{
    const auto change = [this] {
        CatalogPins::change(host.root(), [](CatalogPins& pins) {
            pins.hold({CatalogCategory::Core, "a.orvlib"}, {"v1", ""});
        });
    };
    {
        const OrvHost::HostLock update = OrvHost::HostLock::ofUpdate();
        EXPECT_THROW(change(), std::runtime_error);
        EXPECT_FALSE(folder.file("root/catalog-pins.json").pathExists());
    }
    change();
    EXPECT_TRUE(CatalogPins(host.root()).isHeld({CatalogCategory::Core, "a.orvlib"}));
}
