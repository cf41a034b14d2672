#include "apps/orv-browser/FocusRing.h"

#include <QApplication>
#include <QEvent>
#include <QPainter>

namespace {

constexpr int kWidth = 2; // pixels

class Ring : public QWidget
{
public:
    explicit Ring(QWidget* window) : QWidget(window)
    {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setFocusPolicy(Qt::NoFocus);
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.setPen(QPen(palette().color(QPalette::Highlight), kWidth));
        painter.drawRect(QRectF(rect()).adjusted(1, 1, -1, -1));
    }
};

} // namespace

FocusRing::FocusRing(QObject* parent) : QObject(parent)
{
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) { follow(now); });
}

FocusRing::~FocusRing()
{
    delete mRing;
}

void FocusRing::follow(QWidget* focus)
{
    if (mFocus)
        mFocus->removeEventFilter(this);
    const bool isByKey = focus && focus->window()->testAttribute(Qt::WA_KeyboardFocusChange);
    mFocus = isByKey ? focus : nullptr;
    if (mFocus)
        mFocus->installEventFilter(this);
    place();
}

void FocusRing::place()
{
    if (!mFocus || !mFocus->isVisible()) {
        if (mRing)
            mRing->hide();
        return;
    }
    QWidget* window = mFocus->window();
    if (mRing && mRing->parentWidget() != window)
        delete mRing;
    if (!mRing)
        mRing = new Ring(window);
    const QRect place(mFocus->mapTo(window, QPoint()), mFocus->size());
    mRing->setGeometry(place.adjusted(-kWidth, -kWidth, kWidth, kWidth) & window->rect());
    mRing->raise();
    mRing->show();
}

bool FocusRing::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::Show:
    case QEvent::Hide:
        place();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}
