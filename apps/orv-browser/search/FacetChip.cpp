#include "apps/orv-browser/search/FacetChip.h"

#include <QLocale>
#include <QMenu>

namespace {

constexpr int kMostNameWidth = 160; // pixels of a name on the button

} // namespace

QString FacetChip::escaped(const QString& name)
{
    return QString(name).replace(QLatin1Char('&'), QLatin1String("&&"));
}

FacetChip::FacetChip(const QString& title, QWidget* parent) : QToolButton(parent), mTitle(title)
{
    setPopupMode(QToolButton::InstantPopup);
    setFocusPolicy(Qt::TabFocus);
    setMenu(new QMenu(this));
    connect(menu(), &QMenu::aboutToShow, this, &FacetChip::fillMenu);
    showChoice();
}

void FacetChip::choose(const QVariant& value, const QString& name)
{
    mValue = value;
    mName = name;
    showChoice();
    Q_EMIT chosen();
}

void FacetChip::clear()
{
    mValue = QVariant();
    mName.clear();
    showChoice();
}

void FacetChip::setValues(std::vector<Value> values)
{
    mValues = std::move(values);
    setEnabled(mValue.isValid() || !mValues.empty());
}

void FacetChip::fillMenu()
{
    menu()->clear();
    QAction* all = menu()->addAction(tr("All"));
    all->setCheckable(true);
    all->setChecked(!mValue.isValid());
    connect(all, &QAction::triggered, this, [this] {
        clear();
        Q_EMIT chosen();
    });
    menu()->addSeparator();
    for (const Value& one : mValues) {
        QAction* action =
            menu()->addAction(tr("%1 (%2)").arg(escaped(one.name), QLocale().toString(one.count)));
        action->setCheckable(true);
        action->setChecked(mValue == one.value);
        connect(action, &QAction::triggered, this, [this, one] { choose(one.value, one.name); });
    }
}

void FacetChip::showChoice()
{
    showOn(*this, mTitle, mValue.isValid() ? mName : QString());
}

void FacetChip::showOn(QToolButton& button, const QString& title, const QString& name)
{
    const bool isChosen = !name.isEmpty();
    const QString shown = button.fontMetrics().elidedText(name, Qt::ElideRight, kMostNameWidth);
    button.setText(escaped(isChosen ? tr("%1: %2").arg(title, shown) : title));
    button.setAccessibleName(isChosen ? tr("%1: %2").arg(title, name) : title);
    QFont chipFont = button.font();
    chipFont.setBold(isChosen);
    button.setFont(chipFont);
}
