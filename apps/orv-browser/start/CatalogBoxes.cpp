#include "apps/orv-browser/start/CatalogBoxes.h"

#include <algorithm>

#include <QCheckBox>
#include <QVBoxLayout>

#include "apps/orv-browser/models/DataSize.h"

namespace {

constexpr int kMostLetters = 34; // of a name; more make the page wider than a small window

bool holds(const std::vector<std::string>& names, const std::string& name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

} // namespace

CatalogBoxes::CatalogBoxes(const QString& title, QWidget* parent) : QGroupBox(title, parent)
{
    new QVBoxLayout(this);
    hide();
}

void CatalogBoxes::show(const std::vector<ServiceOffer::Catalog>& catalogs,
                        const std::vector<std::string>& chosen)
{
    const std::vector<std::string> ticked = this->chosen(chosen);
    for (const Box& one : mBoxes)
        delete one.box;
    mBoxes.clear();
    for (const ServiceOffer::Catalog& catalog : catalogs) {
        const QString name = QString::fromStdString(catalog.name).section(QLatin1Char('.'), 0, -2);
        const QString shown =
            fontMetrics().elidedText(name, Qt::ElideMiddle, kMostLetters * fontMetrics().averageCharWidth());
        QString text = catalog.bytes > 0 ? tr("%1 (%2)").arg(shown, DataSize::text(catalog.bytes)) : shown;
        auto* box = new QCheckBox(text.replace(QLatin1Char('&'), QLatin1String("&&")));
        box->setAccessibleName(name);
        if (shown != name)
            box->setToolTip(name);
        box->setObjectName(QString::fromStdString(catalog.name));
        box->setChecked(holds(ticked, catalog.name));
        layout()->addWidget(box);
        mBoxes.push_back({catalog.name, box});
    }
    setVisible(!mBoxes.empty());
}

std::vector<std::string> CatalogBoxes::chosen(const std::vector<std::string>& before) const
{
    std::vector<std::string> names;
    for (const std::string& name : before)
        if (std::none_of(mBoxes.begin(), mBoxes.end(), [&](const Box& one) { return one.name == name; }))
            names.push_back(name);
    for (const Box& one : mBoxes)
        if (one.box->isChecked())
            names.push_back(one.name);
    return names;
}

QList<QWidget*> CatalogBoxes::boxes() const
{
    QList<QWidget*> boxes;
    for (const Box& one : mBoxes)
        boxes << one.box;
    return boxes;
}
