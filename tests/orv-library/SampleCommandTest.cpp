#include <filesystem>
#include <map>

#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>
#include <gmock/gmock.h>

#include "tests/orv-library/Program.h"

using testing::Contains;
using testing::HasSubstr;

namespace fs = std::filesystem;

namespace {

/// The content of every file below the folder, by relative path.
std::map<std::string, std::string> contentOf(const std::string& folder)
{
    std::map<std::string, std::string> files;
    for (const std::string& name : test::listTree(folder))
        if (name.back() != '/')
            files[name] = test::readFile(folder + "/" + name);
    return files;
}

class Sample : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        mProgram = new test::Program;
        mResult = new test::ProgramResult(mProgram->run({"--json", "sample", folder()}));
        mFiles = new std::map<std::string, std::string>(contentOf(folder()));
    }
    static void TearDownTestSuite()
    {
        delete mFiles;
        delete mResult;
        delete mProgram;
    }
    static std::string folder() { return mProgram->folder().path() + "/content folder"; }

    static test::Program* mProgram;
    static test::ProgramResult* mResult;
    static std::map<std::string, std::string>* mFiles;
};

test::Program* Sample::mProgram = nullptr;
test::ProgramResult* Sample::mResult = nullptr;
std::map<std::string, std::string>* Sample::mFiles = nullptr;

std::vector<std::string> namesThatEndWith(const std::map<std::string, std::string>& files,
                                          const std::string& ending)
{
    std::vector<std::string> names;
    for (const auto& [name, content] : files)
        if (name.size() > ending.size() &&
            name.compare(name.size() - ending.size(), ending.size(), ending) == 0)
            names.push_back(name);
    return names;
}

/// The names of the members as another reader reports them.
QStringList membersOf(const std::string& archive)
{
    QProcess unzip;
    unzip.start("unzip", {"-Z1", QString::fromStdString(archive)});
    EXPECT_TRUE(unzip.waitForFinished()) << "unzip is needed";
    EXPECT_EQ(0, unzip.exitCode()) << archive;
    return QString::fromUtf8(unzip.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
}

} // namespace

TEST_F(Sample, documentNamesTheFolderAndTheNumberOfFiles)
{
    EXPECT_EQ(0, mResult->status) << mResult->err;
    EXPECT_EQ(folder(), mResult->json()["content"].toString().toStdString());
    EXPECT_EQ(static_cast<int>(mFiles->size()), mResult->json()["files"].toInt());
    EXPECT_FALSE(fs::exists(mProgram->root())) << "a sample needs no root";
}

TEST_F(Sample, sameBytesEveryTime)
{
    const std::string again = mProgram->folder().path() + "/again";
    ASSERT_EQ(0, mProgram->run({"sample", again}).status);
    EXPECT_TRUE(*mFiles == contentOf(again));
    ASSERT_EQ(0, mProgram->run({"sample", again}).status) << "over what is there";
    EXPECT_TRUE(*mFiles == contentOf(again));
}

TEST_F(Sample, coreCatalogsAreDatabasesFrom20KBTo5MB)
{
    const auto catalogs = namesThatEndWith(*mFiles, ".orvlib");
    EXPECT_GE(catalogs.size(), 12u);
    EXPECT_THAT(catalogs, Contains(HasSubstr("ü")));
    EXPECT_THAT(catalogs, Contains(HasSubstr("é")));
    EXPECT_THAT(catalogs, Contains(HasSubstr(" ")));
    for (const std::string& name : catalogs) {
        EXPECT_GE(mFiles->at(name).size(), 20'000u) << name;
        EXPECT_LE(mFiles->at(name).size(), 5'000'000u) << name;
        const QString connection = QString::fromStdString(name);
        {
            QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", connection);
            database.setDatabaseName(QString::fromStdString(folder() + "/" + name));
            ASSERT_TRUE(database.open()) << name;
            QSqlQuery query("SELECT picture, style FROM item JOIN folder ON folder.id = item.folder",
                            database);
            int items = 0;
            for (; query.next(); ++items) {
                EXPECT_FALSE(QImage::fromData(query.value(0).toByteArray(), "PNG").isNull()) << name;
                EXPECT_GE(query.value(1).toInt(), 10000);
                EXPECT_LE(query.value(1).toInt(), 10014);
            }
            EXPECT_GT(items, 0) << name;
        }
        QSqlDatabase::removeDatabase(connection);
    }
}

TEST_F(Sample, indexListsTheCoreCatalogsAndTheReferencedArchive)
{
    const std::string index = mFiles->at("content/Orv_Core_Content_Index.txt");
    for (const std::string& name : namesThatEndWith(*mFiles, ".orvlib"))
        EXPECT_THAT(index, HasSubstr(fs::path(name).filename().string() + "\n"));
    EXPECT_THAT(index, HasSubstr("\nCore Textures.zip\n"));
}

TEST_F(Sample, archivesHoldOneDatabaseAndPictures)
{
    const auto archives = namesThatEndWith(*mFiles, ".orvlibz");
    EXPECT_EQ(5u, archives.size());
    for (const std::string& name : archives) {
        const QStringList members = membersOf(folder() + "/" + name);
        EXPECT_EQ(1, members.filter(QRegularExpression("\\.orvlib$")).size()) << name;
        EXPECT_GE(members.filter(QRegularExpression("\\.png$")).size(), 4) << name;
    }
}

TEST_F(Sample, folderThatCannotBeMadeIsOneClearLine)
{
    const fileString file = mProgram->folder().write("file", "no folder");
    const test::ProgramResult result = mProgram->run({"sample", file.toNativeString() + "/below"});
    EXPECT_EQ(1, result.status);
    EXPECT_THAT(result.err, HasSubstr(file.toNativeString()));
}
