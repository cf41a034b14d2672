#include <cerrno>
#include <cstring>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QJsonDocument>
#include <QJsonObject>

#include <gmock/gmock.h>

#include "OrvLibrary/host/PreferenceEngine.h"
#include "OrvLibrary/host/impl/services/PrefFile_p.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TempFolder.h"

using testing::ElementsAre;

namespace {

class FilePrefSetTest : public testing::Test
{
protected:
    fileString file() const { return mFolder.file("preferences.json"); }
    void write(const std::string& content) const { mFolder.write("preferences.json", content); }
    std::string content() const { return test::readFile(file()); }
    QJsonObject members() const
    {
        return QJsonDocument::fromJson(QByteArray::fromStdString(content())).object();
    }

    test::TempFolder mFolder;
};

/// Runs `action` in a child process, whose exit status tells whether the action succeeded.
template <class Action>
pid_t inChild(Action action)
{
    const pid_t child = fork();
    if (child == 0)
        _exit(action() ? 0 : 1);
    return child;
}

std::vector<std::string> warnings;

void keepWarning(QtMsgType, const QMessageLogContext&, const QString& text)
{
    warnings.push_back(text.toStdString());
}

bool wentWell(pid_t child)
{
    int status = -1;
    return waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace

TEST_F(FilePrefSetTest, readsEachTypeFromTheFile)
{
    write(R"({"1": true, "2": -7, "3": 2.5, "4": "Größe", "5": 3000000000})");
    const FilePrefSet set(file());
    EXPECT_EQ(set.getPref(1).value, PrefValue(true));
    EXPECT_EQ(set.getPref(2).value, PrefValue(-7));
    EXPECT_EQ(set.getPref(3).value, PrefValue(2.5));
    EXPECT_EQ(set.getPref(4).value, PrefValue(std::string("Größe")));
    EXPECT_EQ(set.getPref(5).value, PrefValue(3000000000.0)) << "beyond int";
}

TEST_F(FilePrefSetTest, keepsEachTypeForTheNextStart)
{
    {
        FilePrefSet set(file());
        set.setPref(1, true);
        set.setPref(2, 2147483647);
        set.setPref(3, -0.1);
        set.setPref(4, std::string("a\"\\\n\t\xC3\xA9"));
    }
    const FilePrefSet set(file());
    EXPECT_EQ(set.getPref(1).value, PrefValue(true));
    EXPECT_EQ(set.getPref(2).value, PrefValue(2147483647));
    EXPECT_EQ(set.getPref(3).value, PrefValue(-0.1));
    EXPECT_EQ(set.getPref(4).value, PrefValue(std::string("a\"\\\n\t\xC3\xA9")));
    EXPECT_THAT(test::listTree(mFolder.path()), ElementsAre("preferences.json"));
}

TEST_F(FilePrefSetTest, aWholeNumberIsARealWhereOneIsDeclared)
{
    {
        FilePrefSet set(file());
        set.declare(3, "Scale", 1.5);
        set.setPref(3, 2.0);
    }
    FilePrefSet set(file());
    set.declare(3, "Scale", 1.5);
    EXPECT_EQ(set.getPref(3).value, PrefValue(2.0));
}

TEST_F(FilePrefSetTest, declaredDefaultsHoldUntilAValueIsSet)
{
    FilePrefSet set(file());
    EXPECT_FALSE(set.hasPref(239));
    EXPECT_EQ(set.getPref(239).value, PrefValue(false)) << "unknown";
    set.declare(239, "Type", 2);
    EXPECT_TRUE(set.hasPref(239));
    EXPECT_EQ(set.getPref(239).value, PrefValue(2));
    EXPECT_EQ(set.getPref(239).description, "Type");
    set.setPref(239, 3);
    set.declare(239, "Type", 2);
    EXPECT_EQ(set.getPref(239).value, PrefValue(3));
}

TEST_F(FilePrefSetTest, aValueOfTheFileStaysWhateverTheDeclarationSays)
{
    write(R"({"239": true})");
    FilePrefSet set(file());
    set.declareLibraryPrefs();
    EXPECT_EQ(set.getPref(239).value, PrefValue(true));
    EXPECT_EQ(set.getPref(254).value, PrefValue(false));
    EXPECT_EQ(set.getPref(273).value, PrefValue(false));
}

TEST_F(FilePrefSetTest, everyPreferenceOfTheLibraryIsDeclared)
{
    FilePrefSet set(file());
    set.declareLibraryPrefs();
    const struct
    {
        int id;
        PrefValue value;
        const char* description;
    } prefs[] = {{239, 2, "Library progress display type"},
                 {254, false, "Last core content update had an error"},
                 {273, false, "Leave core content out of full updates"}};
    for (const auto& pref : prefs) {
        EXPECT_TRUE(set.hasPref(pref.id)) << pref.id;
        EXPECT_EQ(set.getPref(pref.id).value, pref.value) << pref.id;
        EXPECT_EQ(set.getPref(pref.id).description, pref.description) << pref.id;
    }
}

TEST_F(FilePrefSetTest, keepsMembersThatItDoesNotUnderstand)
{
    write(R"({"window": {"x": 1}, "7": [1, 2], "8": null, "007": 1, "239": 1})");
    FilePrefSet set(file());
    EXPECT_FALSE(set.hasPref(7));
    EXPECT_FALSE(set.hasPref(8));
    set.setPref(239, 3);
    QJsonObject expected =
        QJsonDocument::fromJson(R"({"window": {"x": 1}, "7": [1, 2], "8": null, "007": 1, "239": 3})")
            .object();
    EXPECT_EQ(members(), expected);
}

TEST_F(FilePrefSetTest, anUnreadableFileIsCopiedAsideOnce)
{
    for (const char* const broken : {"{\"239\": 3", "[1, 2]", "null", "\xFF\xFE"}) {
        write(broken);
        FilePrefSet set(file());
        set.declareLibraryPrefs();
        EXPECT_EQ(set.getPref(239).value, PrefValue(2));
        EXPECT_EQ(content(), broken) << "reading changes nothing";
        set.setPref(239, 3);
        EXPECT_EQ(test::readFile(file().toNativeString() + ".bad"), broken);
        EXPECT_EQ(members().value("239").toInt(), 3);
        set.setPref(239, 1);
        EXPECT_EQ(test::readFile(file().toNativeString() + ".bad"), broken) << "the second write";
    }
}

TEST_F(FilePrefSetTest, anUnreadableFileWithoutACopyIsNotWrittenOver)
{
    write("what only its user understands");
    mFolder.write("preferences.json.bad/in the way", "x");
    std::string reason;
    EXPECT_FALSE(PrefFile(file()).update({{239, PrefValue(1)}}, reason));
    EXPECT_EQ(reason, file().toNativeString() + ".bad: " + std::strerror(EISDIR));
    EXPECT_EQ(content(), "what only its user understands");
    EXPECT_THAT(test::listTree(mFolder.path()),
                ElementsAre("preferences.json", "preferences.json.bad/", "preferences.json.bad/in the way"));
}

TEST_F(FilePrefSetTest, aFileThatCannotBeReadNowIsNotWrittenOver)
{
    ASSERT_EQ(chmod(mFolder.path().c_str(), 0777), 0);
    write("{\"239\": 3, \"window\": 1}");
    ASSERT_EQ(chmod(file().toNativeString().c_str(), 0222), 0);
    const auto end = test::runWithoutRights([&] {
        std::string reason;
        const bool isWritten = PrefFile(file()).update({{239, PrefValue(1)}}, reason).has_value();
        return !isWritten && reason == file().toNativeString() + ": " + std::strerror(EACCES) ? 0 : 1;
    });
    EXPECT_EQ(end.status, 0);
    ASSERT_EQ(chmod(file().toNativeString().c_str(), 0644), 0);
    EXPECT_EQ(content(), "{\"239\": 3, \"window\": 1}");
}

TEST_F(FilePrefSetTest, anEmptyFileIsNoDamage)
{
    write("");
    FilePrefSet set(file());
    set.setPref(239, 3);
    EXPECT_THAT(test::listTree(mFolder.path()), ElementsAre("preferences.json"));
    EXPECT_EQ(members().value("239").toInt(), 3);
}

TEST_F(FilePrefSetTest, createsTheFolder)
{
    FilePrefSet set(mFolder.file("a/b/preferences.json"));
    set.setPref(1, true);
    EXPECT_THAT(test::listTree(mFolder.path()), ElementsAre("a/", "a/b/", "a/b/preferences.json"));
}

TEST_F(FilePrefSetTest, aChangeThatCannotBeWrittenHoldsAndIsTriedAgain)
{
    mFolder.write("blocked", "a file where a folder is needed");
    const fileString path = mFolder.file("blocked/preferences.json");
    FilePrefSet set(path);
    warnings.clear();
    const QtMessageHandler former = qInstallMessageHandler(keepWarning);
    set.setPref(1, 5);
    qInstallMessageHandler(former);
    EXPECT_THAT(warnings, ElementsAre("Unable to write preferences: cannot create the folder " +
                                      mFolder.file("blocked").toNativeString()));
    EXPECT_EQ(set.getPref(1).value, PrefValue(5));
    EXPECT_EQ(unlink(mFolder.file("blocked").toNativeString().c_str()), 0);
    set.setPref(2, 6);
    const FilePrefSet next(path);
    EXPECT_EQ(next.getPref(1).value, PrefValue(5));
    EXPECT_EQ(next.getPref(2).value, PrefValue(6));
}

TEST_F(FilePrefSetTest, aFullDiskLeavesTheFormerFile)
{
    write(R"({"1": 5})");
    const pid_t child = inChild([this] {
        signal(SIGXFSZ, SIG_IGN);
        // A write beyond the limit fails as on a full disk, but with another error.
        const rlimit limit{100, 100};
        setrlimit(RLIMIT_FSIZE, &limit);
        FilePrefSet set(file());
        set.setPref(2, std::string(1000, 'x'));
        return set.getPref(2).value == PrefValue(std::string(1000, 'x'));
    });
    EXPECT_TRUE(wentWell(child));
    EXPECT_EQ(content(), R"({"1": 5})");
    EXPECT_THAT(test::listTree(mFolder.path()), ElementsAre("preferences.json"));
}

TEST_F(FilePrefSetTest, anUnwritableFileIsLeftAlone)
{
    write(R"({"1": 5})");
    ASSERT_EQ(chmod(mFolder.path().c_str(), 0755), 0);
    const pid_t child = inChild([this] {
        if (getuid() == 0 && setuid(65534) != 0)
            return false;
        chmod(file().toNativeString().c_str(), 0444); // needed if the tests do not run as root
        FilePrefSet set(file());
        set.setPref(1, 6);
        return set.getPref(1).value == PrefValue(6);
    });
    EXPECT_TRUE(wentWell(child));
    EXPECT_EQ(content(), R"({"1": 5})");
}

TEST_F(FilePrefSetTest, followsALink)
{
    mFolder.write("real.json", R"({"1": 5})");
    ASSERT_EQ(symlink("real.json", file().toNativeString().c_str()), 0);
    FilePrefSet set(file());
    set.setPref(1, 6);
    const FilePrefSet real(mFolder.file("real.json"));
    EXPECT_EQ(real.getPref(1).value, PrefValue(6));
}

TEST_F(FilePrefSetTest, twoObjectsDoNotLoseEachOthersChanges)
{
    FilePrefSet one(file());
    FilePrefSet two(file());
    one.setPref(1, 10);
    two.setPref(2, 20);
    EXPECT_EQ(two.getPref(1).value, PrefValue(10)) << "a write brings in what others changed";
    one.setPref(3, 30);
    const FilePrefSet later(file());
    EXPECT_EQ(later.getPref(1).value, PrefValue(10));
    EXPECT_EQ(later.getPref(2).value, PrefValue(20));
    EXPECT_EQ(later.getPref(3).value, PrefValue(30));
}

TEST_F(FilePrefSetTest, processesDoNotLoseEachOthersChanges)
{
    constexpr int kProcesses = 4;
    constexpr int kChanges = 25;
    std::vector<pid_t> children;
    for (int process = 0; process < kProcesses; ++process) {
        children.push_back(inChild([this, process] {
            FilePrefSet set(file());
            for (int change = 0; change < kChanges; ++change)
                set.setPref(1000 * (process + 1) + change, change);
            return true;
        }));
    }
    for (const pid_t child : children)
        EXPECT_TRUE(wentWell(child));
    EXPECT_EQ(members().size(), kProcesses * kChanges);
}

TEST_F(FilePrefSetTest, threadsShareOneObject)
{
    FilePrefSet set(file());
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&set, thread] {
            for (int change = 0; change < 10; ++change) {
                set.declare(100 * (thread + 1) + change, "Change", 0);
                set.setPref(100 * (thread + 1) + change, change);
                set.getPref(100);
                set.hasPref(101);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(members().size(), 40);
}

TEST_F(FilePrefSetTest, aLockedFileIsLeftAloneAfterTheWait)
{
    write(R"({"1": 5})");
    const int holder = open(file().toNativeString().c_str(), O_RDONLY);
    ASSERT_EQ(flock(holder, LOCK_SH), 0);
    const PrefFile prefs(file(), std::chrono::milliseconds(20));
    std::string reason;
    EXPECT_FALSE(prefs.update({{1, 6}}, reason));
    EXPECT_NE(reason.find(file().toNativeString()), std::string::npos) << reason;
    EXPECT_EQ(content(), R"({"1": 5})");
    close(holder);
    EXPECT_TRUE(prefs.update({{1, 7}}, reason));
    EXPECT_EQ(members().value("1").toInt(), 7);
}
