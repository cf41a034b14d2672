#pragma once

#include <QFormLayout>
#include <QLabel>
#include <QString>

/// The rows of the details pane, each with a name and a value. Rows without a value are hidden.
class DetailRows : public QFormLayout
{
    Q_OBJECT

public:
    explicit DetailRows(QWidget* parent = nullptr);

    /// @return the label of the value: plain text that can be selected
    QLabel* addText(const QString& title, const QString& objectName);
    /// @return the label of the value; `setLink` gives it a text that can be clicked
    QLabel* addLink(const QString& title, const QString& objectName);
    void set(QLabel* value, const QString& text);
    void setLink(QLabel* value, const QString& text);
    /// Lets a text begin where lines begin, also in letters that run the other way, as names of catalogs may
    /// in a window from right to left.
    static void alignToStart(QLabel& label);
    /// A bold text across both columns.
    QLabel* addTitle(const QString& objectName);
};
