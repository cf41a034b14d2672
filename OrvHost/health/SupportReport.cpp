#include "OrvHost/health/SupportReport.h"

#include <algorithm>
#include <filesystem>

#include <QDateTime>
#include <QSysInfo>

#include "OrvHost/TextFile.h"
#include "OrvHost/health/Masking.h"
#include "OrvLibrary/OrvLibraryVersion.h"

namespace OrvHost {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kMostOfLog = 1000000;

std::string versions()
{
    return std::string("orv-library ") + ORVLIBRARY_VERSION_STRING + "\nQt " + qVersion() + "\n" +
           QSysInfo::prettyProductName().toStdString() + "\n" + QSysInfo::kernelType().toStdString() + " " +
           QSysInfo::kernelVersion().toStdString() + " " + QSysInfo::currentCpuArchitecture().toStdString() +
           "\n" + QDateTime::currentDateTimeUtc().toString(Qt::ISODate).toStdString() + "\n";
}

std::string examination(const std::vector<Doctor::Step>& steps)
{
    std::string text;
    for (const Doctor::Step& step : steps) {
        const char* const result = !step.ok ? "not tried" : *step.ok ? "good" : "FAILED";
        text +=
            step.name + ": " + result + ", " + std::to_string(step.milliseconds) + " ms: " + step.text + "\n";
        if (!step.advice.empty())
            text += "    " + step.advice + "\n";
    }
    return text;
}

/// The path and size of everything below the root.
std::string listing(const fs::path& root)
{
    std::vector<std::string> lines;
    std::error_code error;
    fs::recursive_directory_iterator entry(root, fs::directory_options::skip_permission_denied, error);
    for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error)) {
        std::error_code unreadable;
        const bool isFile = entry->is_regular_file(unreadable);
        lines.push_back(entry->path().lexically_relative(root).string() +
                        (isFile ? "  " + std::to_string(entry->file_size(unreadable)) : "/"));
    }
    std::sort(lines.begin(), lines.end());
    std::string text;
    for (const std::string& line : lines)
        text += line + "\n";
    return text;
}

/// The last lines of a file; empty if it cannot be read. The masking would not know a part of a line.
std::string endOf(const fileString& path)
try {
    const std::string text = TextFile::read(path);
    if (text.size() <= kMostOfLog)
        return text;
    const std::size_t lineBreak = text.find('\n', text.size() - kMostOfLog - 1);
    return lineBreak == std::string::npos ? std::string() : text.substr(lineBreak + 1);
} catch (const std::runtime_error&) {
    return {};
}

} // namespace

std::map<std::string, std::string> SupportReport::files(const fileString& root,
                                                        const std::vector<Doctor::Step>& steps)
{
    std::map<std::string, std::string> files{{"versions.txt", versions()},
                                             {"doctor.txt", examination(steps)},
                                             {"folders.txt", listing(root.toNativeString())}};
    for (const char* name : {"settings.json", "runs.json", "update-history.json", "last-check.json",
                             "catalog-pins.json", "user/errors.log"})
        files[fileString(name).stemWithExtension().toNativeString()] = endOf(root + fileString(name));
    for (auto file = files.begin(); file != files.end();) {
        file->second = Masking::withoutNames(file->second);
        file = file->second.empty() ? files.erase(file) : std::next(file);
    }
    return files;
}

} // namespace OrvHost
