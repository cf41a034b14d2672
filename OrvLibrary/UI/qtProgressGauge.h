#pragma once

#include <QProgressBar>

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/UI/ProgressText.h"

class QMouseEvent;

/// The progress bar of the library progress panel. A left click changes how the figure beside it is shown:
/// caption only, percentage, count, and again from the start. The choice is stored in preference 239.
///
/// Lives on the interface thread. Its calls of `ProgressText` are queued, so the text is made after the bar
/// has changed.
class ORVLIBRARY_EXPORT ProgressGauge : public QProgressBar
{
    Q_OBJECT

public:
    /// @param text receives values, ranges and the display type; not owned, must outlive the gauge
    ProgressGauge(QWidget* parent, ProgressText& text);
    ~ProgressGauge() override;

    virtual void SetValue(int v);
    /// @param r the number of steps above the minimum
    virtual void SetRange(int r);

    /// Sets the tool tip for the display type. An unknown type changes nothing.
    void updateToolTip();
    /// Changes to the next display type, stores it and passes it on. An unknown type stays.
    void switchDisplayType();

public Q_SLOTS:
    /// One step is finished.
    void onUpdate();
    void onSetValue(int size);
    /// Starts again at 0 with a new range.
    void onSetRange(int size);

protected:
    /// Passes the event to the parent, for every button.
    void mouseReleaseEvent(QMouseEvent* e) override;

private:
    ProgressDisplayType mDisplayType;
    ProgressText& mProgressText;
};
