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

/// Texts that say their number: "#8717 ".
class NumberedStrings : public StringTable
{
public:
    std::string text(std::uint32_t number) const override { return "#" + std::to_string(number) + " "; }
    std::string translation(const std::string& key) const override { return key; }
};

/// A host with all its folders, a scripted web service, and a host object that records. The application is
/// called "Orv Test".
class CatalogTest : public testing::Test
{
protected:
    CatalogTest();
    ~CatalogTest() override;

    /// Writes an installed file and gives its path: "core/Doors.orvlib".
    fileString installed(const std::string& name, const std::string& content);
    /// The path of a file below the root.
    fileString path(const std::string& name) const { return mHost.folder().file(name); }
    std::string content(const std::string& name) const;
    bool exists(const std::string& name) const { return path(name).pathExists(); }
    /// Path of a file in the download folder of "core", "bonus" or "manufacturer".
    fileString download(const std::string& kind, const std::string& name) const;

    /// Puts a file of `body` with `tag` on the service, and on its index when it is a core file.
    ScriptedFile& serve(const std::string& name, const std::string& body, const std::string& tag);
    void serveIndex(const std::string& lines);
    /// A core catalog, or with ".zip" a referenced archive, that is installed as `kOld` with the tag "old",
    /// and is `kNew` with the tag "new" on the service.
    ScriptedFile& changed(const std::string& name);

    void run() { runUpdate(*mRecorder, mArguments); }
    std::int32_t result() const;
    std::int32_t messageCode() const;

    /// All of "errors.log"; empty when there is none.
    std::string logText() const;
    /// The messages of the log's entries.
    std::vector<std::string> logMessages() const;

    ScopedHost mHost;
    NumberedStrings mStrings;
    ScriptedCurl mCurl;
    std::unique_ptr<SlotRecorder> mRecorder = std::make_unique<SlotRecorder>();
    UpdateArguments mArguments;

    static const std::string kOld;
    static const std::string kNew;
    /// The core hash file as `changed` wrote it last.
    std::string mHashLines;

private:
    StringTable* mFormerStrings;
    Curl* mFormerCurl;
};

/// The SHA-1 of a text, as the library writes it.
std::string sha1Of(const std::string& content);

} // namespace test
