#pragma once

#include <map>
#include <string>
#include <vector>

#include <QObject>
#include <QStringList>

#include "OrvLibrary/host/NullPointerRaiser.h"
#include "OrvLibrary/host/PreferenceEngine.h"
#include "OrvLibrary/host/StringTable.h"
#include "tests/support/ScopedHost.h"

namespace test {

/// A host with texts for tests and an American user, installed until the destructor.
class UiHost : private StringTable
{
public:
    UiHost();
    ~UiHost() override;

    std::map<std::uint32_t, std::string> texts;

    void setDisplayType(int type) { mHost.prefSet().setPref(PrefId::kProgressDisplayType, type); }
    int displayType() { return mHost.prefs().getPrefAs<int>(PrefId::kProgressDisplayType); }
    ScopedHost& services() { return mHost; }

private:
    std::string text(std::uint32_t number) const override;
    std::string translation(const std::string& key) const override;

    ScopedHost mHost;
    StringTable* mFormerTable;
};

/// Records the expressions of the assertions that fail until the destructor.
class AssertionRecorder
{
public:
    AssertionRecorder();
    ~AssertionRecorder();
    AssertionRecorder(const AssertionRecorder&) = delete;
    AssertionRecorder& operator=(const AssertionRecorder&) = delete;

    static std::vector<std::string> expressions;
    static std::string file;

private:
    AssertHandler mFormer;
};

/// The parent object that a progress text expects. It records the texts that it receives, oldest first.
class LabelReceiver : public QObject
{
    Q_OBJECT

public:
    QStringList labels;
    QStringList ranges;

public Q_SLOTS:
    void setProgressLabelText(const QString& text) { labels << text; }
    void setProgressRangeText(const QString& text) { ranges << text; }
};

} // namespace test
