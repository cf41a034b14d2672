#pragma once

#include <QFormLayout>
#include <QLabel>
#include <QString>

/// Rows of a name and a value, as the details show them. A row without a value is not shown.
class DetailRows : public QFormLayout
{
    Q_OBJECT

public:
    explicit DetailRows(QWidget* parent = nullptr);

    /// @return the value, plain text that can be selected
    QLabel* addText(const QString& title, const QString& objectName);
    /// @return the value, whose text `setLink` makes one that can be clicked
    QLabel* addLink(const QString& title, const QString& objectName);
    void set(QLabel* value, const QString& text);
    void setLink(QLabel* value, const QString& text);
    /// A bold text across both columns.
    QLabel* addTitle(const QString& objectName);
};
