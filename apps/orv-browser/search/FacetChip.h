#pragma once

#include <vector>

#include <QToolButton>
#include <QVariant>

/// A choice above the gallery, such as the style: a button with its name that opens the list of values, each
/// with the number of items that it would leave.
class FacetChip : public QToolButton
{
    Q_OBJECT

public:
    struct Value
    {
        QVariant value;
        QString name;
        int count = 0;
    };

    /// @param title the name of the choice, such as "Style"
    FacetChip(const QString& title, QWidget* parent = nullptr);

    /// The chosen value; invalid for none.
    const QVariant& value() const { return mValue; }
    /// The name of the chosen value; empty for none.
    const QString& valueName() const { return mName; }
    void choose(const QVariant& value, const QString& name);
    void clear();
    /// Sets the values that can be chosen now. The chosen value stays, even if it would leave nothing.
    void setValues(std::vector<Value> values);

    /// Shows a choice on a button: its title and the name of the chosen value, or nothing.
    static void showOn(QToolButton& button, const QString& title, const QString& name);
    /// A name as the text of an action, in which "&" would mark a key.
    static QString escaped(const QString& name);

Q_SIGNALS:
    /// The user chose another value, or none.
    void chosen();

private:
    void fillMenu();
    void showChoice();

    QString mTitle;
    QVariant mValue;
    QString mName;
    std::vector<Value> mValues;
};
