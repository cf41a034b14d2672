#pragma once

#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "OrvLibrary/host/StringTable.h"
#include "tests/catalog/ScriptedCurl.h"
#include "tests/catalog/UpdateRun.h"
#include "tests/support/ScopedHost.h"
#include "tests/support/SlotRecorder.h"

namespace test {

/// Texts that show their number: "#8717 ".
class NumberedStrings : public StringTable
{
public:
    std::string text(std::uint32_t number) const override { return "#" + std::to_string(number) + " "; }
    std::string translation(const std::string& key) const override { return key; }
};

/// A host with all its folders, a scripted web service, and a host object that records its calls. The name of
/// the application is "Orv Test".
class CatalogTest : public testing::Test
{
protected:
    CatalogTest();
    ~CatalogTest() override;

    /// Writes an installed file such as "core/Doors.orvlib" and returns its path.
    fileString installed(const std::string& name, const std::string& content);
    fileString path(const std::string& name) const { return mHost.folder().file(name); }
    std::string content(const std::string& name) const;
    bool exists(const std::string& name) const { return path(name).pathExists(); }
    /// The path of a file in the download folder of "core", "bonus" or "manufacturer".
    fileString download(const std::string& kind, const std::string& name) const;

    /// Adds a file with `body` and `tag` to the service, and to the index if it is a core file.
    ScriptedFile& serve(const std::string& name, const std::string& body, const std::string& tag);
    void serveIndex(const std::string& lines);
    /// Creates a core catalog, or for a name with ".zip" a referenced archive. It is installed as `kOld` with
    /// the tag "old"; the service has `kNew` with the tag "new".
    ScriptedFile& changed(const std::string& name);

    void run() { runUpdate(*mRecorder, mArguments); }
    std::int32_t result() const;
    std::int32_t messageCode() const;

    /// The content of "errors.log"; empty if the file is missing.
    std::string logText() const;
    /// The messages of all entries in the log.
    std::vector<std::string> logMessages() const;

    ScopedHost mHost;
    NumberedStrings mStrings;
    ScriptedCurl mCurl;
    std::unique_ptr<SlotRecorder> mRecorder = std::make_unique<SlotRecorder>();
    UpdateArguments mArguments;

    static const std::string kOld;
    static const std::string kNew;
    /// The core hash file that `changed` wrote last.
    std::string mHashLines;

private:
    StringTable* mFormerStrings;
    Curl* mFormerCurl;
};

/// The SHA-1 of a text in the library's notation.
std::string sha1Of(const std::string& content);

} // namespace test
