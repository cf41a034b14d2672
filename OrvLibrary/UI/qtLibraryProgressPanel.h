#pragma once

#include <cstddef>
#include <string>

#include <QPointer>
#include <QProgressDialog>
#include <QString>

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/UI/ProgressText.h"
#include "OrvLibrary/UI/qtProgressGauge.h"

class QCloseEvent;
class QLabel;

/// The strip that shows the progress of library work as the last section of the browser's main splitter: a
/// caption on the left, a figure on the right, and a gauge below them. A progress dialog by descent, it is
/// docked rather than shown as a window of its own.
///
/// The widget lives on the interface thread. Its slots are where worker threads hand their progress over: by
/// name and queued, which is why the panel registers the argument types under their names. Closing the panel
/// destroys it once control is back in the event loop.
class ORVLIBRARY_EXPORT LibraryProgressPanel : public QProgressDialog
{
    Q_OBJECT

public:
    explicit LibraryProgressPanel(QWidget* parent);
    ~LibraryProgressPanel() override;

    /// Makes a panel and docks it into the splitter named "libMainSplitter" somewhere below `parent`, with
    /// room for two lines of text. Where there is no such splitter the panel is a dialog of `parent`, as any
    /// progress dialog: it shows itself after `minimumDuration()`, four seconds, unless the host shows it
    /// before. In a layout of another widget it is a strip there.
    /// @return the panel, owned by its Qt parent
    static LibraryProgressPanel* create(QWidget* parent);
    /// The caption under which the host groups progress panels.
    static QString label();

public Q_SLOTS:
    void setProgressLabelText(QString labelStr);
    void setProgressRangeText(QString rangeStr);
    /// One step more.
    void onUpdateInGauge();
    /// @throws boost::numeric::bad_numeric_cast for what an `int` cannot hold
    void onSetValueInGauge(size_t val);
    void onSetValueInGauge(int val);
    /// Starts again at 0 with a new range.
    /// @throws boost::numeric::bad_numeric_cast for what an `int` cannot hold
    void onSetRangeInGauge(size_t val);
    void onSetRangeInGauge(int val);
    /// @param text the caption, UTF-8
    void onSetText(std::string text);
    /// @param unit_string the unit word of the count, UTF-8; the next change of anything else shows it
    void onSetUnits(std::string unit_string);

protected:
    void closeEvent(QCloseEvent* e) override;

private:
    void layOutLabels();
    void reserveTwoLines();
    void passOn(const char* slot, int val);

    // Children, as the labels are; guarded because the dialog's `setBar` deletes the bar that it replaces.
    QPointer<ProgressText> mProgressText;
    QPointer<ProgressGauge> mGauge;
    QLabel* mLabelContainer;
    QLabel* mCaptionLabel;
    QLabel* mRangeLabel;
};
