#pragma once

#include <cstdint>
#include <string>

#include <QObject>
#include <QString>

#include "OrvLibrary/OrvLibraryExport.h"

/// How the progress is shown beside its caption. Any other value counts as the first one. Queued calls use
/// this type by its name, see `ProgressText`.
enum ProgressDisplayType : std::int32_t
{
    kProgressCaptionOnly = 1,
    kProgressPercentage = 2,
    kProgressCount = 3, ///< done, total and the unit
};

/// Makes the two texts of a running operation: its caption, and a figure such as a count or a percentage. It
/// shows nothing itself; `LibraryProgressPanel` does.
///
/// Lives on the interface thread. Its slots are private, because they are called by name, through the queue.
/// The constructor reads from preference 239 how to show the figure.
class ORVLIBRARY_EXPORT ProgressText : public QObject
{
    Q_OBJECT

public:
    /// @param parent owns the object and receives both texts. It needs the slots
    /// `setProgressLabelText(QString)` and `setProgressRangeText(QString)`.
    explicit ProgressText(QObject* parent);
    ~ProgressText() override;

    /// Sets the unit of the count, UTF-8. The next change of any other value shows it.
    void setUnitString(const std::string& unitString);

Q_SIGNALS:
    // Each change sends both texts, even if they are the same as before.
    void setLabelText(const QString& labelText);
    void setRangeText(const QString& rangeText);

private Q_SLOTS:
    void onPauseProcess();
    void onResumeProcess();
    void onSwitchDisplayType(ProgressDisplayType dispType);
    void onSetValue(int val);
    void onSetRange(int val);
    void onSetText(std::string text);

private:
    void updateLabel();
    std::string countText() const;
    std::string percentageText() const;

    QObject* mParent;
    ProgressDisplayType mDisplayType;
    std::int32_t mValue = 0;
    std::int32_t mRange = 0;
    bool mPaused = false;
    std::string mText;       // UTF-8, like the other texts
    std::string mRangeText;  // as sent last
    std::string mUnitString; // empty for none
};
