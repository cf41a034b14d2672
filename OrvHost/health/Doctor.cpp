// How it works: each step is a function that returns a text and, after a failure, an advice. `take` measures
// the step, turns an exception into a failure, and skips the step if one that it needs has failed. This file
// has the steps on this machine; those on the network are in DoctorNetwork.cpp.
#include "OrvHost/health/Doctor.h"

#include <algorithm>
#include <chrono>
#include <filesystem>

#include <unistd.h>

#include "OrvHost/health/Masking.h"
#include "OrvHost/update/HostLock.h"
#include "OrvLibrary/host/Curl.h"

namespace OrvHost {

namespace fs = std::filesystem;

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::uintmax_t kReserve = 256 * 1024 * 1024;

const char* const kFolders[] = {"user",       "core",     "bonus", "manufacturer", "manufacturer-data",
                                "referenced", "textures", "temp"};

/// The path, or the nearest folder above it that exists.
fs::path existing(fs::path path)
{
    std::error_code error;
    while (!fs::exists(path, error) && path.has_relative_path())
        path = path.parent_path();
    return path;
}

std::string shown(const std::string& address)
{
    return Masking::withoutSecrets(address);
}

} // namespace

std::vector<Doctor::Step> Doctor::examine()
{
    mSteps.clear();
    take("settings", true, [this] { return settings(); });
    take("folders", true, [this] { return folders(); });
    take("space", true, [this] { return space(); });
    take("locks", true, [this] { return locks(); });
    take("proxy", isGood("settings"), [this] { return proxy(); });
    take("name", isGood("proxy"), [this] { return name(); });
    take("connection", isGood("name"), [this] { return connection(); });
    take("certificate", isGood("connection"), [this] { return certificate(); });
    take("redirect", isGood("certificate"), [this] { return redirect(); });
    take("index", isGood("redirect"), [this] { return index(); });
    take("header", isGood("index"), [this] { return header(); });
    take("body", isGood("header"), [this] { return body(); });
    return mSteps;
}

void Doctor::take(const char* name, bool canBeTried, const std::function<Finding()>& look)
{
    Step step;
    step.name = name;
    if (!canBeTried) {
        step.text = "not tried";
        mSteps.push_back(step);
        return;
    }
    const Clock::time_point start = Clock::now();
    Finding finding;
    try {
        finding = look();
    } catch (const std::exception& error) {
        finding = {error.what(), "Correct what the text names, and try again."};
    }
    step.milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
    step.ok = finding.advice.empty();
    step.text = shown(finding.text);
    step.advice = finding.advice;
    mSteps.push_back(step);
}

bool Doctor::isGood(const char* name) const
{
    return std::any_of(mSteps.begin(), mSteps.end(),
                       [name](const Step& step) { return step.name == name && step.ok.value_or(false); });
}

Doctor::Finding Doctor::settings() const
{
    if (!mSubject.settingsProblem.empty())
        return {mSubject.settingsProblem, "Correct the file at that place, or remove it."};
    if (mSubject.values.url.empty())
        return {"no address of a catalog service is set",
                "Set it with 'orv-library settings set url ADDRESS', or give --url."};
    if (!Curl::get().downloadable(mSubject.values.url))
        return {"'" + mSubject.values.url + "' is no http or https address",
                "Set the address that the publisher gave you."};
    return {"address " + mSubject.values.url, {}};
}

Doctor::Finding Doctor::folders() const
{
    const fs::path root(mSubject.root.toNativeString());
    std::error_code error;
    if (!fs::is_directory(root, error))
        return {root.string() + ": there is no library", "Run 'orv-library update' to make one."};
    for (const char* name : kFolders) {
        const fs::path folder = root / name;
        if (fs::exists(folder, error) && !fs::is_directory(folder, error))
            return {folder.string() + ": is no folder", "Move the file of that name away."};
        const fs::path checked = fs::exists(folder, error) ? folder : root;
        if (access(checked.c_str(), R_OK | W_OK | X_OK) != 0)
            return {checked.string() + ": cannot be written",
                    "Give your user the right to write there, for example with 'chmod u+rwx'."};
    }
    return {root.string() + " can be read and written", {}};
}

Doctor::Finding Doctor::space() const
{
    const fs::space_info found = fs::space(existing(mSubject.root.toNativeString()));
    const std::string text = std::to_string(found.available / 1000000) + " MB free";
    // The download service leaves the smaller of the two free; the user may want more.
    const auto wanted = static_cast<std::uintmax_t>(mSubject.values.diskReserve);
    if (found.available < std::max(wanted, std::min<std::uintmax_t>(kReserve, found.capacity / 20)))
        return {text, "Make room on the disk; downloads leave a reserve free and stop before it."};
    return {text, {}};
}

Doctor::Finding Doctor::locks()
{
    const fileString lock = HostLock::ofRunningUpdate();
    if (!lock.empty())
        return {"an update is running: " + lock.toNativeString() + " is locked",
                "Wait until it has ended, or cancel it."};
    return {"no update is running", {}};
}

} // namespace OrvHost
