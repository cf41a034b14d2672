#include "apps/orv-browser/details/DetailRows.h"

#include <QGuiApplication>
#include <QVariant>

namespace {

constexpr double kTitleScale = 1.2;

} // namespace

DetailRows::DetailRows(QWidget* parent) : QFormLayout(parent)
{
    setRowWrapPolicy(QFormLayout::WrapLongRows);
    setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    setLabelAlignment(Qt::AlignTop);
    setContentsMargins(0, 0, 0, 0);
}

void DetailRows::alignToStart(QLabel& label)
{
    const bool isMirrored = QGuiApplication::layoutDirection() == Qt::RightToLeft;
    label.setAlignment((isMirrored ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignAbsolute | Qt::AlignVCenter);
}

QLabel* DetailRows::addTitle(const QString& objectName)
{
    auto* title = new QLabel;
    title->setObjectName(objectName);
    title->setTextFormat(Qt::PlainText);
    title->setWordWrap(true);
    QFont font = title->font();
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * kTitleScale);
    title->setFont(font);
    alignToStart(*title);
    addRow(title);
    return title;
}

QLabel* DetailRows::addText(const QString& title, const QString& objectName)
{
    auto* value = new QLabel;
    value->setObjectName(objectName);
    value->setTextFormat(Qt::PlainText);
    value->setWordWrap(true);
    value->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    alignToStart(*value);
    addRow(title, value);
    return value;
}

QLabel* DetailRows::addLink(const QString& title, const QString& objectName)
{
    QLabel* value = addText(title, objectName);
    value->setTextFormat(Qt::RichText);
    value->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    return value;
}

void DetailRows::set(QLabel* value, const QString& text)
{
    value->setText(text);
    value->setVisible(!text.isEmpty());
    if (QWidget* title = labelForField(value))
        title->setVisible(!text.isEmpty());
}

void DetailRows::setLink(QLabel* value, const QString& text)
{
    set(value, text.isEmpty() ? QString() : QStringLiteral("<a href=\"#\">%1</a>").arg(text.toHtmlEscaped()));
    value->setProperty("plainText", text);
    value->setAccessibleName(text);
}
