#include "apps/orv-browser/activities/ResultCard.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QStyle>
#include <QToolButton>

namespace {

const QColor kFailure(200, 60, 45);
const QColor kSuccess(60, 150, 80);
const QColor kWaiting(70, 110, 190);
constexpr double kTint = 0.16; // of the colour in the ground, so that texts stay readable
constexpr int kStripe = 4;     // pixels

QColor mixed(const QColor& ground, const QColor& colour)
{
    const auto mix = [](int from, int to) { return qRound(from + (to - from) * kTint); };
    return {mix(ground.red(), colour.red()), mix(ground.green(), colour.green()),
            mix(ground.blue(), colour.blue())};
}

} // namespace

ResultCard::ResultCard(QWidget* parent) : QFrame(parent), mIcon(new QLabel), mText(new QLabel)
{
    setObjectName(QStringLiteral("resultCard"));
    mText->setObjectName(QStringLiteral("resultText"));
    mText->setTextFormat(Qt::PlainText);
    mText->setWordWrap(true);
    new QHBoxLayout(this);
    layout()->addWidget(mIcon);
    layout()->addWidget(mText);
    static_cast<QHBoxLayout*>(layout())->setStretch(1, 1);
    mRetry = addButton(tr("&Retry"), QStringLiteral("resultRetry"));
    mFetch = addButton(tr("&Fetch all the same"), QStringLiteral("resultFetch"));
    mNews = addButton(tr("Show what’s &new"), QStringLiteral("resultNews"));
    QPushButton* log = addButton(tr("&Log"), QStringLiteral("resultLog"));
    auto* close = new QToolButton;
    close->setObjectName(QStringLiteral("putResultAway"));
    close->setAutoRaise(true);
    close->setIcon(style()->standardIcon(QStyle::SP_TitleBarCloseButton));
    close->setAccessibleName(tr("Put the result away"));
    close->setToolTip(close->accessibleName());
    layout()->addWidget(close);
    hide();
    connect(mRetry, &QPushButton::clicked, this, &ResultCard::retryAsked);
    connect(mFetch, &QPushButton::clicked, this, &ResultCard::fetchAsked);
    connect(mNews, &QPushButton::clicked, this, &ResultCard::newsAsked);
    connect(log, &QPushButton::clicked, this, &ResultCard::logAsked);
    connect(close, &QToolButton::clicked, this, &QWidget::hide);
}

QPushButton* ResultCard::addButton(const QString& text, const QString& name)
{
    auto* button = new QPushButton(text);
    button->setObjectName(name);
    layout()->addWidget(button);
    return button;
}

void ResultCard::showGood(const QString& text, bool hasNews)
{
    show(Kind::Good, text, hasNews);
}

void ResultCard::showFailure(const QString& text, bool hasNews)
{
    show(Kind::Failure, text, hasNews);
}

void ResultCard::showWaiting(const QString& text)
{
    show(Kind::Waiting, text, false);
}

void ResultCard::show(Kind kind, const QString& text, bool hasNews)
{
    mKind = kind;
    const int side = style()->pixelMetric(QStyle::PM_ButtonIconSize);
    mIcon->setPixmap(style()->standardIcon(iconOf()).pixmap(side, side));
    mText->setText(text);
    mRetry->setVisible(kind == Kind::Failure);
    mFetch->setVisible(kind == Kind::Waiting);
    mNews->setVisible(hasNews);
    setVisible(true);
    update();
}

QStyle::StandardPixmap ResultCard::iconOf() const
{
    if (mKind == Kind::Waiting)
        return QStyle::SP_MessageBoxInformation;
    return mKind == Kind::Failure ? QStyle::SP_MessageBoxCritical : QStyle::SP_DialogApplyButton;
}

void ResultCard::paintEvent(QPaintEvent* event)
{
    QFrame::paintEvent(event);
    const QColor colour = mKind == Kind::Failure ? kFailure : mKind == Kind::Waiting ? kWaiting : kSuccess;
    QPainter painter(this);
    painter.fillRect(rect(), mixed(palette().color(QPalette::Window), colour));
    const int x = layoutDirection() == Qt::RightToLeft ? width() - kStripe : 0;
    painter.fillRect(x, 0, kStripe, height(), colour);
}
