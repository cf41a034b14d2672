#pragma once

#include <cstdint>
#include <string>

#include <QObject>
#include <QString>

#include "OrvLibrary/OrvLibraryExport.h"

/// How the progress of library work is shown beside its caption. Any other value is shown like the first.
/// Queued calls know it by its name, see `ProgressText`.
enum ProgressDisplayType : std::int32_t
{
    kProgressCaptionOnly = 1,
    kProgressPercentage = 2,
    kProgressCount = 3, ///< done and total, and the unit word
};

/// Composes the two texts of a running library operation: its caption, and a figure such as a count or a
/// percentage. It shows nothing itself; the panel does, see `LibraryProgressPanel`.
///
/// Lives on the interface thread; the slots are private because producers call them by name, queued. How the
/// figure is shown is read from preference 239 at construction.
class ORVLIBRARY_EXPORT ProgressText : public QObject
{
    Q_OBJECT

public:
    /// @param parent owns the object and is told of both texts: it must offer the slots
    /// `setProgressLabelText(QString)` and `setProgressRangeText(QString)`
    explicit ProgressText(QObject* parent);
    ~ProgressText() override;

    /// Stores the unit word, UTF-8, of the count; the next change of anything else shows it.
    void setUnitString(const std::string& unitString);

Q_SIGNALS:
    // Both are sent at every change, even when the text is the same as before.
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
    std::string mText;       // UTF-8, as the other texts
    std::string mRangeText;  // as last composed
    std::string mUnitString; // empty for none
};
