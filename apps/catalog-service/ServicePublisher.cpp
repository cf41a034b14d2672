// How it works: `publish` lists the source's files, refuses those that clients could not use, and hashes the
// rest. It then writes a blob for each new content, and the maps last, because a map makes its names visible.
// A refused name keeps its line from the former map, and so its former content.
#include "apps/catalog-service/ServicePublisher.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include <QFile>
#include <QRegularExpression>
#include <QString>

#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/SHA1.h"
#include "apps/catalog-service/ServiceMap.h"

namespace fs = std::filesystem;

namespace {

const char* const kManufacturerFile = "manufacturer_data.json";
const char* const kIndexEnding = "_Core_Content_Index.txt";
constexpr std::int64_t kSmallestCountedFile =
    1000; // clients count whole kilobytes and download nothing for a sum of 0

bool endsWith(const std::string& text, const std::string& ending)
{
    return text.size() >= ending.size() &&
           text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
}

bool isCatalog(const std::string& name)
{
    return endsWith(name, ".orvlib") || endsWith(name, ".orvlibz") || endsWith(name, ".zip");
}

QByteArray contentOf(const std::string& path)
{
    QFile file(QFile::decodeName(path.c_str()));
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error(path + ": " + file.errorString().toStdString());
    return file.readAll();
}

bool isUtf8(const std::string& name)
{
    return QString::fromUtf8(name.c_str()).toUtf8().toStdString() == name;
}

/// A character in the name that prevents requests for it: it would end the parameter, or the name in a hash
/// file.
std::string unusableCharacter(const std::string& name)
{
    for (unsigned char c : name) {
        if (c < 0x20 || c == 0x7F)
            return "a control character";
        if (std::string(":&#+%").find(char(c)) != std::string::npos)
            return std::string("\"") + char(c) + "\"";
    }
    return {};
}

/// Why clients could not use an index; empty if they can.
std::string indexRefusal(const QByteArray& index)
{
    const QByteArray text = index.startsWith("\xef\xbb\xbf") ? index.mid(3) : index;
    if (text.trimmed().startsWith('<'))
        return "begins with \"<\"; clients would take it for a web page";
    for (QByteArray line : index.split('\n')) {
        line.replace('\r', "");
        if (line.endsWith(".orvlibz"))
            return "lists \"" + line.toStdString() + "\"; a packed archive is no core content";
    }
    return {};
}

/// The first manufacturer id that does not fit into 32 bits. Clients cannot read a file with such an id.
std::string oversizedId(const QByteArray& json)
{
    static const QRegularExpression id(QStringLiteral("\"Id\"\\s*:\\s*([+-]?\\d+)"));
    auto matches = id.globalMatch(QString::fromUtf8(json));
    while (matches.hasNext()) {
        const QString number = matches.next().captured(1);
        bool fits = false;
        number.toInt(&fits);
        if (!fits)
            return number.toStdString();
    }
    return {};
}

} // namespace

ServicePublisher::ServicePublisher(std::string source, std::string target)
    : mSource(std::move(source)), mTarget(std::move(target))
{
}

bool ServicePublisher::publish(std::string& reason)
{
    try {
        const std::string maps = mTarget + "/catalog.d/";
        const Map formerNames = ServiceMap::read(maps + "names.map");
        const Map formerLogos = ServiceMap::read(maps + "logos.map");

        Files names = filesIn(mSource + "/content");
        Files logos;
        if (FileUtils::pathExists(fileString(mSource + "/manufacturers")))
            logos = filesIn(mSource + "/manufacturers");
        const auto data = logos.find(kManufacturerFile);
        if (data != logos.end())
            names.insert(logos.extract(data));
        for (Files* files : {&names, &logos}) {
            refuseNames(*files);
            refuseLetterCaseTwins(*files);
            refuseContents(*files);
        }
        mNames = hashesOf(names);
        mLogos = hashesOf(logos);
        refuseSmallChanges(names, formerNames);

        prepareFolders();
        writeBlobs(names, mNames);
        writeBlobs(logos, mLogos);
        mPublishedCount = mNames.size() + mLogos.size();
        keepFormer(mNames, formerNames);
        keepFormer(mLogos, formerLogos);
        ServiceMap::write(maps + "logos.map", mLogos, true);
        ServiceMap::write(maps + "names.map", mNames, false);
        return true;
    } catch (const std::exception& error) {
        reason = error.what();
        return false;
    }
}

ServicePublisher::Files ServicePublisher::filesIn(const std::string& folder) const
{
    std::error_code failure;
    if (!fs::is_directory(folder, failure))
        throw std::runtime_error(folder + ": no such folder");
    Files files;
    fs::directory_iterator entry(folder, failure);
    for (; !failure && entry != fs::directory_iterator(); entry.increment(failure)) {
        const std::string name = entry->path().filename().native();
        std::error_code unreadable;
        if (name.front() != '.' && entry->is_regular_file(unreadable))
            files[name] = entry->path().native();
    }
    if (failure)
        throw std::runtime_error(folder + ": " + failure.message());
    return files;
}

void ServicePublisher::refuse(Files& files, const std::string& name, const std::string& why)
{
    files.erase(name);
    mRefusals.push_back({name, why});
}

void ServicePublisher::refuseNames(Files& files)
{
    for (const auto& [name, path] : Files(files)) {
        if (!isUtf8(name)) {
            refuse(files, name, "the name is not UTF-8");
            continue;
        }
        const std::string character = unusableCharacter(name);
        if (!character.empty())
            refuse(files, name, "the name holds " + character + ", which a client's request cannot carry");
    }
}

void ServicePublisher::refuseLetterCaseTwins(Files& files)
{
    std::map<QString, std::vector<std::string>> twins;
    for (const auto& [name, path] : files)
        twins[QString::fromUtf8(name.c_str()).toCaseFolded()].push_back(name);
    for (const auto& [folded, names] : twins)
        for (std::size_t i = 0; names.size() > 1 && i < names.size(); ++i)
            refuse(files, names[i], "differs from \"" + names[i == 0 ? 1 : 0] + "\" in letter case only");
}

void ServicePublisher::refuseContents(Files& files)
{
    for (const auto& [name, path] : Files(files)) {
        if (FileUtils::fileSize(fileString(path)) < 1)
            refuse(files, name, "is empty; a client that fetched it would stop its update there");
        else if (endsWith(name, kIndexEnding)) {
            const std::string reason = indexRefusal(contentOf(path));
            if (!reason.empty())
                refuse(files, name, reason);
        } else if (name == kManufacturerFile) {
            const std::string id = oversizedId(contentOf(path));
            if (!id.empty())
                refuse(files, name, "holds the id " + id + ", which does not fit into 32 bits");
        }
    }
}

void ServicePublisher::refuseSmallChanges(Files& files, const Map& former)
{
    std::vector<std::string> changed;
    for (const auto& [name, hash] : mNames) {
        const auto before = former.find(name);
        if (isCatalog(name) && (before == former.end() || before->second != hash))
            changed.push_back(name);
    }
    const auto isSmall = [&](const std::string& name) {
        return FileUtils::fileSize(fileString(files.at(name))) < kSmallestCountedFile;
    };
    if (!std::all_of(changed.begin(), changed.end(), isSmall))
        return;
    for (const std::string& name : changed) {
        refuse(files, name, "every changed file is under 1,000 bytes; clients would fetch none of them");
        mNames.erase(name);
    }
}

void ServicePublisher::prepareFolders() const
{
    for (const char* folder : {"/blobs", "/catalog.d", "/run"})
        if (!FileUtils::createDirectoriesWithPerm(fileString(mTarget + folder), false))
            throw std::runtime_error(mTarget + folder + ": cannot be created");
}

ServicePublisher::Map ServicePublisher::hashesOf(const Files& files) const
{
    Map hashes;
    for (const auto& [name, path] : files) {
        hashes[name] = SHA1::fileContentsToSHA1Hex(fileString(path));
        if (hashes[name].empty())
            throw std::runtime_error(path + ": cannot be read");
    }
    return hashes;
}

void ServicePublisher::writeBlobs(const Files& files, const Map& hashes) const
{
    for (const auto& [name, path] : files) {
        const fileString blob(mTarget + "/blobs/" + hashes.at(name));
        if (FileUtils::fileSize(blob) == FileUtils::fileSize(fileString(path)))
            continue; // a blob of another size was damaged and is written again
        if (!FileUtils::copyFile(fileString(path), blob, true))
            throw std::runtime_error(blob.toNativeString() + ": cannot be written");
        FileUtils::setFilePermission(blob);
        if (SHA1::fileContentsToSHA1Hex(blob) != hashes.at(name)) { // the source has changed meanwhile
            FileUtils::removePath(blob);
            throw std::runtime_error(path + ": changed while it was published");
        }
    }
}

void ServicePublisher::keepFormer(Map& map, const Map& former) const
{
    for (const Refusal& refusal : mRefusals) {
        const auto before = former.find(refusal.name);
        if (before != former.end())
            map.insert(*before);
    }
}
