#include "apps/orv-browser/activities/StatusLine.h"

#include <QAction>
#include <QLabel>
#include <QLayout>
#include <QToolButton>

namespace {

constexpr int kSummaryMargin = 7; // pixels, aligned with the panes

} // namespace

StatusLine::StatusLine(QAction& update, QAction& activities, QWidget* parent)
    : QStatusBar(parent), mSummary(new QLabel), mSpeed(new QLabel)
{
    mSummary->setObjectName(QStringLiteral("summary"));
    mSummary->setTextFormat(Qt::PlainText);
    mSummary->setWordWrap(true);
    mSummary->setContentsMargins(kSummaryMargin, 0, kSummaryMargin, 0);
    mSpeed->setObjectName(QStringLiteral("speed"));
    addWidget(mSummary, 1);
    addPermanentWidget(mSpeed);
    addButton(QStringLiteral("activitiesButton"), QString())->setDefaultAction(&activities);
    mUpdate = addButton(QStringLiteral("updateButton"), QString());
    mUpdate->setDefaultAction(&update);
    mCancel = addButton(QStringLiteral("cancelButton"), tr("Cancel"));
    mCancel->hide();
    connect(mCancel, &QToolButton::clicked, this, &StatusLine::cancelAsked);
    connect(addButton(QStringLiteral("showLog"), tr("Log")), &QToolButton::clicked, this,
            &StatusLine::logAsked);
}

QToolButton* StatusLine::addButton(const QString& objectName, const QString& text)
{
    auto* button = new QToolButton;
    button->setObjectName(objectName);
    button->setText(text);
    addPermanentWidget(button);
    return button;
}

void StatusLine::say(const QString& sentence)
{
    mSummary->setText(sentence);
    fitSummary();
}

/// Needed because a status bar does not ask widgets for their height at a given width.
void StatusLine::fitSummary()
{
    layout()->activate();
    const int height = mSummary->heightForWidth(mSummary->width());
    mSummary->setMinimumHeight(mSummary->text().isEmpty() ? 0 : height);
}

void StatusLine::resizeEvent(QResizeEvent* event)
{
    QStatusBar::resizeEvent(event);
    fitSummary();
}

void StatusLine::showSpeed(const QString& text)
{
    mSpeed->setText(text);
    fitSummary();
}

void StatusLine::showRunning(bool isRunning)
{
    mIsUpdating = isRunning;
    mUpdate->setVisible(!isRunning);
    mCancel->setVisible(mIsUpdating || mIsImporting);
    mSpeed->clear();
    fitSummary();
}

void StatusLine::showImporting(bool isImporting)
{
    mIsImporting = isImporting;
    mCancel->setVisible(mIsUpdating || mIsImporting);
    fitSummary();
}
