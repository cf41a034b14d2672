#include <QCoreApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QTreeView>
#include <QUrl>

#include <gmock/gmock.h>

#include "tests/orv-browser/BrowserService.h"
#include "tests/orv-browser/BrowserTest.h"
#include "tests/orv-browser/CatalogMaker.h"

namespace {

using test::CatalogMaker;

class BrowserImportTest : public test::BrowserTest
{
protected:
    /// An archive of a database with one item, packed by `orv-library pack`.
    QString packedLibrary()
    {
        const std::string database = folder().path() + "/Kitchen.orvlib";
        {
            CatalogMaker catalog(database, "kitchen");
            catalog.addItem(catalog.addFolder("All"), {"Table"});
        }
        const fileString texture = folder().write("wood.jpg", "not really a picture");
        const QString archive = path("Kitchen.orvlibz");
        test::BrowserService::runProgram({"pack", QString::fromStdString(database),
                                          QString::fromStdString(texture.toNativeString()), "--output",
                                          archive});
        return archive;
    }

    QString path(const QString& name) const { return QString::fromStdString(folder().path()) + "/" + name; }

    /// Drops files on the window as a file manager does.
    /// @return whether the window takes them
    bool drop(const QStringList& files)
    {
        QMimeData data;
        QList<QUrl> urls;
        for (const QString& file : files)
            urls << QUrl::fromLocalFile(file);
        data.setUrls(urls);
        QDragEnterEvent enter(QPoint(20, 20), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        enter.ignore();
        QCoreApplication::sendEvent(&window(), &enter);
        if (!enter.isAccepted())
            return false;
        QDropEvent dropped(QPointF(20, 20), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&window(), &dropped);
        return true;
    }
};

} // namespace

TEST_F(BrowserImportTest, droppedArchiveAppearsAmongTheUsersLibraries)
{
    const QString archive = packedLibrary();
    open();
    ASSERT_TRUE(drop({archive}));
    ASSERT_TRUE(waitFor([&] { return summary() == "Kitchen.orvlibz was imported."; }))
        << summary().toStdString();
    ASSERT_TRUE(goTo({"My libraries", "Kitchen", "All"}));
    EXPECT_EQ(names(), QStringList("Table"));
    EXPECT_THAT(test::listTree(inRoot("textures")), testing::SizeIs(1));
}

TEST_F(BrowserImportTest, droppedFileOfAnotherKindIsNotTaken)
{
    const fileString picture = folder().write("picture.png", "x");
    open();
    EXPECT_FALSE(drop({QString::fromStdString(picture.toNativeString())}));
}

TEST_F(BrowserImportTest, archiveThatIsNoneIsNamedWithTheReason)
{
    folder().write("Broken.orvlibz", "this is no archive");
    open();
    ASSERT_TRUE(drop({path("Broken.orvlibz")}));
    ASSERT_TRUE(waitFor([&] { return !summary().isEmpty(); }));
    EXPECT_TRUE(summary().startsWith("Broken.orvlibz was not imported: ")) << summary().toStdString();
    EXPECT_THAT(test::listTree(inRoot("user")),
                testing::Not(testing::Contains(testing::EndsWith(".orvlib"))));
}

TEST_F(BrowserImportTest, importedLibraryReplacesTheOneThatIsShown)
{
    const QString archive = packedLibrary();
    {
        CatalogMaker former(inRoot("user/Kitchen.orvlib"), "kitchen");
        former.addItem(former.addFolder("Old"), {"Bench"});
    }
    open();
    ASSERT_TRUE(goTo({"My libraries", "Kitchen"}));
    EXPECT_EQ(names(), QStringList("Bench"));
    ASSERT_TRUE(drop({archive}));
    EXPECT_TRUE(waitFor([&] { return names() == QStringList("Table"); })) << names().join('|').toStdString();
    EXPECT_TRUE(place({"My libraries", "Kitchen", "All"}).isValid());
}
