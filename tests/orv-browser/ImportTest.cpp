#include <QAction>
#include <QCoreApplication>
#include <QDropEvent>
#include <QElapsedTimer>
#include <QFile>
#include <QListView>
#include <QMimeData>
#include <QTest>
#include <QToolButton>
#include <QTreeView>
#include <QUrl>

#include <gmock/gmock.h>

#include "OrvLibrary/IO/ErrorLog.h"
#include "tests/orv-browser/BrowserService.h"
#include "tests/orv-browser/BrowserTest.h"
#include "tests/orv-browser/CatalogMaker.h"
#include "tests/support/FaultServer.h"

namespace {

using test::CatalogMaker;

class BrowserImportTest : public test::BrowserTest
{
protected:
    /// An archive with a database of one item, made by `orv-library pack`.
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
    /// @return whether the window accepts them
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

TEST_F(BrowserImportTest, failureAmongSeveralIsToldAtTheEnd)
{
    const QString archive = packedLibrary();
    folder().write("Broken.orvlibz", "this is no archive");
    open();
    ASSERT_TRUE(drop({path("Broken.orvlibz"), archive, path("Gone.orvlibz")}));
    ASSERT_TRUE(waitFor([&] { return !summary().isEmpty(); }));
    const QStringList lines = summary().split('\n');
    ASSERT_EQ(lines.size(), 3) << summary().toStdString();
    EXPECT_TRUE(lines[0].contains("1 of 3 archive")) << lines[0].toStdString();
    EXPECT_TRUE(lines[1].startsWith("Broken.orvlibz was not imported: ")) << lines[1].toStdString();
    EXPECT_TRUE(lines[2].startsWith("Gone.orvlibz was not imported: ")) << lines[2].toStdString();
    EXPECT_TRUE(goTo({"My libraries", "Kitchen", "All"}));
}

TEST_F(BrowserImportTest, logHasTheReasonsOfManyFailures)
{
    QStringList archives;
    for (int number = 1; number <= 7; ++number) {
        const std::string name = "Broken" + std::to_string(number) + ".orvlibz";
        folder().write(name, "this is no archive");
        archives << path(QString::fromStdString(name));
    }
    open();
    ASSERT_TRUE(drop(archives));
    ASSERT_TRUE(waitFor([&] { return !summary().isEmpty(); }));
    EXPECT_EQ(summary().split('\n').size(), 7) << summary().toStdString();
    EXPECT_TRUE(summary().contains("2 more")) << summary().toStdString();
    const std::string log = test::readFile(Library::ErrorLog::file().toNativeString());
    EXPECT_THAT(log, testing::HasSubstr("Broken6.orvlibz was not imported: "));
    EXPECT_THAT(log, testing::HasSubstr("Broken7.orvlibz was not imported: "));
}

TEST_F(BrowserImportTest, cancelledImportIsNoError)
{
    test::FaultServer server;
    server.on("/Kitchen.orvlibz", test::FaultReply::silence());
    open();
    const QString address = QString::fromStdString(server.url("/Kitchen.orvlibz"));
    window().library().importArchives({address, path("Next.orvlibz")});
    ASSERT_TRUE(server.waitForRequests(1));
    QElapsedTimer time;
    time.start();
    ASSERT_TRUE(waitFor([&] { return child<QTreeView>("activities").isVisible(); }));
    EXPECT_LT(time.elapsed(), 3000); // milliseconds
    QTest::mouseClick(&child<QToolButton>("cancelButton"), Qt::LeftButton);
    ASSERT_TRUE(waitFor([&] { return !summary().isEmpty(); }));
    EXPECT_TRUE(summary().contains("0 of 2 archive")) << summary().toStdString();
    EXPECT_TRUE(summary().endsWith("\nThe import was cancelled.")) << summary().toStdString();
    EXPECT_FALSE(child<QWidget>("messageBar").isVisible());

    window().library().importArchives({address});
    ASSERT_TRUE(server.waitForRequests(2));
    window().library().cancel();
    ASSERT_TRUE(waitFor([&] { return summary() == "The import was cancelled."; })) << summary().toStdString();
}

TEST_F(BrowserImportTest, undoBringsBackTheLibraryThatWasReplaced)
{
    const QString archive = packedLibrary();
    {
        CatalogMaker former(inRoot("user/Kitchen.orvlib"), "kitchen");
        former.addItem(former.addFolder("Old"), {"Bench"});
    }
    const std::string before = test::readFile(inRoot("user/Kitchen.orvlib"));
    open();
    EXPECT_FALSE(child<QAction>("undo").isEnabled());
    ASSERT_TRUE(drop({archive}));
    ASSERT_TRUE(waitFor([&] { return summary() == "Kitchen.orvlibz was imported."; }));
    ASSERT_TRUE(goTo({"My libraries", "Kitchen"}));
    ASSERT_EQ(names(), QStringList("Table"));
    EXPECT_EQ(child<QAction>("undo").text(), "&Undo Import");
    trigger("undo");
    ASSERT_TRUE(waitFor([&] { return summary() == "The import was taken back."; }))
        << summary().toStdString();
    EXPECT_TRUE(waitFor([&] { return names() == QStringList("Bench"); })) << names().join('|').toStdString();
    EXPECT_EQ(test::readFile(inRoot("user/Kitchen.orvlib")), before);
    EXPECT_FALSE(child<QAction>("undo").isEnabled());
    EXPECT_FALSE(child<QAction>("redo").isEnabled());
}

TEST_F(BrowserImportTest, undoRemovesALibraryThatWasNew)
{
    const QString archive = packedLibrary();
    open();
    ASSERT_TRUE(drop({archive}));
    ASSERT_TRUE(waitFor([&] { return summary() == "Kitchen.orvlibz was imported."; }));
    ASSERT_TRUE(goTo({"My libraries", "Kitchen"}));
    trigger("undo");
    ASSERT_TRUE(waitFor([&] { return summary() == "The import was taken back."; }))
        << summary().toStdString();
    EXPECT_TRUE(waitFor([&] { return !place({"My libraries", "Kitchen"}).isValid(); }));
    EXPECT_FALSE(fileString(inRoot("user/Kitchen.orvlib")).pathExists());
}

TEST_F(BrowserImportTest, importThatWasChangedSinceLeavesUndoWithTheReason)
{
    const QString archive = packedLibrary();
    open();
    EXPECT_EQ(child<QAction>("undo").toolTip(), "There is nothing to undo.");
    ASSERT_TRUE(drop({archive}));
    ASSERT_TRUE(waitFor([&] { return summary() == "Kitchen.orvlibz was imported."; }));
    ASSERT_TRUE(goTo({"My libraries", "Kitchen"}));
    EXPECT_EQ(child<QAction>("undo").toolTip(), "Undo Import");
    select("Table");
    auto& gallery = child<QListView>("gallery");
    QTest::keyClick(&gallery, Qt::Key_Delete);
    ASSERT_TRUE(waitFor([&] { return summary() == "1 item deleted. Undo brings it back."; }))
        << summary().toStdString();
    trigger("undo");
    ASSERT_TRUE(waitFor([&] { return summary() == "1 item is back."; })) << summary().toStdString();
    ASSERT_TRUE(waitFor([&] { return !child<QAction>("undo").isEnabled(); }));
    const QString reason =
        "The import of Kitchen cannot be taken back any more, because it was changed since.";
    EXPECT_EQ(child<QAction>("undo").toolTip(), reason);
    gallery.setFocus();
    QTest::keyClick(&gallery, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(summary(), reason);
    EXPECT_TRUE(child<QAction>("redo").isEnabled()); // the deletion
    EXPECT_EQ(names(), QStringList("Table"));
}

TEST_F(BrowserImportTest, importThatIsNotTheLastAnyMoreStays)
{
    const QString archive = packedLibrary();
    open();
    ASSERT_TRUE(drop({archive}));
    ASSERT_TRUE(waitFor([&] { return summary() == "Kitchen.orvlibz was imported."; }));
    ASSERT_TRUE(QFile::copy(archive, path("Other.orvlibz")));
    test::BrowserService::runProgram(
        {"--root", QString::fromStdString(inRoot("")), "import", path("Other.orvlibz")});
    trigger("undo");
    ASSERT_TRUE(waitFor([&] { return summary().startsWith("Not undone: "); })) << summary().toStdString();
    EXPECT_EQ(summary(), "Not undone: it is not the last import any more");
    EXPECT_TRUE(fileString(inRoot("user/Kitchen.orvlib")).pathExists());
}
