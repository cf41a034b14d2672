// A whole run of the updater against scripted replies. It must announce its end once, leave true hash files
// and only old or new files, and change nothing elsewhere. A further run against a sound service must repair
// everything. Input: lines of UpdateScript.h.
#include <algorithm>

#include <QCoreApplication>

#include "OrvLibrary/LibraryCatalogUpdater.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/SHA1.h"
#include "OrvLibrary/host/StringUtils.h"
#include "fuzz/ArchiveFacts.h"
#include "fuzz/FuzzSandbox.h"
#include "fuzz/UpdateServices.h"
#include "tests/support/SlotRecorder.h"

using fuzz::CleanService;
using fuzz::require;
using fuzz::Tree;
using LibraryCatalogUpdate::LibraryCatalogUpdater;

namespace {

const std::map<char, std::string> kFolders{{'1', "core/"}, {'2', "manufacturer/"}, {'4', "bonus/"}};

/// Prepares what the process needs once.
fuzz::MemoryPrefs& preparedPrefs()
{
    fuzz::Sandbox::get(); // installs other preferences
    static int argc = 1;
    static char name[] = "fuzz_Update";
    static char* argv[] = {name, nullptr};
    static QCoreApplication application(argc, argv);
    static fuzz::MemoryPrefs prefs;
    static PreferenceEngine engine(prefs);
    PreferenceEngine::install(&engine);
    return prefs;
}

/// Runs an update on this thread. Its posted events are delivered at its end, in order.
void run(test::SlotRecorder& recorder, Curl& service, bool isCoreOnly)
{
    const fuzz::Sandbox& sandbox = fuzz::Sandbox::get();
    Curl::install(&service);
    LibraryCatalogUpdater updater(
        recorder, {sandbox.file("core/Doors.orvlib")}, {sandbox.file("bonus/Bath.orvlib")},
        {sandbox.file("manufacturer/Oak.orvlib")}, "Orv", "7", "http://redirect.test/", isCoreOnly);
    updater();
    Curl::install(nullptr);
    QCoreApplication::sendPostedEvents(&recorder);
    require(recorder.closings() == 1, "a run is closed once");
}

std::string folderOf(const std::string& name)
{
    return name.substr(0, name.rfind('/') + 1);
}

/// The possible contents of catalogs: the databases in the archives among the bodies.
std::set<std::string> contentsOf(const std::set<std::string>& bodies)
{
    const fuzz::Sandbox& sandbox = fuzz::Sandbox::get();
    std::set<std::string> contents = bodies;
    for (const std::string& body : bodies) {
        const auto members = fuzz::judgeArchive(sandbox.write("body", body));
        for (const auto& member : members ? *members : std::vector<fuzz::JudgedMember>()) {
            if (member.content)
                contents.insert(*member.content);
        }
    }
    FileUtils::removePath(sandbox.file("body"));
    return contents;
}

bool isBookkeeping(const std::string& name)
{
    return name == "user/errors.log" || name.find("catalog_hash.txt") != std::string::npos;
}

/// Files that changed must be complete new files. Other new files may exist only in the download folders.
void checkFiles(const Tree& before, const Tree& after, const std::set<std::string>& bodies)
{
    const std::set<std::string> contents = contentsOf(bodies);
    const std::set<std::string> folders{"core/", "bonus/", "manufacturer/", "referenced/"};
    for (const auto& [name, content] : before)
        require(after.count(name) > 0, "nothing is lost");
    for (const auto& [name, content] : after) {
        const auto former = before.find(name);
        const bool isOld = former != before.end() && former->second == content;
        if (isOld || isBookkeeping(name) || name.rfind("temp/Orv Test.downloads.", 0) == 0)
            continue;
        require(folders.count(folderOf(name)) > 0, "new files lie directly in the folder of their kind");
        const bool isPacked = folderOf(name) == "referenced/";
        require(contents.count(content) > 0 ||
                    (isPacked && fuzz::judgeArchive(fuzz::Sandbox::get().file(name))),
                "a new file is whole");
    }
}

/// The tags that a line may have without a new download: those of the former hash files, and the hashes of
/// the files.
std::set<std::string> formerTags(const fuzz::UpdateScript& script, const Tree& before)
{
    std::set<std::string> tags;
    for (const auto& [category, text] : script.hashFiles) {
        for (const std::string& line : fuzz::linesOf(text)) {
            // A tag contains no colon, so the last colon ends the name.
            const std::size_t end = line.find_last_not_of(':') + 1;
            const std::size_t colon = line.substr(0, end).rfind(':');
            if (colon != std::string::npos)
                tags.insert(line.substr(colon + 1, end - colon - 1));
        }
    }
    const fuzz::Sandbox& sandbox = fuzz::Sandbox::get();
    for (const auto& [name, content] : before)
        tags.insert(SHA1::fileContentsToSHA1Hex(sandbox.file(name)));
    // An index may name files elsewhere; the run hashes these.
    for (const std::string& line : fuzz::linesOf(script.index)) {
        const std::string name = StringUtils::removeAllOf(line, "\r");
        tags.insert(SHA1::fileContentsToSHA1Hex(sandbox.file("core/" + name)));
        tags.insert(SHA1::fileContentsToSHA1Hex(sandbox.file("referenced/" + name)));
    }
    return tags;
}

/// A line consists of a name, a colon, and a known tag. A new tag requires that its file was delivered.
void checkLine(const std::string& line, const std::set<std::string>& former,
               const fuzz::CheckingService& service)
{
    for (std::size_t colon = line.find(':'); colon != std::string::npos; colon = line.find(':', colon + 1)) {
        const std::string tag = line.substr(colon + 1);
        const fileString name(line.substr(0, colon));
        const bool isDelivered =
            service.deliveredNames.count(name.stemWithExtension().toNativeString()) > 0 ||
            service.deliveredNames.count(name.stem().toNativeString() + ".orvlibz") > 0;
        if (!name.empty() && !tag.empty() &&
            (former.count(tag) > 0 || (service.tags.count(tag) > 0 && isDelivered)))
            return;
    }
    fuzz::fail("a line has the tag of an installed copy: " + line);
}

void checkHashFiles(const Tree& after, bool isCoreOnly, const std::set<std::string>& former,
                    const fuzz::CheckingService& service)
{
    for (const auto& [category, folder] : kFolders) {
        if (category != '1' && isCoreOnly)
            continue;
        const auto file = after.find(folder + "catalog_hash.txt");
        require(file != after.end(), "a run leaves the hash files of its categories");
        std::vector<std::string> lines = fuzz::linesOf(file->second);
        require(lines.back().empty(), "every line ends");
        lines.pop_back();
        for (const std::string& line : lines)
            checkLine(line, former, service);
    }
}

void checkClosing(const test::SlotRecorder& recorder, const fuzz::ScriptedService& service, bool isCoreOnly,
                  bool hadError)
{
    require(recorder.closingData().has_value() != service.isCancelled(), "a cancel closes in its own way");
    if (recorder.closingData()) {
        const auto& data = *recorder.closingData();
        const bool hasFailed = data.result < 2;
        require(data.result >= 0 && data.result <= 3 && (!hasFailed || data.result == (isCoreOnly ? 1 : 0)),
                "the result is one of the four");
        require(data.result != 3 || data.updatedCatalogs.empty(),
                "when all is current, nothing was installed");
        require(data.result != 2 || !data.updatedCatalogs.empty(), "an update names what it installed");
        require(!isCoreOnly || hadError == hasFailed, "the outcome of a core run is remembered");
    }
    for (const auto& [destination, newFile] : recorder.updatedFiles()) {
        const fuzz::Sandbox& sandbox = fuzz::Sandbox::get();
        const fileString folder = destination.parentPath();
        require(folder == sandbox.file("core") || folder == sandbox.file("bonus") ||
                    folder == sandbox.file("manufacturer"),
                "a catalog's destination lies directly in a category's folder");
        require(newFile.parentPath().parentPath() == sandbox.file("temp"),
                "a new catalog lies in a download folder");
    }
}

/// A run against a sound service must repair everything, and the run after it must change nothing.
void checkConvergence()
{
    const fuzz::Sandbox& sandbox = fuzz::Sandbox::get();
    test::SlotRecorder first;
    CleanService service;
    run(first, service, false);
    require(first.closingData() && first.closingData()->result == 2 &&
                first.closingData()->messageCode == LibraryCatalogUpdate::kMessageNone,
            "the next run goes well");
    const std::vector<std::pair<std::string, std::string>> installed{{"core/Doors.orvlib", "Doors.orvlib"},
                                                                     {"core/New.orvlib", "New.orvlib"},
                                                                     {"referenced/Tex.zip", "Tex.zip"}};
    for (const auto& [file, name] : installed)
        require(test::readFile(sandbox.file(file)) == CleanService::bodyOf(name),
                "core files are the service's");
    for (const auto& [folder, stem] : {std::pair("bonus/", "Bath"), std::pair("manufacturer/", "Oak")}) {
        const std::string content = test::readFile(sandbox.file(folder + std::string(stem) + ".orvlib"));
        require(content.rfind(stem + std::string(".orvlibz"), 0) == 0, "packed catalogs are the service's");
    }
    test::SlotRecorder second;
    CleanService again;
    run(second, again, false);
    require(second.closingData() && second.closingData()->result == 3 && again.bodies.empty(),
            "after that all is current");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text = fuzz::textOf(data, size);
    if (text.find("clean") != std::string::npos)
        return 0; // The input might contain a tag of the sound service.
    fuzz::UpdateScript script(text);
    fuzz::MemoryPrefs& prefs = preparedPrefs();
    prefs.setPref(PrefId::kExcludeCoreContent, script.isCoreExcluded);
    prefs.setPref(PrefId::kLastCoreUpdateHadError, true);

    fuzz::Sandbox& sandbox = fuzz::Sandbox::get();
    sandbox.reset();
    for (const char* name : {"core/Doors.orvlib", "bonus/Bath.orvlib", "manufacturer/Oak.orvlib"})
        sandbox.write(name, name);
    for (const auto& [category, lines] : script.hashFiles)
        sandbox.write(kFolders.at(category) + "catalog_hash.txt", lines);
    const Tree before = sandbox.tree();
    const std::set<std::string> former = formerTags(script, before);

    fuzz::ScriptedService service(script);
    test::SlotRecorder recorder;
    run(recorder, service, script.isCoreOnly);
    const Tree after = sandbox.tree();
    const bool hadError = PreferenceEngine::getThePrefs().getPrefAs<bool>(PrefId::kLastCoreUpdateHadError);
    checkClosing(recorder, service, script.isCoreOnly, hadError);
    checkFiles(before, after, service.bodies);
    checkHashFiles(after, script.isCoreOnly, former, service);
    prefs.setPref(PrefId::kExcludeCoreContent, false);
    checkConvergence();
    sandbox.requireOutsideUntouched();
    return 0;
}
