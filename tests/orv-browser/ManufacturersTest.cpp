#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <QTreeView>

#include <gtest/gtest.h>

#include "OrvLibrary/Manufacturer/ManufacturerManager.h"
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

    test::BrowserService service;
};

QPushButton& apply(QDialog& dialog)
{
    return *dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Apply);
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
    EXPECT_FALSE(child<QLabel>("detailsLogo").pixmap(Qt::ReturnByValue).isNull());
    EXPECT_EQ(child<QLabel>("detailsContact").text().count("dealer"), 1);
    EXPECT_EQ(child<QPushButton>("showAllOfMaker").text(), "Show all 1");
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
