#include "tests/catalog/CatalogTest.h"

#include <QCryptographicHash>

#include "OrvLibrary/catalog/CatalogUpdaterState_p.h"

namespace test {

namespace {

const char kIndex[] = "Orv_Core_Content_Index.txt";

} // namespace

const std::string CatalogTest::kOld = "old content";
const std::string CatalogTest::kNew(5000, 'n');

CatalogTest::CatalogTest()
    : mFormerStrings(StringTable::install(&mStrings)), mFormerCurl(Curl::install(&mCurl))
{
    serveIndex("");
    // The initial values of a process.
    LibraryCatalogUpdate::diff_zero_count = 0;
    LibraryCatalogUpdate::progress_update_count = 0;
    LibraryCatalogUpdate::kbytes_to_read = 0;
    LibraryCatalogUpdate::kApiEndpoint.clear();
    LibraryCatalogUpdate::setDownloadKilled(false);
}

CatalogTest::~CatalogTest()
{
    Curl::install(mFormerCurl);
    StringTable::install(mFormerStrings);
}

fileString CatalogTest::installed(const std::string& name, const std::string& content)
{
    return mHost.folder().write(name, content);
}

std::string CatalogTest::content(const std::string& name) const
{
    return readFile(path(name));
}

fileString CatalogTest::download(const std::string& kind, const std::string& name) const
{
    return path("temp/Orv Test.downloads." + kind + "/" + name);
}

ScriptedFile& CatalogTest::serve(const std::string& name, const std::string& body, const std::string& tag)
{
    ScriptedFile& file = mCurl.files[name];
    file.body = body;
    file.tag = tag;
    return file;
}

void CatalogTest::serveIndex(const std::string& lines)
{
    mCurl.files[kIndex].page = lines;
}

ScriptedFile& CatalogTest::changed(const std::string& name)
{
    const bool isArchive = name.size() > 4 && name.substr(name.size() - 4) == ".zip";
    mArguments.core.insert(installed((isArchive ? "referenced/" : "core/") + name, kOld));
    mHashLines += name + ":old\n";
    installed("core/catalog_hash.txt", mHashLines);
    return serve(name, kNew, "new");
}

std::int32_t CatalogTest::result() const
{
    EXPECT_TRUE(mRecorder->closingData()) << "no closing invocation";
    return mRecorder->closingData() ? mRecorder->closingData()->result : -1;
}

std::int32_t CatalogTest::messageCode() const
{
    EXPECT_TRUE(mRecorder->closingData()) << "no closing invocation";
    return mRecorder->closingData() ? mRecorder->closingData()->messageCode : -1;
}

std::string CatalogTest::logText() const
{
    return exists("user/errors.log") ? content("user/errors.log") : std::string();
}

std::vector<std::string> CatalogTest::logMessages() const
{
    const std::string start = "Message: |\n";
    const std::string end = "...\n";
    const std::string log = logText();
    std::vector<std::string> messages;
    for (std::size_t at = log.find(start); at != std::string::npos; at = log.find(start, at)) {
        at += start.size();
        messages.push_back(log.substr(at, log.find(end, at) - at));
    }
    return messages;
}

std::string sha1Of(const std::string& content)
{
    return QCryptographicHash::hash(QByteArray::fromStdString(content), QCryptographicHash::Sha1)
        .toHex()
        .toStdString();
}

} // namespace test
