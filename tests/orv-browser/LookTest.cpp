// The window for users who rely on a screen reader, read another language, or read from right to left.
#include <algorithm>
#include <cstdlib>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QImage>
#include <QLineEdit>
#include <QListView>
#include <QLocale>
#include <QProcess>
#include <QTranslator>
#include <QTreeView>

#include <gtest/gtest.h>

#include "apps/orv-browser/Appearance.h"
#include "apps/orv-browser/Translations.h"
#include "tests/orv-browser/BrowserTest.h"
#include "tests/orv-browser/CatalogMaker.h"

namespace {

class BrowserLookTest : public test::BrowserTest
{
protected:
    BrowserLookTest() { test::CatalogMaker(inRoot("core/Doors.orvlib"), "doors"); }
};

} // namespace

TEST_F(BrowserLookTest, everyControlHasANameForScreenReaders)
{
    open();
    int count = 0;
    for (QWidget* widget : window().findChildren<QWidget*>()) {
        const bool isNamedByItself =
            widget->inherits("QAbstractButton") && !widget->property("text").toString().isEmpty();
        const bool isInner = widget->objectName().startsWith("qt_") || widget->inherits("QScrollBar") ||
                             qobject_cast<QComboBox*>(widget->parentWidget()) ||
                             qobject_cast<QLineEdit*>(widget->parentWidget());
        const bool takesKeys = (widget->focusPolicy() & Qt::TabFocus) != 0;
        if (!takesKeys || isInner || isNamedByItself || widget->inherits("QComboBoxPrivateContainer") ||
            widget->inherits("QComboBoxListView") || widget->inherits("QLabel"))
            continue;
        EXPECT_FALSE(widget->accessibleName().isEmpty())
            << widget->metaObject()->className() << " " << widget->objectName().toStdString();
        ++count;
    }
    EXPECT_GE(count, 4);
}

TEST_F(BrowserLookTest, everyActionHasAKeyToReachItsMenu)
{
    open();
    int count = 0;
    for (const QAction* action : window().findChildren<QAction*>()) {
        if (action->text().isEmpty() || action->isSeparator() || action->parent()->inherits("QLineEdit"))
            continue;
        EXPECT_TRUE(action->text().contains('&')) << action->text().toStdString();
        ++count;
    }
    EXPECT_GT(count, 20);
}

TEST_F(BrowserLookTest, rightToLeftPutsTheTreeOnTheRight)
{
    QApplication::setLayoutDirection(Qt::RightToLeft);
    open();
    const int treeAt = tree().mapTo(&window(), QPoint()).x();
    const int detailsAt = child<QWidget>("detailsPane").mapTo(&window(), QPoint()).x();
    QApplication::setLayoutDirection(Qt::LeftToRight);
    EXPECT_GT(treeAt, detailsAt);
}

TEST_F(BrowserLookTest, checkBoxesCanBeSeenOnADarkGround)
{
    Appearance::apply(Appearance::kDark);
    int contrast = 0;
    {
        QCheckBox box;
        const QImage image = box.grab().toImage();
        const int ground = qGray(image.pixel(0, 0));
        for (int x = 0; x < image.width(); ++x)
            contrast = std::max(contrast, std::abs(qGray(image.pixel(x, image.height() / 2)) - ground));
    }
    Appearance::apply(Appearance::kSystem);
    EXPECT_GE(contrast, 30);
}

TEST(BrowserTranslations, languageThatRunsFromTheRightTurnsTheWindow)
{
    const QLocale former;
    const QList<QTranslator*> translators = qApp->findChildren<QTranslator*>();
    QLocale::setDefault(QLocale("he_IL"));
    Translations::install(*qApp);
    const Qt::LayoutDirection direction = QApplication::layoutDirection();
    for (QTranslator* translator : qApp->findChildren<QTranslator*>())
        if (!translators.contains(translator))
            delete translator;
    QLocale::setDefault(former);
    QApplication::setLayoutDirection(Qt::LeftToRight);
    EXPECT_EQ(direction, Qt::RightToLeft);
}

TEST_F(BrowserLookTest, germanSpeaksGermanThroughout)
{
    QTranslator german;
    ASSERT_TRUE(german.load(QLocale("de_DE"), "orvbrowser", "_", ":/orvbrowser/translations"));
    QApplication::installTranslator(&german);
    open();
    QApplication::removeTranslator(&german);
    EXPECT_EQ(placesBelow({}), QStringList({"Favoriten", "Zuletzt angesehen", "Neues", "Grundkataloge",
                                            "Zusatzkataloge", "Hersteller", "Eigene Bibliotheken"}));
    EXPECT_EQ(window().windowTitle(), "Bibliothek");
}

TEST(BrowserTranslations, areCompleteForEveryTextInTheSources)
{
    const test::TempFolder folder;
    for (const QString language : {"de", "en"}) {
        const QString file = QString::fromStdString(folder.path()) + "/" + language + ".ts";
        ASSERT_TRUE(QFile::copy(ORV_BROWSER_SOURCES "/translations/orvbrowser_" + language + ".ts", file));
        QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner);
        QStringList arguments{ORV_BROWSER_SOURCES, "-silent", "-no-obsolete", "-locations", "none"};
        if (language == "en")
            arguments << "-pluralonly";
        QProcess lupdate;
        lupdate.start(ORV_LUPDATE, arguments << "-ts" << file);
        ASSERT_TRUE(lupdate.waitForFinished());
        ASSERT_EQ(lupdate.exitCode(), 0) << lupdate.readAllStandardError().toStdString();
        const std::string text = test::readFile(file.toStdString());
        EXPECT_EQ(text.find("type=\"unfinished\""), std::string::npos) << text;
        EXPECT_NE(text.find("<translation>"), std::string::npos);
    }
}
