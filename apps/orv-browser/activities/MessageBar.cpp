#include "apps/orv-browser/activities/MessageBar.h"

#include <algorithm>

#include <QHBoxLayout>
#include <QLabel>
#include <QStyle>
#include <QToolButton>

#include "apps/orv-browser/activities/WindowMessages.h"

namespace {

constexpr int kMostShown = 4; // older messages are removed

/// How serious a message is, from 1.
int gravity(error::Trait::Kind kind)
{
    switch (kind) {
    case error::Trait::Kind::ErrorMinimal:
        return 3;
    case error::Trait::Kind::Warning:
        return 2;
    case error::Trait::Kind::InformationOnce:
        break;
    }
    return 1;
}

QStyle::StandardPixmap iconOf(int gravity)
{
    const QStyle::StandardPixmap icons[] = {QStyle::SP_MessageBoxInformation, QStyle::SP_MessageBoxWarning,
                                            QStyle::SP_MessageBoxCritical};
    return icons[gravity - 1];
}

} // namespace

MessageBar::MessageBar(WindowMessages& messages, QWidget* parent)
    : QFrame(parent), mMessages(messages), mIcon(new QLabel), mText(new QLabel)
{
    setObjectName(QStringLiteral("messageBar"));
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::AlternateBase);
    mText->setObjectName(QStringLiteral("messageText"));
    mText->setTextFormat(Qt::PlainText);
    mText->setWordWrap(true);
    mText->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    auto* close = new QToolButton;
    close->setObjectName(QStringLiteral("putMessageAway"));
    close->setAutoRaise(true);
    close->setIcon(style()->standardIcon(QStyle::SP_TitleBarCloseButton));
    close->setAccessibleName(tr("Put the message away"));
    close->setToolTip(close->accessibleName());
    connect(close, &QToolButton::clicked, this, &MessageBar::putAway);
    auto* layout = new QHBoxLayout(this);
    layout->addWidget(mIcon, 0, Qt::AlignTop);
    layout->addWidget(mText, 1);
    layout->addWidget(close, 0, Qt::AlignTop);
    hide();
    connect(&mMessages, &WindowMessages::arrived, this, &MessageBar::showArrived);
    showArrived();
}

void MessageBar::showArrived()
{
    for (const WindowMessages::Message& message : mMessages.take()) {
        mGravest = std::max(mGravest, gravity(message.kind));
        mShown.removeAll(message.text);
        mShown.append(message.text);
    }
    if (mShown.isEmpty())
        return;
    while (mShown.size() > kMostShown)
        mShown.removeFirst();
    const int side = style()->pixelMetric(QStyle::PM_ButtonIconSize);
    mIcon->setPixmap(style()->standardIcon(iconOf(mGravest)).pixmap(side, side));
    mText->setText(mShown.join(QLatin1Char('\n')));
    show();
}

void MessageBar::putAway()
{
    mShown.clear();
    mGravest = 0;
    hide();
}
