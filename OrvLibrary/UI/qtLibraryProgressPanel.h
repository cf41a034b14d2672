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

/// Shows the progress of library work: a caption on the left, a figure on the right, and a gauge below them.
/// It is a progress dialog, but docked as the last section of the browser's main splitter instead of in its
/// own window.
///
/// The widget lives on the interface thread. Worker threads report their progress to its slots, by name and
/// through the queue. For this, the panel registers the argument types under their names. Closing the panel
/// deletes it when the event loop runs again.
class ORVLIBRARY_EXPORT LibraryProgressPanel : public QProgressDialog
{
    Q_OBJECT

public:
    explicit LibraryProgressPanel(QWidget* parent);
    ~LibraryProgressPanel() override;

    /// Makes a panel and docks it into the splitter named "libMainSplitter" anywhere below `parent`, with
    /// space for two lines of text. If there is no such splitter, the panel is a progress dialog of `parent`:
    /// it appears after `minimumDuration()`, four seconds, unless the host shows it earlier. In the layout of
    /// another widget it is shown as a strip.
    /// @return the panel, owned by its Qt parent
    static LibraryProgressPanel* create(QWidget* parent);
    /// The caption under which the host groups progress panels.
    static QString label();

public Q_SLOTS:
    void setProgressLabelText(QString labelStr);
    void setProgressRangeText(QString rangeStr);
    /// One step is finished.
    void onUpdateInGauge();
    /// @throws boost::numeric::bad_numeric_cast if an `int` cannot hold the value
    void onSetValueInGauge(size_t val);
    void onSetValueInGauge(int val);
    /// Starts again at 0 with a new range.
    /// @throws boost::numeric::bad_numeric_cast if an `int` cannot hold it
    void onSetRangeInGauge(size_t val);
    void onSetRangeInGauge(int val);
    /// @param text the caption, UTF-8
    void onSetText(std::string text);
    /// @param unit_string the unit of the count, UTF-8; the next change of any other value shows it
    void onSetUnits(std::string unit_string);

protected:
    void closeEvent(QCloseEvent* e) override;

private:
    void layOutLabels();
    void reserveTwoLines();
    void passOn(const char* slot, int val);

    // A child, like the labels. Guarded, because the dialog's `setBar` deletes the bar it replaces.
    QPointer<ProgressText> mProgressText;
    QPointer<ProgressGauge> mGauge;
    QLabel* mLabelContainer;
    QLabel* mCaptionLabel;
    QLabel* mRangeLabel;
};
