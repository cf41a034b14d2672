#include "apps/orv-browser/dialogs/PreferencesDialog.h"

#include <limits>

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QSpinBox>
#include <QTabWidget>

#include "apps/orv-browser/Appearance.h"

namespace {

constexpr int kMost = std::numeric_limits<int>::max();
constexpr int kMostRetries = 100; // these as the shared settings bound them
constexpr int kMostConnections = 96;
constexpr int kMostVersions = 1000;
constexpr int kKilobyte = 1000;
constexpr int kMegabyte = 1000000;

/// A setting that does nothing here says so.
QLabel* environmentNote(const char* key)
{
    auto* note = new QLabel(PreferencesDialog::tr("Here, a variable of the environment goes before this."));
    note->setObjectName(QLatin1String(key) + QStringLiteral("Note"));
    note->setForegroundRole(QPalette::PlaceholderText);
    return note;
}

} // namespace

PreferencesDialog::PreferencesDialog(const OrvHost::Settings& shared, const BrowserSettings& own,
                                     QWidget* parent)
    : QDialog(parent), mFields(shared), mPages(new QTabWidget)
{
    setObjectName(QStringLiteral("preferencesDialog"));
    setWindowTitle(tr("Preferences"));
    mPages->setObjectName(QStringLiteral("preferencePages"));
    mPages->addTab(servicePage(), tr("Service"));
    mPages->addTab(networkPage(), tr("Network"));
    mPages->addTab(diskPage(), tr("Disk"));
    mPages->addTab(windowPage(own), tr("This window"));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &PreferencesDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(mPages);
    layout->addWidget(buttons);
}

QWidget* PreferencesDialog::servicePage()
{
    auto* page = new QWidget;
    auto* layout = new QFormLayout(page);
    QLineEdit* url = mFields.addText("url");
    url->setPlaceholderText(QStringLiteral("https://…/redirect"));
    layout->addRow(tr("&Catalog service:"), url);
    layout->addRow(tr("&Product:"), mFields.addText("product"));
    layout->addRow(tr("&Version:"), mFields.addText("productVersion"));
    QLineEdit* bonus = mFields.addCatalogs("bonus");
    layout->addRow(tr("&Bonus catalogs:"), bonus);
    QLineEdit* manufacturer = mFields.addCatalogs("manufacturer");
    layout->addRow(tr("Manu&facturer catalogs:"), manufacturer);
    for (QLineEdit* line : {bonus, manufacturer}) {
        line->setPlaceholderText(tr("those that are there; more by name"));
        line->setToolTip(tr("Names of catalogs to fetch, separated by semicolons"));
    }
    layout->addRow(tr("&Manufacturer data:"), mFields.addText("manufacturerDataUrl"));
    layout->addRow(tr("Manufacturer &logos:"), mFields.addText("manufacturerLogoUrl"));
    return page;
}

QWidget* PreferencesDialog::networkPage()
{
    auto* page = new QWidget;
    auto* layout = new QFormLayout(page);
    for (const auto& [label, key] :
         {std::pair(tr("Pro&xy:"), "proxy"), {tr("C&ertificates:"), "certificates"}}) {
        QLineEdit* line = mFields.addText(key);
        line->setPlaceholderText(tr("as the system says"));
        layout->addRow(label, line);
        if (OrvHost::Settings::isFromEnvironment(key))
            layout->addRow(QString(), environmentNote(key));
    }
    layout->addRow(tr("&Retries of a request:"), mFields.addNumber("retries", 0, kMostRetries));
    layout->addRow(tr("Co&nnections at once:"), mFields.addNumber("connections", 1, kMostConnections));
    QSpinBox* rate = mFields.addNumber("limitRate", 0, kMost, kKilobyte);
    rate->setSuffix(tr(" KB/s"));
    rate->setSpecialValueText(tr("no limit"));
    layout->addRow(tr("Receive at &most:"), rate);
    layout->addRow(tr("On a metere&d connection:"),
                   mFields.addChoice("metered", {{tr("only look what is new"), OrvHost::Settings::kPostpone},
                                                 {tr("fetch updates, too"), OrvHost::Settings::kFetch}}));
    return page;
}

QWidget* PreferencesDialog::diskPage()
{
    auto* page = new QWidget;
    auto* layout = new QFormLayout(page);
    layout->addRow(tr("Former &versions of a catalog:"),
                   mFields.addNumber("historyVersions", 1, kMostVersions));
    QSpinBox* size = mFields.addNumber("historyBytes", 0, kMost, kMegabyte);
    size->setSuffix(tr(" MB"));
    layout->addRow(tr("All of them &together:"), size);
    QSpinBox* reserve = mFields.addNumber("diskReserve", 0, kMost, kMegabyte);
    reserve->setSuffix(tr(" MB"));
    reserve->setSpecialValueText(tr("as usual"));
    layout->addRow(tr("Leave &free on the disk:"), reserve);
    return page;
}

QWidget* PreferencesDialog::windowPage(const BrowserSettings& own)
{
    auto* page = new QWidget;
    auto* layout = new QFormLayout(page);
    mCheckAtStart = new QCheckBox(tr("Check for updates at &start"));
    mCheckAtStart->setObjectName(QStringLiteral("checkAtStart"));
    mCheckAtStart->setChecked(own.checkAtStart);
    layout->addRow(mCheckAtStart);
    mCheckAge = new QSpinBox;
    mCheckAge->setObjectName(QStringLiteral("checkAgeHours"));
    mCheckAge->setRange(0, BrowserSettings::kMostHours);
    mCheckAge->setSuffix(tr(" h"));
    mCheckAge->setValue(own.checkAgeHours);
    layout->addRow(tr("…if the last check is &older than:"), mCheckAge);
    mColours = new QComboBox;
    mColours->setObjectName(QStringLiteral("colours"));
    mColours->addItem(tr("As the system"), QString(Appearance::kSystem));
    mColours->addItem(tr("Light"), QString(Appearance::kLight));
    mColours->addItem(tr("Dark"), QString(Appearance::kDark));
    mColours->setCurrentIndex(qMax(0, mColours->findData(own.colours)));
    layout->addRow(tr("C&olours:"), mColours);
    return page;
}

BrowserSettings PreferencesDialog::own() const
{
    return {mCheckAtStart->isChecked(), mCheckAge->value(), mColours->currentData().toString()};
}

void PreferencesDialog::accept()
{
    QString problem;
    QLineEdit* wrong = mFields.firstWrong(problem);
    if (!wrong)
        return QDialog::accept();
    QMessageBox::information(this, windowTitle(), problem);
    for (int i = 0; i < mPages->count(); ++i)
        if (mPages->widget(i)->isAncestorOf(wrong))
            mPages->setCurrentIndex(i);
    wrong->setFocus();
    wrong->selectAll();
}
