// `status` and `verify`: their reports about sound and damaged libraries.
#include <csignal>
#include <filesystem>

#include <QCryptographicHash>
#include <QJsonArray>
#include <gmock/gmock.h>

#include "OrvHost/update/CheckHistory.h"
#include "apps/catalog-service/ZipWriter.h"
#include "tests/orv-library/Program.h"
#include "tests/support/ArchiveBuilder.h"
#include "tests/support/ArchiveReader.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace fs = std::filesystem;

namespace {

const char* const kWrongTag = "0123456789abcdef0123456789abcdef01234567";

std::string sha1(const std::string& content)
{
    return QCryptographicHash::hash(QByteArray::fromStdString(content), QCryptographicHash::Sha1)
        .toHex()
        .toStdString();
}

std::vector<std::string> texts(const QJsonValue& array)
{
    std::vector<std::string> list;
    for (const QJsonValue& value : array.toArray())
        list.push_back(value.toString().toStdString());
    return list;
}

class HealthCommands : public testing::Test
{
protected:
    void SetUp() override { mProgram.run({"paths", "--create"}); }

    std::string path(const std::string& name) const { return mProgram.root() + "/" + name; }
    void write(const std::string& name, const std::string& content) const
    {
        test::writeFile(path(name), content);
    }
    void writeArchive(const std::string& name) const
    {
        ZipWriter archive(path(name));
        archive.add("Oak.png", std::string(5000, 'o'));
        archive.close();
    }
    void damage(const std::string& name) const
    {
        std::string content = test::readFile(path(name));
        content[40] = static_cast<char>(content[40] ^ 0x20); // in the data of the member
        write(name, content);
    }

    QJsonArray warnings() const
    {
        const test::ProgramResult result = mProgram.run({"--json", "status"});
        const QJsonArray list = result.json()["warnings"].toArray();
        EXPECT_EQ(list.isEmpty() ? 0 : 1, result.status) << result.err;
        return list;
    }
    void expectOneWarning(const std::string& catalog, const std::string& part) const
    {
        const QJsonArray list = warnings();
        ASSERT_EQ(1, list.size());
        EXPECT_EQ(catalog, list[0].toObject()["catalog"].toString().toStdString());
        EXPECT_THAT(list[0].toObject()["text"].toString().toStdString(), HasSubstr(part));
    }

    /// Writes an archive of 20 MB and links it under further names. Where links are not possible, copies it.
    void writeLargeArchives(int count) const
    {
        {
            ZipWriter archive(path("textures/0.zip"));
            archive.add("Oak.jpg", test::sampleBytes(20000000, 1));
            archive.close();
        }
        for (int i = 1; i < count; ++i) {
            const std::string name = path("textures/" + std::to_string(i) + ".zip");
            std::error_code failure;
            fs::create_hard_link(path("textures/0.zip"), name, failure);
            if (failure)
                fs::copy_file(path("textures/0.zip"), name);
        }
    }

    test::Program mProgram;
};

} // namespace

TEST_F(HealthCommands, freshRootWasNeverCheckedAndHasNoWarnings)
{
    const test::ProgramResult result = mProgram.run({"--json", "status"});
    EXPECT_TRUE(result.json()["lastGoodCheck"].isNull());
    EXPECT_TRUE(result.json()["warnings"].toArray().isEmpty());
    EXPECT_THAT(mProgram.run({"status"}).out, HasSubstr("Last good check: never\n"));
}

TEST_F(HealthCommands, statusTellsTheLastGoodCheckAndBadAnswers)
{
    OrvHost::CheckHistory history{fileString(mProgram.root())};
    const QDateTime good = QDateTime::fromString("2026-01-02T03:04:05Z", Qt::ISODate);
    history.noteGoodCheck(good);
    history.noteAnswer("Current.orvlib", 304, good);
    history.noteAnswer("New.orvlib", 200, good);
    history.noteAnswer("Denied.orvlib", 403, good);
    history.noteAnswer("Silent.orvlib", 0, good);
    history.save();

    const QJsonObject document = mProgram.run({"--json", "status"}).json();
    EXPECT_EQ("2026-01-02T03:04:05Z", document["lastGoodCheck"].toString());
    const QJsonArray list = document["warnings"].toArray();
    ASSERT_EQ(2, list.size());
    EXPECT_EQ("Denied.orvlib", list[0].toObject()["catalog"].toString());
    EXPECT_THAT(list[0].toObject()["text"].toString().toStdString(), HasSubstr("HTTP 403"));
    EXPECT_EQ("Silent.orvlib", list[1].toObject()["catalog"].toString());
}

TEST_F(HealthCommands, statusWarnsOfStampsInTheFuture)
{
    write("manufacturer-data/manufacturer_data.json",
          R"({"Last_Modified":"29990101T000000","Manufacturer":{"Id":7,"Last_Modified":"20200101T000000"}})");
    expectOneWarning("manufacturer_data.json", "future");
    write("manufacturer-data/manufacturer_data.json",
          R"({"Last_Modified":"20200101T000000","Manufacturer":{"Id":7,"Last_Modified":"29990101T000000"}})");
    expectOneWarning("manufacturer_data.json", "manufacturer 7");
    write("manufacturer-data/manufacturer_data.json", "{}");
    write("bonus/Garden.orvlib", "content");
    fs::last_write_time(path("bonus/Garden.orvlib"),
                        fs::file_time_type::clock::now() + std::chrono::hours(24));
    expectOneWarning("Garden.orvlib", "future");
}

TEST_F(HealthCommands, statusWarnsOfACoreCatalogThatDoesNotMatchItsTag)
{
    write("core/Doors.orvlib", "doors");
    write("core/catalog_hash.txt", "Doors.orvlib:" + sha1("doors") + "\n");
    EXPECT_TRUE(warnings().isEmpty());
    write("core/Doors.orvlib", "cut");
    expectOneWarning("Doors.orvlib", "SHA-1");
}

TEST_F(HealthCommands, verifyPassesOverTagsThatAreNoSha1AndBonusCatalogs)
{
    write("core/Doors.orvlib", "doors");
    write("core/catalog_hash.txt", "Doors.orvlib:opaque-tag\n");
    write("bonus/Garden.orvlib", "garden");
    write("bonus/catalog_hash.txt", std::string("Garden.orvlib:") + kWrongTag + "\n");
    const test::ProgramResult result = mProgram.run({"--json", "verify"});
    EXPECT_EQ(0, result.status) << result.err;
    EXPECT_EQ(0, result.json()["checked"].toInt());
}

TEST_F(HealthCommands, verifyFindsDamagedCatalogsAndArchives)
{
    write("core/Doors.orvlib", "doors");
    write("core/Lamps.orvlib", "lamps");
    writeArchive("referenced/Core.zip");
    writeArchive("textures/Mine.zip");
    writeArchive("textures/Sound.zip");
    damage("referenced/Core.zip");
    damage("textures/Mine.zip");
    const std::string hashes =
        "Core.zip:tag\nDoors.orvlib:" + std::string(kWrongTag) + "\nLamps.orvlib:" + sha1("lamps") + "\n";
    write("core/catalog_hash.txt", hashes);

    const test::ProgramResult result = mProgram.run({"--json", "verify"});
    EXPECT_EQ(1, result.status);
    EXPECT_EQ(5, result.json()["checked"].toInt());
    EXPECT_THAT(texts(result.json()["damaged"]), ElementsAre("Doors.orvlib", "Core.zip", "Mine.zip"));
    EXPECT_THAT(texts(result.json()["repaired"]), IsEmpty());
    EXPECT_EQ(hashes, test::readFile(path("core/catalog_hash.txt")));
}

TEST_F(HealthCommands, filesOfAnyNameAreLookedAt)
{
    const std::vector<std::string> names{".Hidden.zip",
                                         "K\xFC"
                                         "che.zip",
                                         "M\xC3\xB6"
                                         "bel.zip"};
    for (const std::string& name : names) {
        writeArchive("textures/Sound.zip");
        damage("textures/Sound.zip");
        fs::rename(path("textures/Sound.zip"), path("textures/" + name));
    }
    write("textures/Other.ZIP", "an archive has the extension in lower case");
    const test::ProgramResult result = mProgram.run({"--json", "verify"});
    EXPECT_EQ(1, result.status);
    EXPECT_EQ(3, result.json()["checked"].toInt());
    EXPECT_EQ(3, result.json()["damaged"].toArray().size());
    EXPECT_THAT(result.err, HasSubstr(names[1] + ": "));

    write("core/Doors.orvlib", "doors");
    fs::rename(path("core/Doors.orvlib"), path("core/T\xFCren.orvlib"));
    fs::last_write_time(path("core/T\xFCren.orvlib"),
                        fs::file_time_type::clock::now() + std::chrono::hours(24));
    expectOneWarning("T\xEF\xBF\xBDren.orvlib", "future");
}

TEST_F(HealthCommands, repairRemovesTheHashLinesOfDamagedFiles)
{
    write("core/Doors.orvlib", "doors");
    write("core/Lamps.orvlib", "lamps");
    writeArchive("referenced/Core.zip");
    damage("referenced/Core.zip");
    write("core/catalog_hash.txt",
          "Core.zip:tag\nDoors.orvlib:" + std::string(kWrongTag) + "\nLamps.orvlib:" + sha1("lamps") + "\n");

    const test::ProgramResult result = mProgram.run({"--json", "verify", "--repair"});
    EXPECT_EQ(0, result.status) << "no damage remains that the next update would not mend";
    EXPECT_THAT(texts(result.json()["repaired"]), ElementsAre("Doors.orvlib", "Core.zip"));
    EXPECT_EQ("Lamps.orvlib:" + sha1("lamps") + "\n", test::readFile(path("core/catalog_hash.txt")));
}

TEST_F(HealthCommands, repairKeepsTheSoundFilesOfAnArchiveThatNoUpdateBrings)
{
    {
        ZipWriter archive(path("textures/Mine.zip"));
        archive.add("Oak.png", std::string(5000, 'o'));
        archive.add("Elm.png", std::string(5000, 'e'));
        archive.close();
    }
    damage("textures/Mine.zip");
    const std::string damaged = test::readFile(path("textures/Mine.zip"));
    const test::ProgramResult result = mProgram.run({"--json", "verify", "--repair"});
    EXPECT_EQ(0, result.status) << result.err;
    EXPECT_THAT(texts(result.json()["damaged"]), ElementsAre("Mine.zip"));
    EXPECT_THAT(texts(result.json()["repaired"]), ElementsAre("Mine.zip"));
    EXPECT_THAT(result.err, HasSubstr("Mine.zip: lost Oak.png"));
    EXPECT_EQ(damaged, test::readFile(path("textures/Mine.zip.damaged")));
    const auto sound = test::contentsOf(fileString(path("textures/Mine.zip")));
    ASSERT_EQ(1U, sound.size());
    EXPECT_EQ("Elm.png", sound[0].first);
    EXPECT_EQ(0, mProgram.run({"verify"}).status);
}

TEST_F(HealthCommands, verifyShowsHowFarItIs)
{
    writeArchive("textures/Small.zip");
    EXPECT_EQ(mProgram.run({"--progress", "plain", "verify"}).err, "") << "nobody could read it in time";
    writeLargeArchives(2);
    EXPECT_EQ(mProgram.run({"--progress", "plain", "verify"}).err.substr(0, 9), "checking\n");
    const test::ProgramResult result = mProgram.run({"--progress", "bar", "verify"});
    EXPECT_THAT(result.err, HasSubstr("] checking"));
    EXPECT_THAT(result.err, HasSubstr("[####################] 40 of 40 MB"));
    EXPECT_THAT(result.err, testing::EndsWith("\r\033[K")) << "the bar goes from the line";
    EXPECT_EQ(mProgram.run({"--progress", "none", "verify"}).err, "");
}

TEST_F(HealthCommands, verifyHearsAnInterrupt)
{
    writeLargeArchives(400); // 8 GB to read
    const auto process = mProgram.start({"--json", "--progress", "plain", "verify", "--repair"});
    process->setReadChannel(QProcess::StandardError);
    ASSERT_TRUE(process->waitForReadyRead(10000)) << "it says that it checks";
    ::kill(static_cast<pid_t>(process->processId()), SIGINT);
    const test::ProgramResult result = test::Program::finish(*process);
    EXPECT_EQ(result.status, 130) << result.err;
    EXPECT_EQ(result.json()["error"].toString(), "interrupted");
    EXPECT_LT(result.json()["checked"].toInt(), 400);
    EXPECT_THAT(result.err, testing::EndsWith("interrupted\n"));
}

TEST_F(HealthCommands, interruptedRepairLeavesTheArchiveAsItWas)
{
    writeLargeArchives(1);
    damage("textures/0.zip");
    const std::string damaged = test::readFile(path("textures/0.zip"));
    const auto process = mProgram.start({"--json", "--progress", "plain", "verify", "--repair"});
    process->setReadChannel(QProcess::StandardError);
    while (process->waitForReadyRead(10000) && !process->peek(1000).contains("repairing"))
        continue;
    ::kill(static_cast<pid_t>(process->processId()), SIGINT);
    const test::ProgramResult result = test::Program::finish(*process);
    // An interrupt after the repair also ends the program with 130.
    const bool isDone = result.json()["repaired"].toArray().size() == 1;
    EXPECT_TRUE(result.status == 130 || (isDone && result.status == 0)) << result.status << result.err;
    EXPECT_EQ(fs::exists(path("textures/0.zip.damaged")), isDone);
    EXPECT_EQ(test::readFile(path("textures/0.zip")) == damaged, !isDone);
    EXPECT_EQ(test::listTree(path("textures")).size(), isDone ? 2U : 1U);
}
