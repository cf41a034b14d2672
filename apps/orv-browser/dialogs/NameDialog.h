#pragma once

#include <functional>

#include <QDialog>

class QDialogButtonBox;
class QLabel;
class QLineEdit;

/// Asks for a name and says, as it is typed, why it will not do. Lives on the interface thread.
class NameDialog : public QDialog
{
    Q_OBJECT

public:
    /// @param problemOf why a name cannot be taken, for people; empty when it can
    NameDialog(const QString& title, const QString& question, const QString& name,
               std::function<QString(const QString& name)> problemOf, QWidget* parent);

    QString name() const;

private:
    void check();

    std::function<QString(const QString&)> mProblemOf;
    QLineEdit* mField;
    QLabel* mProblem;
    QDialogButtonBox* mButtons;
};
