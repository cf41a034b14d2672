// The window as a command, so that the sweeps can disturb it: it takes steps as a user does, and closes.
//
//     orv_browser_driver ROOT STEP [TEXT]… [+ STEP [TEXT]…]…
//
// The exit status is that of orv-library: 0 when the window said that each step was done, 1 when it said why
// not, which then stands on standard error. It is 3 when the window does not come to an end with a step.
#include "tests/sweeps/BrowserDriver.h"

#include <iostream>
#include <map>

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <QToolButton>

#include "OrvHost/AppHost.h"
#include "OrvLibrary/Manufacturer/ManufacturerManager.h"
#include "OrvLibrary/Utility/Chooser.h"
#include "apps/orv-browser/LibraryActions.h"
#include "apps/orv-browser/activities/ImportController.h"
#include "apps/orv-browser/activities/UpdateController.h"
#include "apps/orv-browser/activities/UpdateSummary.h"

/// Makes a filter of what a search finds, under the words' name.
void BrowserDriver::saveFilter(const QStringList& texts)
{
    child<QLineEdit>("searchField").setText(texts.value(1));
    settle();
    typeName([&] { pick(*child<QToolButton>("filterChip").menu(), QStringLiteral("Save as filter…")); },
             texts.value(0));
}

void BrowserDriver::editFilters(const Answer& answer)
{
    inDialog([&] { trigger("editFilters"); },
             [&](QDialog& dialog) {
                 answer(dialog);
                 press(dialog, QDialogButtonBox::Ok);
             });
}

void BrowserDriver::importArchives(const QStringList& texts)
{
    QString summary;
    QStringList failed;
    bool isFinished = false;
    QObject::connect(&mWindow.library().imports(), &ImportController::finished, &mWindow,
                     [&](const QString& text, const QStringList& sources) {
                         summary = text;
                         failed = sources;
                         isFinished = true;
                     });
    mWindow.library().importArchives(texts);
    wait("importing", [&] { return isFinished; });
    QObject::disconnect(&mWindow.library().imports(), &ImportController::finished, &mWindow, nullptr);
    if (!failed.isEmpty())
        throw NotDone(summary);
}

/// An update that never began did nothing either; the window says why.
void BrowserDriver::update()
{
    QString told; // another sentence may follow it in the status line
    bool isDone = false;
    UpdateController& updates = mWindow.library().updates();
    QObject::connect(&updates, &UpdateController::ended, &mWindow, [&](const UpdateSummary& summary) {
        told = summary.text();
        isDone = !summary.hasProblems();
    });
    trigger("checkForUpdates");
    wait("updating", [&] { return child<QAction>("checkForUpdates").isEnabled(); });
    QObject::disconnect(&updates, nullptr, &mWindow, nullptr);
    if (!isDone)
        throw NotDone(told.isEmpty() ? heard() : told);
}

void BrowserDriver::refresh()
{
    QString text;
    bool isAccepted = false;
    inDialog([&] { trigger("refreshManufacturers"); },
             [&](QDialog& dialog) {
                 const auto& label = *dialog.findChild<QLabel*>("manufacturerText");
                 auto& apply = *dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Apply);
                 const QString first = label.text();
                 const bool isAnswered =
                     QTest::qWaitFor([&] { return label.text() != first; }, kMostMilliseconds);
                 text = isAnswered ? label.text() : QStringLiteral("no answer");
                 isAccepted = apply.isEnabled();
                 if (isAccepted)
                     QTest::mouseClick(&apply, Qt::LeftButton);
                 else
                     dialog.reject();
             });
    if (isAccepted)
        expect(QStringLiteral("The manufacturer records were refreshed."));
    else
        throw NotDone(text.isEmpty() ? heard() : text); // without a dialog the window itself says why
}

/// Texts for fields of the preferences, by name and value.
void BrowserDriver::prefer(const QStringList& texts)
{
    inDialog([&] { trigger("editPreferences"); },
             [&](QDialog& dialog) {
                 for (int i = 0; i + 1 < texts.size(); i += 2) {
                     const QByteArray name = texts[i].toUtf8();
                     if (auto* choice = dialog.findChild<QComboBox*>(name))
                         choice->setCurrentText(texts[i + 1]);
                     else
                         dialog.findChild<QLineEdit*>(name)->setText(texts[i + 1]);
                 }
                 press(dialog, QDialogButtonBox::Ok);
             });
}

/// An undo may run in the background. The window reports it when it has ended.
void BrowserDriver::undo()
{
    const auto& action = child<QAction>("undo");
    const bool isAtOnce = action.text().contains("ilter") || action.text().contains("avourites");
    trigger("undo");
    if (!isAtOnce && heard().startsWith("Not undone"))
        throw NotDone(heard());
}

void BrowserDriver::take(const QStringList& step)
{
    const QString name = step.value(0);
    const QStringList texts = step.mid(1);
    const QString first = texts.value(0);
    const QString second = texts.value(1);
    QMenu& filters = *child<QToolButton>("filterChip").menu();
    const auto filterRow = [&](QDialog& editor) {
        auto* names = editor.findChild<QListWidget*>("filterNames");
        const auto found = names->findItems(first, Qt::MatchExactly);
        names->setCurrentItem(found.value(0));
        if (found.isEmpty())
            mTold << "no filter " + first;
        return found.value(0);
    };
    const std::map<QString, std::function<void()>> steps = {
        {"filter-save", [&] { saveFilter(texts); }},
        {"filter-use", [&] { pick(filters, first); }},
        {"filter-rename",
         [&] {
             editFilters([&](QDialog& editor) {
                 if (auto* row = filterRow(editor))
                     row->setText(second);
             });
         }},
        {"filter-remove",
         [&] {
             editFilters([&](QDialog& editor) {
                 if (filterRow(editor))
                     editor.findChild<QPushButton*>("removeFilter")->click();
             });
         }},
        {"import", [&] { importArchives(texts); }},
        {"update", [&] { update(); }},
        {"refresh", [&] { refresh(); }},
        {"prefer", [&] { prefer(texts); }},
        {"undo", [&] { undo(); }},
        {"favourite",
         [&] {
             inGallery(first);
             trigger("toggleFavourite");
         }},
        {"library-new",
         [&] {
             typeName([&] { trigger("newLibrary"); }, first);
             expect(first + " is there.");
         }},
        {"library-rename",
         [&] {
             inLibrary(first);
             typeName([&] { trigger("rename"); }, second);
             expect(first + " is now called ");
         }},
        {"library-delete",
         [&] {
             inLibrary(first);
             trigger("remove");
             expect(first + " is in the bin.");
         }},
        {"copy",
         [&] {
             inGallery(first);
             pick(child<QMenu>("copyTo"), second);
             expect("Copied to ");
         }},
        {"item-rename",
         [&] {
             inGallery(first);
             typeName([&] { trigger("rename"); }, second);
             expect(first + " is now called ");
         }},
        {"item-delete",
         [&] {
             inGallery(first);
             trigger("remove");
             expect({}, "Undo brings them back.");
         }},
    };
    const auto found = steps.find(name);
    if (found == steps.end())
        throw Unending("no step " + name.toStdString());
    Q_EMIT mWindow.library().said(QString());
    found->second();
    settle();
    QCoreApplication::processEvents();
    const QString last = child<QLabel>("summary").text();
    if (last.startsWith(QLatin1String("Favourites and what you looked at last were not saved")))
        mTold << last;
    if (!mTold.isEmpty())
        throw NotDone(mTold.join(QLatin1Char('\n')));
}

namespace {

constexpr int kUnending = 3;

int takeAll(const fileString& root, const QStringList& arguments)
{
    BrowserDriver driver(root);
    int status = 0;
    try {
        QStringList step;
        for (const QString& argument : arguments) {
            if (argument != QLatin1String("+")) {
                step << argument;
                continue;
            }
            driver.take(step);
            step.clear();
        }
        driver.take(step);
    } catch (const NotDone& refusal) {
        std::cerr << refusal.what() << std::endl;
        status = 1;
    }
    driver.close();
    return status;
}

int run(const QStringList& arguments)
try {
    OrvHost::AppHost::Settings settings;
    settings.root = fileString(arguments.value(1).toStdString());
    const OrvHost::AppHost host(settings);
    const int status = takeAll(host.root(), arguments.mid(2));
    ManufacturerManager::cleanup();
    Library::Chooser::cleanup();
    return status;
} catch (const Unending& problem) {
    std::cerr << problem.what() << std::endl;
    return kUnending;
} catch (const std::exception& error) {
    std::cerr << error.what() << std::endl;
    return 1;
}

} // namespace

int main(int argc, char** argv)
{
    // Standard error is for the user's reasons; the platform would talk there of itself.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    const QApplication application(argc, argv);
    return run(QApplication::arguments());
}
