#include <filesystem>

#include "tests/orv-library/ImportFixture.h"

namespace fs = std::filesystem;
using test::ProgramResult;

namespace {

class UndoCommand : public ImportFixture
{
protected:
    /// Imports a library with this name whose files contain `version`.
    void import(const std::string& version, const std::string& name = "Kitchen")
    {
        test::ArchiveBuilder archive;
        archive.add("inside.orvlib", test::sampleDatabase(version));
        archive.add("oak.png", "oak " + version);
        archive.add("own-" + version + ".png", "own");
        const std::string file = archive.write(mProgram.folder(), name + ".orvlibz").toNativeString();
        const ProgramResult result = mProgram.run({"import", file});
        ASSERT_EQ(result.status, 0) << result.err;
    }
    /// The files of the library except those kept for an undo.
    std::map<std::string, std::string> library() const
    {
        std::map<std::string, std::string> files;
        for (const char* folder : {"user/", "textures/"})
            for (const std::string& name : test::listTree(rootPath(folder)))
                files[folder + name] = test::readFile(rootPath(folder + name));
        return files;
    }
    std::size_t keptFiles() const { return test::listTree(rootPath("former-imports")).size(); }
    ProgramResult undo() const { return mProgram.run({"--json", "undo"}); }
};

QJsonValue text(const std::string& value)
{
    return QString::fromStdString(value);
}

} // namespace

TEST_F(UndoCommand, threeImportsAreTakenBackTheLastOneFirst)
{
    std::vector<std::map<std::string, std::string>> states;
    for (const char* version : {"1", "2", "3", "4", "5"}) {
        import(version);
        states.push_back(library());
    }
    for (const int state : {3, 2, 1}) {
        const ProgramResult result = undo();
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_EQ(result.json(), (QJsonObject{{"library", text(rootPath("user/Kitchen.orvlib"))},
                                              {"textures", text(rootPath("textures/Kitchen.zip"))}}));
        EXPECT_EQ(library(), states[static_cast<std::size_t>(state)]);
    }
    const ProgramResult none = undo();
    EXPECT_EQ(none.status, 1);
    EXPECT_EQ(none.json(), (QJsonObject{{"library", QJsonValue()},
                                        {"textures", QJsonValue()},
                                        {"error", "there is no import to take back"}}));
    EXPECT_EQ(library(), states[1]);
    EXPECT_EQ(keptFiles(), 1U) << "the record";
}

TEST_F(UndoCommand, firstImportLeavesNothingBehind)
{
    mProgram.createRoot();
    import("1");
    EXPECT_EQ(undo().status, 0);
    EXPECT_TRUE(library().empty());
    EXPECT_EQ(undo().status, 1);
}

TEST_F(UndoCommand, importsOfSeveralLibrariesGoOneByOne)
{
    import("1", "Bath");
    import("1", "Kitchen");
    EXPECT_EQ(undo().json()["library"], text(rootPath("user/Kitchen.orvlib")));
    EXPECT_TRUE(fs::exists(rootPath("user/Bath.orvlib")));
    EXPECT_EQ(undo().json()["library"], text(rootPath("user/Bath.orvlib")));
    EXPECT_TRUE(library().empty());
}

TEST_F(UndoCommand, changesMadeAfterTheImportAreNotLost)
{
    import("1");
    import("2");
    mProgram.folder().write("root/user/Kitchen.orvlib", "edited by the user");
    const auto before = everything();
    const ProgramResult result = undo();
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, testing::HasSubstr("user/Kitchen.orvlib: was changed after the import"));
    EXPECT_EQ(everything(), before);
    fs::remove(rootPath("user/Kitchen.orvlib"));
    EXPECT_EQ(undo().status, 0);
    EXPECT_EQ(test::readFile(rootPath("user/Kitchen.orvlib")), test::sampleDatabase("1"));
}

TEST_F(UndoCommand, peopleAreToldWhatIsBackAndWhatIsGone)
{
    import("1");
    EXPECT_EQ(mProgram.run({"undo"}).out,
              "Took back the import of Kitchen.\nLibrary: " + rootPath("user/Kitchen.orvlib") +
                  " is gone again\nTextures: " + rootPath("textures/Kitchen.zip") + " is gone again\n");
}
