#pragma once

#include <QProgressBar>

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/UI/ProgressText.h"

class QMouseEvent;

/// The progress bar of the library progress panel. A left click switches how the figure beside it is shown,
/// from caption only to percentage to count and round again, and keeps the choice in preference 239.
///
/// Lives on the interface thread. Everything that it tells its `ProgressText` is queued, so that the text is
/// composed after the bar has changed.
class ORVLIBRARY_EXPORT ProgressGauge : public QProgressBar
{
    Q_OBJECT

public:
    /// @param text told of values, ranges and the way of showing them; not owned, and must outlive the gauge
    ProgressGauge(QWidget* parent, ProgressText& text);
    ~ProgressGauge() override;

    virtual void SetValue(int v);
    /// @param r the number of steps above the minimum
    virtual void SetRange(int r);

    /// Sets the tool tip that belongs to the way of showing; leaves it alone when that is not one of the
    /// three.
    void updateToolTip();
    /// Goes on to the next way of showing, which is stored and passed on. A stored value that is not one of
    /// the three stays.
    void switchDisplayType();

public Q_SLOTS:
    /// One step more.
    void onUpdate();
    void onSetValue(int size);
    /// Starts again at 0 with a new range.
    void onSetRange(int size);

protected:
    /// Leaves the event to the parent, whatever the button.
    void mouseReleaseEvent(QMouseEvent* e) override;

private:
    ProgressDisplayType mDisplayType;
    ProgressText& mProgressText;
};
