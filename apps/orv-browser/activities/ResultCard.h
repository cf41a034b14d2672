#pragma once

#include <QFrame>
#include <QStyle>

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
    /// With a button to fetch what waits.
    void showWaiting(const QString& text);

Q_SIGNALS:
    void newsAsked();
    void logAsked();
    void retryAsked();
    void fetchAsked();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    enum class Kind
    {
        Good,
        Failure,
        Waiting
    };

    QPushButton* addButton(const QString& text, const QString& name);
    void show(Kind kind, const QString& text, bool hasNews);
    QStyle::StandardPixmap iconOf() const;

    QLabel* mIcon;
    QLabel* mText;
    QPushButton* mRetry;
    QPushButton* mFetch;
    QPushButton* mNews;
    Kind mKind = Kind::Good;
};
