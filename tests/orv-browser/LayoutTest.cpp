// The layout at five sizes, light and dark, in English, German and from right to left: no text is cut off,
// nothing lies outside its window, and nothing overlaps. docs/notes/window.md explains why the tests check
// this and do not compare pictures. The build also runs them at 125% and 200%.
#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QLocale>
#include <QSplitterHandle>
#include <QTest>

#include <gmock/gmock.h>

#include "apps/orv-browser/Appearance.h"
#include "apps/orv-browser/dialogs/AddressCheck.h"
#include "apps/orv-browser/gallery/GalleryPane.h"
#include "apps/orv-browser/start/FirstStartPage.h"
#include "tests/orv-browser/BrowserTest.h"
#include "tests/orv-browser/CatalogMaker.h"
#include "tests/orv-browser/GermanTexts.h"

namespace {

const QSize kSizes[] = {{800, 600}, {1024, 700}, {1180, 720}, {1600, 900}, {2560, 1440}};

/// Collects the layout faults of a window.
class Inspection
{
public:
    explicit Inspection(QWidget& top) : mTop(top) { look(top); }

    const QStringList& faults() const { return mFaults; }

private:
    void look(QWidget& parent)
    {
        QList<QWidget*> shown;
        for (QObject* one : parent.children()) {
            auto* child = qobject_cast<QWidget*>(one);
            if (child && child->isVisibleTo(&mTop) && !child->isWindow() &&
                !child->testAttribute(Qt::WA_TransparentForMouseEvents) &&
                !qobject_cast<QSplitterHandle*>(child))
                shown << child;
        }
        for (QWidget* child : shown) {
            checkText(*child);
            if (!parent.rect().adjusted(-1, -1, 1, 1).contains(child->geometry()))
                note("outside", *child);
            for (QWidget* other : shown)
                if (other < child && other->geometry().intersects(child->geometry()))
                    note("overlap with " + describe(*other), *child);
            // The content of a scroll area may exceed its visible part. Input fields arrange their own parts.
            if (!qobject_cast<QAbstractScrollArea*>(child) && !qobject_cast<QComboBox*>(child) &&
                !child->inherits("QLineEdit") && !child->inherits("QMenuBar"))
                look(*child);
        }
    }

    void checkText(const QWidget& widget)
    {
        const auto* label = qobject_cast<const QLabel*>(&widget);
        if (label && label->wordWrap() && !label->text().isEmpty() &&
            label->heightForWidth(label->width()) > label->height())
            note("cut below", widget);
        const bool isLine = (label && !label->wordWrap() && !label->text().isEmpty()) ||
                            qobject_cast<const QAbstractButton*>(&widget) ||
                            qobject_cast<const QComboBox*>(&widget);
        if (isLine && widget.sizeHint().width() > widget.width() + 1)
            note("cut at the side", widget);
    }

    static QString describe(const QWidget& widget)
    {
        return QString(widget.metaObject()->className()) + " " + widget.objectName() + " " +
               widget.property("text").toString();
    }

    void note(const QString& fault, const QWidget& widget)
    {
        mFaults << fault + ": " + describe(widget) +
                       QString(" %1 x %2 of %3 x %4")
                           .arg(widget.width())
                           .arg(widget.height())
                           .arg(widget.sizeHint().width())
                           .arg(widget.sizeHint().height());
    }

    QWidget& mTop;
    QStringList mFaults;
};

class BrowserLayoutTest : public test::BrowserTest
{
protected:
    BrowserLayoutTest()
    {
        test::CatalogMaker doors(inRoot("core/Doors.orvlib"), "doors");
        const int all = doors.addFolder("Exterior doors with sidelights and transoms");
        doors.addItem(all, {"Oak door", "", 10000, 55, test::CatalogMaker::picture()});
        for (int number = 0; number < 60; ++number)
            doors.addItem(all, {"Pine door " + std::to_string(number)});
    }
    ~BrowserLayoutTest() override
    {
        Appearance::apply(Appearance::kSystem);
        QApplication::setLayoutDirection(Qt::LeftToRight);
    }

    void expectSound(QWidget& top, const std::string& what)
    {
        const QStringList faults = Inspection(top).faults();
        EXPECT_THAT(faults, testing::IsEmpty()) << what << "\n" << faults.join("\n").toStdString();
    }

    void inspectWindow()
    {
        open();
        ASSERT_TRUE(settle());
        for (const QString& colours : {QString(Appearance::kLight), QString(Appearance::kDark)}) {
            Appearance::apply(colours);
            for (const QSize& size : kSizes) {
                window().resize(size);
                select("Oak door");
                ASSERT_TRUE(settle());
                QCoreApplication::sendPostedEvents();
                QTest::qWait(1);
                expectSound(window(), colours.toStdString() + " at " + std::to_string(size.width()));
                EXPECT_LE(window().width(), size.width()) << "the window cannot be that narrow";
            }
        }
    }
    /// Inspects the start page of an empty library in each of its states.
    void inspectFirstStart()
    {
        ASSERT_TRUE(QFile::remove(QString::fromStdString(inRoot("core/Doors.orvlib"))));
        open();
        ASSERT_TRUE(settle());
        FirstStartPage& page = window().gallery().firstStart();
        ServiceOffer offer;
        offer.bonus = {{"Garden Party.orvlib", 400'000}, {"Holiday D\u00e9cor & Lights.orvlib", 0}};
        offer.manufacturer = {{"Atelier Lumi\u00e8re, \u00c9clairages et Suspensions.orvlib", 1'234'567'890}};
        page.showCatalogs(offer, {});
        page.offerSamples(true);
        page.say(AddressCheck::problemOf("an address that is long and none at all"));
        for (const QString& colours : {QString(Appearance::kLight), QString(Appearance::kDark)}) {
            Appearance::apply(colours);
            for (const QSize& size : kSizes) {
                window().resize(size);
                QCoreApplication::sendPostedEvents();
                QTest::qWait(1);
                ASSERT_TRUE(settle());
                QCoreApplication::sendPostedEvents();
                const std::string what = "first start, " + colours.toStdString() + " at " +
                                         std::to_string(size.width()) + " x " + std::to_string(size.height());
                expectSound(window(), what);
                expectSound(*page.widget(), what);
                EXPECT_LE(page.widget()->width(), page.viewport()->width()) << what;
            }
        }
    }
    void inspectDialogs()
    {
        inEachDialog([this](QDialog& dialog) {
            QCoreApplication::sendPostedEvents();
            expectSound(dialog, dialog.objectName().toStdString());
        });
    }
};

class GermanLayoutTest : public BrowserLayoutTest
{
    test::GermanTexts mTexts;
};

} // namespace

TEST(BrowserLayoutInspection, notesWhatIsCutOutsideOrCovered)
{
    QWidget top;
    top.resize(200, 100);
    auto* cut = new QLabel("a text that is far too long for its label", &top);
    cut->setGeometry(0, 0, 40, 20);
    auto* covered = new QWidget(&top);
    covered->setGeometry(30, 10, 50, 20);
    auto* outside = new QWidget(&top);
    outside->setGeometry(150, 50, 100, 20);
    top.show();
    QStringList kinds;
    const Inspection inspection(top);
    for (const QString& fault : inspection.faults())
        kinds << fault.section(' ', 0, 0);
    EXPECT_THAT(kinds, testing::UnorderedElementsAre("cut", "overlap", "outside:"));
}

TEST_F(BrowserLayoutTest, windowIsSoundInEnglishAtEverySize)
{
    inspectWindow();
}

TEST_F(GermanLayoutTest, windowIsSoundInGermanAtEverySize)
{
    inspectWindow();
}

TEST_F(BrowserLayoutTest, windowIsSoundFromRightToLeftAtEverySize)
{
    QApplication::setLayoutDirection(Qt::RightToLeft);
    inspectWindow();
}

TEST_F(BrowserLayoutTest, firstStartIsSoundInEnglishAtEverySize)
{
    inspectFirstStart();
}

TEST_F(GermanLayoutTest, firstStartIsSoundInGermanAtEverySize)
{
    inspectFirstStart();
}

TEST_F(BrowserLayoutTest, firstStartIsSoundFromRightToLeftAtEverySize)
{
    QApplication::setLayoutDirection(Qt::RightToLeft);
    inspectFirstStart();
}

TEST_F(BrowserLayoutTest, longSentenceInTheFootIsNotCut)
{
    open();
    ASSERT_TRUE(settle());
    Q_EMIT window().library().said(
        "Updated: Bath Fixtures, Café Möbel, Core Textures, Doors, Electrical Symbols "
        "and 14 more. Some catalogs could not be updated: Floors.orvlib: HTTP 503; "
        "Garage.orvlib: no answer. The log has the details.");
    for (const QSize& size : kSizes) {
        window().resize(size);
        QCoreApplication::sendPostedEvents();
        QTest::qWait(1);
        expectSound(window(), "at " + std::to_string(size.width()));
    }
}

TEST_F(BrowserLayoutTest, dialogsAreSoundInEnglish)
{
    inspectDialogs();
}

TEST_F(GermanLayoutTest, dialogsAreSoundInGerman)
{
    inspectDialogs();
}

TEST_F(BrowserLayoutTest, dialogsAreSoundFromRightToLeft)
{
    QApplication::setLayoutDirection(Qt::RightToLeft);
    inspectDialogs();
}
