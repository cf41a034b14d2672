#include "apps/orv-browser/Appearance.h"

#include <QApplication>
#include <QPalette>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QStyleOption>

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

/// Fusion, but with check boxes that can be seen on a dark ground. Fusion takes their frame from the window's
/// colour.
class DarkStyle : public QProxyStyle
{
public:
    DarkStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override
    {
        const auto* view = qstyleoption_cast<const QStyleOptionViewItem*>(option);
        if (element == PE_IndicatorItemViewItemCheck && view)
            drawFramed(element, *view, painter, widget);
        else if (const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
                 element == PE_IndicatorCheckBox && button)
            drawFramed(element, *button, painter, widget);
        else
            QProxyStyle::drawPrimitive(element, option, painter, widget);
    }

private:
    template <class Option>
    void drawFramed(PrimitiveElement element, Option option, QPainter* painter, const QWidget* widget) const
    {
        option.palette.setColor(QPalette::Window, option.palette.color(QPalette::PlaceholderText));
        QProxyStyle::drawPrimitive(element, &option, painter, widget);
    }
};

QStyle* styleFor(const QString& colours, const QString& systemStyle)
{
    // Other styles follow their desktop and use only a part of a palette, which would mix two sets of
    // colours.
    if (colours == QLatin1String(Appearance::kDark))
        return new DarkStyle;
    const bool isLight = colours == QLatin1String(Appearance::kLight);
    return QStyleFactory::create(isLight ? QStringLiteral("Fusion") : systemStyle);
}

} // namespace

void Appearance::apply(const QString& colours)
{
    static const QString systemStyle = QApplication::style()->objectName();
    QApplication::setStyle(styleFor(colours, systemStyle));
    if (colours == QLatin1String(kDark))
        QApplication::setPalette(darkPalette());
    else if (colours == QLatin1String(kLight))
        QApplication::setPalette(lightPalette());
    else
        QApplication::setPalette(QApplication::style()->standardPalette());
}
