#pragma once

#include <QFrame>

class QLabel;
class QPushButton;

/// How an update or the imports ended, at the top of the window until the user puts it away. A failure has a
/// colour, an icon and a button to try again.
class ResultCard : public QFrame
{
    Q_OBJECT

public:
    explicit ResultCard(QWidget* parent = nullptr);

    /// @param hasNews whether there is something new to show
    void showGood(const QString& text, bool hasNews);
    void showFailure(const QString& text, bool hasNews);

Q_SIGNALS:
    void newsAsked();
    void logAsked();
    void retryAsked();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QPushButton* addButton(const QString& text, const QString& name);
    void show(const QString& text, bool isFailure, bool hasNews);

    QLabel* mIcon;
    QLabel* mText;
    QPushButton* mRetry;
    QPushButton* mNews;
    bool mIsFailure = false;
};
