#include "tests/support/RecordingServices.h"

#include <ostream>
#include <tuple>

namespace test {

bool operator==(const SentMessage& left, const SentMessage& right)
{
    return std::tie(left.number, left.kind, left.text1, left.text2, left.text3) ==
           std::tie(right.number, right.kind, right.text1, right.text2, right.text3);
}

std::ostream& operator<<(std::ostream& stream, const SentMessage& message)
{
    return stream << message.number << " (" << static_cast<int>(message.kind) << ") \"" << message.text1
                  << "\", \"" << message.text2 << "\", \"" << message.text3 << '"';
}

void RecordingMessagingSystem::notify(const char*, int, const error::Trait& trait, int messageNumber,
                                      const marl::unicode::String& text1, const marl::unicode::String& text2,
                                      const marl::unicode::String& text3)
{
    const ThreadLockGuard<ThreadMutex> lock(mMutex);
    mMessages.push_back(
        {messageNumber, trait.kind(), text1.toUTF8String(), text2.toUTF8String(), text3.toUTF8String()});
}

std::vector<SentMessage> RecordingMessagingSystem::messages() const
{
    const ThreadLockGuard<ThreadMutex> lock(mMutex);
    return mMessages;
}

void RecordingMessagingSystem::clear()
{
    const ThreadLockGuard<ThreadMutex> lock(mMutex);
    mMessages.clear();
}

void RecordingFileSearch::resetFileSearch(const fileString& folder)
{
    const ThreadLockGuard<ThreadMutex> lock(mMutex);
    mFolders.push_back(folder.toNativeString());
}

std::vector<std::string> RecordingFileSearch::folders() const
{
    const ThreadLockGuard<ThreadMutex> lock(mMutex);
    return mFolders;
}

void RecordingFileSearch::clear()
{
    const ThreadLockGuard<ThreadMutex> lock(mMutex);
    mFolders.clear();
}

} // namespace test
