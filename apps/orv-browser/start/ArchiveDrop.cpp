// How it works: whatever part of the window an archive is first dragged over, even a field that would take
// its path as a text, this covers the window from then on, so that the rest of the drag is its own.
#include "apps/orv-browser/start/ArchiveDrop.h"

#include <QApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QPainter>
#include <QUrl>

namespace {

constexpr int kMargin = 12; // pixels
constexpr int kRadius = 8;
constexpr int kPen = 3;
constexpr int kVeil = 225; // of 255: the window below is hardly visible

QStringList archivesIn(const QMimeData& data)
{
    QStringList sources;
    for (const QUrl& url : data.urls()) {
        const QString source = url.isLocalFile() ? url.toLocalFile() : url.toString();
        if (source.endsWith(QLatin1String(".orvlibz")))
            sources << source;
    }
    return sources;
}

bool isDrag(const QEvent& event)
{
    return event.type() == QEvent::DragEnter || event.type() == QEvent::DragMove ||
           event.type() == QEvent::Drop;
}

} // namespace

ArchiveDrop::ArchiveDrop(QWidget& window) : QWidget(&window), mWindow(window)
{
    setObjectName(QStringLiteral("archiveDrop"));
    setAccessibleName(tr("Drop the archive to import it"));
    setAcceptDrops(true);
    window.setAcceptDrops(true);
    hide();
    qApp->installEventFilter(this);
}

ArchiveDrop::~ArchiveDrop()
{
    qApp->removeEventFilter(this);
}

bool ArchiveDrop::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == this && event->type() == QEvent::DragLeave)
        hide();
    if (watched == &mWindow && event->type() == QEvent::Resize && isVisible())
        cover();
    auto* widget = qobject_cast<QWidget*>(watched);
    if (!isDrag(*event) || !widget || widget->window() != &mWindow)
        return false;
    auto& drag = *static_cast<QDropEvent*>(event);
    const QStringList sources = archivesIn(*drag.mimeData());
    if (sources.isEmpty())
        return false;
    drag.setDropAction(Qt::CopyAction);
    drag.accept();
    if (event->type() == QEvent::Drop) {
        hide();
        Q_EMIT dropped(sources);
    } else
        cover();
    return true;
}

void ArchiveDrop::cover()
{
    setGeometry(mWindow.rect());
    raise();
    show();
}

void ArchiveDrop::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor veil = palette().color(QPalette::Window);
    veil.setAlpha(kVeil);
    painter.fillRect(rect(), veil);
    painter.setPen(QPen(palette().color(QPalette::Highlight), kPen, Qt::DashLine));
    painter.drawRoundedRect(rect().adjusted(kMargin, kMargin, -kMargin, -kMargin), kRadius, kRadius);
    QFont large = font();
    large.setPointSizeF(large.pointSizeF() * 3 / 2);
    painter.setFont(large);
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(rect().adjusted(2 * kMargin, 0, -2 * kMargin, 0), Qt::AlignCenter | Qt::TextWordWrap,
                     accessibleName());
}
