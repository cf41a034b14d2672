#pragma once

#include <QStringList>
#include <QWidget>

class QMimeData;

/// Takes archives that are dropped anywhere on a window, and says so on the whole window while one is dragged
/// over it. Lives on the interface thread, as a child of the window.
class ArchiveDrop : public QWidget
{
    Q_OBJECT

public:
    explicit ArchiveDrop(QWidget& window);
    ~ArchiveDrop() override;

Q_SIGNALS:
    /// @param sources paths and addresses
    void dropped(const QStringList& sources);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void cover();

    QWidget& mWindow;
};
