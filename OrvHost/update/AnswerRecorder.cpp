#include "OrvHost/update/AnswerRecorder.h"

namespace OrvHost {

namespace {

/// The value of "&library=" in a catalog's address; it stands there as it is, between two parameters.
std::string catalogOf(const std::string& url)
{
    const std::string before = "&library=", after = "&product=";
    const std::size_t begin = url.find(before);
    const std::size_t end = url.rfind(after);
    if (begin == std::string::npos || end == std::string::npos || end < begin + before.size())
        return {};
    return url.substr(begin + before.size(), end - begin - before.size());
}

} // namespace

bool AnswerRecorder::getURLHeader(const std::string& url, const std::vector<std::string>& headerLines,
                                  std::string& headerText, std::int64_t& status)
{
    const bool isAnswered = ForwardingCurl::getURLHeader(url, headerLines, headerText, status);
    const std::lock_guard<std::mutex> lock(mMutex);
    mAnswers[catalogOf(url)] = isAnswered ? status : 0;
    return isAnswered;
}

std::map<std::string, std::int64_t> AnswerRecorder::answers() const
{
    const std::lock_guard<std::mutex> lock(mMutex);
    return mAnswers;
}

} // namespace OrvHost
