#include "apps/orv-browser/gallery/Breadcrumbs.h"

#include <algorithm>

#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>
#include <QVariant>

namespace {

constexpr int kLeastWidth = 60;
constexpr int kMostWidth = 180; // largest width of a step in pixels

} // namespace

Breadcrumbs::Breadcrumbs(QWidget* parent) : QWidget(parent), mLayout(new QHBoxLayout(this))
{
    setObjectName(QStringLiteral("breadcrumbs"));
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred); // a long path must not widen the window
    setMinimumWidth(kLeastWidth);
    mLayout->setContentsMargins(0, 0, 0, 0);
    mLayout->setSpacing(0);
}

void Breadcrumbs::show(const std::vector<Step>& steps)
{
    const auto isSame = [](const Step& left, const Step& right) {
        return left.name == right.name && left.place == right.place;
    };
    if (std::equal(steps.begin(), steps.end(), mSteps.begin(), mSteps.end(), isSame))
        return; // new buttons would flicker at each catalog that an update brings
    mSteps = steps;
    while (QLayoutItem* item = mLayout->takeAt(0)) {
        if (item->widget()) {
            item->widget()->hide();
            item->widget()->deleteLater(); // the button may be the one just clicked
        }
        delete item;
    }
    for (std::size_t i = 0; i < steps.size(); ++i) {
        if (i > 0)
            mLayout->addWidget(
                new QLabel(layoutDirection() == Qt::RightToLeft ? QStringLiteral("‹") : QStringLiteral("›")));
        auto* button = new QToolButton;
        button->setAutoRaise(true);
        button->setFocusPolicy(Qt::TabFocus);
        const QString shown = button->fontMetrics().elidedText(steps[i].name, Qt::ElideMiddle, kMostWidth);
        button->setText(QString(shown).replace(QLatin1Char('&'), QLatin1String("&&")));
        button->setProperty("stepName", steps[i].name);
        button->setAccessibleName(tr("Go to %1").arg(steps[i].name));
        connect(button, &QToolButton::clicked, this,
                [this, place = steps[i].place] { Q_EMIT chosen(place); });
        mLayout->addWidget(button);
    }
    mLayout->addStretch();
}

QStringList Breadcrumbs::names() const
{
    QStringList names;
    for (int i = 0; i < mLayout->count(); ++i)
        if (const auto* button = qobject_cast<QToolButton*>(mLayout->itemAt(i)->widget()))
            names << button->property("stepName").toString();
    return names;
}
