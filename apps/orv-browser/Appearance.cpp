#include "apps/orv-browser/Appearance.h"

#include <QApplication>
#include <QPalette>
#include <QStyle>
#include <QStyleFactory>

namespace {

struct Colours
{
    QColor window, base, alternate, text, dimmed, button, highlight, highlighted, link;
};

QPalette paletteOf(const Colours& colours)
{
    QPalette palette(colours.button, colours.window);
    palette.setColor(QPalette::Base, colours.base);
    palette.setColor(QPalette::AlternateBase, colours.alternate);
    palette.setColor(QPalette::ToolTipBase, colours.base);
    for (const QPalette::ColorRole role :
         {QPalette::Text, QPalette::WindowText, QPalette::ButtonText, QPalette::ToolTipText})
        palette.setColor(role, colours.text);
    palette.setColor(QPalette::PlaceholderText, colours.dimmed);
    palette.setColor(QPalette::Highlight, colours.highlight);
    palette.setColor(QPalette::HighlightedText, colours.highlighted);
    palette.setColor(QPalette::Link, colours.link);
    palette.setColor(QPalette::LinkVisited, colours.link);
    for (const QPalette::ColorRole role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, colours.dimmed);
    return palette;
}

QPalette darkPalette()
{
    return paletteOf({QColor(45, 48, 54), QColor(33, 36, 41), QColor(39, 42, 48), QColor(225, 228, 232),
                      QColor(140, 146, 155), QColor(58, 62, 70), QColor(52, 110, 190), Qt::white,
                      QColor(120, 180, 255)});
}

QPalette lightPalette()
{
    return paletteOf({QColor(243, 244, 246), Qt::white, QColor(248, 249, 251), QColor(28, 31, 36),
                      QColor(120, 126, 135), QColor(236, 238, 241), QColor(38, 99, 180), Qt::white,
                      QColor(20, 90, 180)});
}

} // namespace

void Appearance::apply(const QString& colours)
{
    static const QString systemStyle = QApplication::style()->objectName();
    const bool isOwn = colours == QLatin1String(kLight) || colours == QLatin1String(kDark);
    // Other styles follow their desktop and mind a palette in part only, which would mix two sets of colours.
    QApplication::setStyle(QStyleFactory::create(isOwn ? QStringLiteral("Fusion") : systemStyle));
    if (!isOwn)
        QApplication::setPalette(QApplication::style()->standardPalette());
    else
        QApplication::setPalette(colours == QLatin1String(kDark) ? darkPalette() : lightPalette());
}
