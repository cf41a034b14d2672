#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "OrvLibrary/host/Application.h"
#include "OrvLibrary/host/FileSearch.h"
#include "OrvLibrary/host/MessagingSystem.h"
#include "OrvLibrary/host/ThreadMutex.h"

namespace test {

/// A message as the library sent it.
struct SentMessage
{
    int number = 0;
    error::Trait::Kind kind = error::Trait::Kind::ErrorMinimal;
    std::string text1;
    std::string text2;
    std::string text3;
};

bool operator==(const SentMessage& left, const SentMessage& right);
std::ostream& operator<<(std::ostream& stream, const SentMessage& message);

/// Records every message, including messages that a user sees only once. Thread-safe.
class RecordingMessagingSystem : public error::MessagingSystem
{
public:
    void notify(const char* sourceFile, int line, const error::Trait& trait, int messageNumber,
                const marl::unicode::String& text1, const marl::unicode::String& text2,
                const marl::unicode::String& text3) override;

    std::vector<SentMessage> messages() const;
    void clear();

private:
    mutable ThreadMutex mMutex;
    std::vector<SentMessage> mMessages;
};

/// Records the folders passed to `resetFileSearch`, in order. Thread-safe.
class RecordingFileSearch : public FileSearch
{
public:
    void resetFileSearch(const fileString& folder) override;

    std::vector<std::string> folders() const;
    void clear();

private:
    mutable ThreadMutex mMutex;
    std::vector<std::string> mFolders;
};

/// An application object with fixed names. Set them before other threads read them.
class TestApplication : public Application
{
public:
    std::string name() const override { return applicationName; }
    fileString contentIndexName() const override { return indexName; }

    std::string applicationName = "Orv Test";
    fileString indexName{"Orv_Core_Content_Index.txt"};
};

} // namespace test
