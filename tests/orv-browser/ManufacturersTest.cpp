#include <QDialogButtonBox>
#include <QIcon>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <QTreeView>

#include <gtest/gtest.h>

#include "OrvLibrary/Manufacturer/ManufacturerManager.h"
#include "apps/orv-browser/places/MakerLogos.h"
#include "apps/orv-browser/places/PlacesPane.h"
#include "tests/orv-browser/BrowserService.h"
#include "tests/orv-browser/BrowserTest.h"
#include "tests/orv-browser/CatalogMaker.h"

namespace {

using test::CatalogMaker;

class BrowserManufacturersTest : public test::BrowserTest
{
protected:
    BrowserManufacturersTest() : service(folder().path() + "/service")
    {
        CatalogMaker catalog(inRoot("core/Doors.orvlib"), "doors");
        catalog.addItem(catalog.addFolder("All"), {"Cabinet", "", std::nullopt, 103});
    }

    void openWith(const QString& data, const QString& logos)
    {
        test::writeFile(inRoot("settings.json"), "{\"manufacturerDataUrl\": \"" + data.toStdString() +
                                                     "\", \"manufacturerLogoUrl\": \"" + logos.toStdString() +
                                                     "\"}");
        open();
    }

    /// Refreshes the records in the preview dialog.
    void refresh();

    test::BrowserService service;
};

QPushButton& apply(QDialog& dialog)
{
    return *dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Apply);
}

void BrowserManufacturersTest::refresh()
{
    inDialog([&] { trigger("refreshManufacturers"); },
             [](QDialog& dialog) {
                 ASSERT_TRUE(waitFor([&] { return apply(dialog).isEnabled(); }));
                 QTest::mouseClick(&apply(dialog), Qt::LeftButton);
             });
}

} // namespace

TEST_F(BrowserManufacturersTest, previewShowsTheChangesAndApplyMakesThem)
{
    openWith(service.manufacturers(), service.logos());
    inDialog([&] { trigger("refreshManufacturers"); },
             [](QDialog& dialog) {
                 auto* changes = dialog.findChild<QListWidget*>("manufacturerChanges");
                 ASSERT_TRUE(waitFor([&] { return changes->count() == 4; }));
                 EXPECT_EQ(changes->item(2)->text(), "New: Oakline Cabinets");
                 QTest::mouseClick(&apply(dialog), Qt::LeftButton);
             });
    EXPECT_EQ(summary(), "The manufacturer records were refreshed.");
    EXPECT_TRUE(ManufacturerManager::getManufacturerManager()->manufacturerExists(103));

    select("Cabinet");
    EXPECT_EQ(detail("detailsManufacturer"), "Oakline Cabinets");
    EXPECT_TRUE(child<QLabel>("detailsContact").text().contains("https://oakline.example"));
    EXPECT_TRUE(child<QLabel>("detailsContact").text().contains("+1 555 0103"));
    const auto logo = [&] { return child<QLabel>("detailsLogo").pixmap(Qt::ReturnByValue); };
    EXPECT_TRUE(waitFor([&] { return !logo().isNull(); })); // it is read in the background
    EXPECT_EQ(logo().toImage().pixelColor(logo().width() / 2, 2), QColor(Qt::white));
    EXPECT_EQ(child<QLabel>("detailsContact").text().count("dealer"), 1);
    EXPECT_EQ(child<QPushButton>("showAllOfMaker").text(), "Show all 1");
}

TEST_F(BrowserManufacturersTest, logosStandBesideTheirCatalogsOnceTheyAreThere)
{
    for (const auto& [name, maker] : {std::pair("Oakline", 103), std::pair("Nobody", 7)}) {
        CatalogMaker catalog(inRoot(std::string("manufacturer/") + name + ".orvlib"), name);
        const int all = catalog.addFolder("All");
        catalog.addItem(all, {"Other", "", std::nullopt, 101});
        for (const char* const item : {"Chair", "Table"})
            catalog.addItem(all, {item, "", std::nullopt, maker});
    }
    openWith(service.manufacturers(), service.logos());
    const auto icon = [&](const QString& catalog) {
        return place({"Manufacturers", catalog}).data(Qt::DecorationRole).value<QIcon>();
    };
    const QIcon plain = icon("Nobody");
    EXPECT_EQ(icon("Oakline").cacheKey(), plain.cacheKey()); // there is no record yet
    refresh();
    ASSERT_TRUE(waitFor([&] { return icon("Oakline").cacheKey() != plain.cacheKey(); }));
    EXPECT_EQ(icon("Nobody").cacheKey(), plain.cacheKey());
    const QImage plate = icon("Oakline").pixmap(64, 64).toImage();
    EXPECT_EQ(plate.pixelColor(0, 0).alpha(), 0);
    EXPECT_EQ(plate.pixelColor(32, 2), QColor(Qt::white)); // logos are drawn for a white background
    EXPECT_NE(plate.pixelColor(32, 32), QColor(Qt::white));

    const Manufacturer& record = ManufacturerManager::getManufacturerManager()->getManufacturer(103);
    const fileString logo = fileString(inRoot("manufacturer-data")) / record.getManufacturerLogoName();
    ASSERT_TRUE(logo.pathExists());
    test::writeFile(logo.toNativeString(), "no picture");
    child<PlacesPane>("placesPane").logos().forget();
    EXPECT_EQ(icon("Oakline").cacheKey(), plain.cacheKey());
    ASSERT_TRUE(goTo({"Core", "Doors"}));
    EXPECT_EQ(icon("Oakline").cacheKey(), plain.cacheKey());
}

TEST_F(BrowserManufacturersTest, cancelledPreviewChangesNothing)
{
    openWith(service.manufacturers(), service.logos());
    inDialog([&] { trigger("refreshManufacturers"); },
             [](QDialog& dialog) {
                 ASSERT_TRUE(waitFor([&] { return apply(dialog).isEnabled(); }));
                 dialog.reject();
             });
    EXPECT_FALSE(ManufacturerManager::getManufacturerManager()->manufacturerExists(103));
    EXPECT_TRUE(test::listTree(inRoot("manufacturer-data")).empty());
}

TEST_F(BrowserManufacturersTest, secondRefreshHasNothingToChange)
{
    openWith(service.manufacturers(), service.logos());
    inDialog([&] { trigger("refreshManufacturers"); },
             [](QDialog& dialog) {
                 ASSERT_TRUE(waitFor([&] { return apply(dialog).isEnabled(); }));
                 QTest::mouseClick(&apply(dialog), Qt::LeftButton);
             });
    inDialog([&] { trigger("refreshManufacturers"); },
             [](QDialog& dialog) {
                 const auto* text = dialog.findChild<QLabel*>("manufacturerText");
                 ASSERT_TRUE(waitFor([&] { return text->text() == "The records are up to date."; }));
                 EXPECT_FALSE(apply(dialog).isEnabled());
                 dialog.reject();
             });
}

TEST_F(BrowserManufacturersTest, serviceThatIsGoneKeepsTheRecords)
{
    openWith(service.manufacturers(), service.logos());
    service.stop();
    inDialog([&] { trigger("refreshManufacturers"); },
             [](QDialog& dialog) {
                 const auto* text = dialog.findChild<QLabel*>("manufacturerText");
                 ASSERT_TRUE(waitFor([&] { return text->text().contains("could not be fetched"); }));
                 EXPECT_FALSE(apply(dialog).isEnabled());
                 dialog.reject();
             });
}
