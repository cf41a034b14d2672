#include "apps/orv-browser/dialogs/PreferencesDialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QMessageBox>

#include "apps/orv-browser/Appearance.h"
#include "apps/orv-browser/dialogs/AddressCheck.h"

namespace {

constexpr int kLineWidth = 360;

QLineEdit* addLine(QFormLayout& layout, const QString& label, const QString& name, const QString& value)
{
    auto* line = new QLineEdit(value);
    line->setObjectName(name);
    line->setMinimumWidth(kLineWidth);
    layout.addRow(label, line);
    return line;
}

/// Names as one line, and back; file names with this separator are none that a service offers.
constexpr QLatin1Char kSeparator(';');

QString joined(const QStringList& names)
{
    return names.join(QString(kSeparator) + QLatin1Char(' '));
}

QStringList split(const QString& line)
{
    QStringList names;
    for (const QString& name : line.split(kSeparator))
        if (!name.trimmed().isEmpty())
            names << name.trimmed();
    return names;
}

} // namespace

PreferencesDialog::PreferencesDialog(const BrowserSettings& settings, QWidget* parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("preferencesDialog"));
    setWindowTitle(tr("Preferences"));
    auto* layout = new QFormLayout(this);
    mServiceUrl =
        addLine(*layout, tr("&Catalog service:"), QStringLiteral("serviceUrl"), settings.serviceUrl);
    mServiceUrl->setPlaceholderText(QStringLiteral("https://…/redirect"));
    mProduct = addLine(*layout, tr("&Product:"), QStringLiteral("product"), settings.product);
    mVersion = addLine(*layout, tr("&Version:"), QStringLiteral("productVersion"), settings.productVersion);
    mBonusCatalogs = addLine(*layout, tr("&Bonus catalogs:"), QStringLiteral("bonusCatalogs"),
                             joined(settings.bonusCatalogs));
    mManufacturerCatalogs =
        addLine(*layout, tr("Manu&facturer catalogs:"), QStringLiteral("manufacturerCatalogs"),
                joined(settings.manufacturerCatalogs));
    for (QLineEdit* line : {mBonusCatalogs, mManufacturerCatalogs}) {
        line->setPlaceholderText(tr("those that are there; more by name"));
        line->setToolTip(tr("Names of catalogs to fetch, separated by semicolons"));
    }
    mManufacturerDataUrl = addLine(*layout, tr("&Manufacturer data:"), QStringLiteral("manufacturerDataUrl"),
                                   settings.manufacturerDataUrl);
    mManufacturerLogoUrl = addLine(*layout, tr("Manufacturer &logos:"), QStringLiteral("manufacturerLogoUrl"),
                                   settings.manufacturerLogoUrl);
    mProxy = addLine(*layout, tr("Pro&xy:"), QStringLiteral("proxy"), settings.proxy);
    mProxy->setPlaceholderText(tr("as the system says"));
    mCheckAtStart = new QCheckBox(tr("Check for updates at &start"));
    mCheckAtStart->setObjectName(QStringLiteral("checkAtStart"));
    mCheckAtStart->setChecked(settings.checkAtStart);
    layout->addRow(mCheckAtStart);
    mColours = new QComboBox;
    mColours->setObjectName(QStringLiteral("colours"));
    mColours->addItem(tr("As the system"), QString(Appearance::kSystem));
    mColours->addItem(tr("Light"), QString(Appearance::kLight));
    mColours->addItem(tr("Dark"), QString(Appearance::kDark));
    mColours->setCurrentIndex(qMax(0, mColours->findData(settings.colours)));
    layout->addRow(tr("C&olours:"), mColours);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &PreferencesDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addRow(buttons);
}

BrowserSettings PreferencesDialog::settings() const
{
    BrowserSettings settings;
    settings.serviceUrl = mServiceUrl->text().trimmed();
    settings.product = mProduct->text().trimmed();
    settings.productVersion = mVersion->text().trimmed();
    settings.bonusCatalogs = split(mBonusCatalogs->text());
    settings.manufacturerCatalogs = split(mManufacturerCatalogs->text());
    settings.manufacturerDataUrl = mManufacturerDataUrl->text().trimmed();
    settings.manufacturerLogoUrl = mManufacturerLogoUrl->text().trimmed();
    settings.proxy = mProxy->text().trimmed();
    settings.checkAtStart = mCheckAtStart->isChecked();
    settings.colours = mColours->currentData().toString();
    return settings;
}

void PreferencesDialog::accept()
{
    for (QLineEdit* line : {mServiceUrl, mManufacturerDataUrl, mManufacturerLogoUrl}) {
        const QString address = line->text().trimmed();
        const QString problem = address.isEmpty() ? QString() : AddressCheck::problemOf(address);
        if (problem.isEmpty())
            continue;
        QMessageBox::information(this, windowTitle(), problem);
        line->setFocus();
        line->selectAll();
        return;
    }
    QDialog::accept();
}
