#pragma once

#include <string>
#include <utility>

#include "OrvLibrary/host/Curl.h"
#include "OrvLibrary/host/StringTable.h"

namespace test {

/// Answers every number with one text for the life of a block; a translation is its key.
class OneText : public StringTable
{
public:
    explicit OneText(std::string text) : mText(std::move(text)), mFormer(install(this)) {}
    ~OneText() override { install(mFormer); }
    OneText(const OneText&) = delete;
    OneText& operator=(const OneText&) = delete;

    std::string text(std::uint32_t) const override { return mText; }
    std::string translation(const std::string& key) const override { return key; }

private:
    std::string mText;
    StringTable* mFormer;
};

/// A download service that gets nothing for the life of a block. A test overrides what it asks for.
class DeadCurl : public Curl
{
public:
    DeadCurl() : mFormer(install(this)) {}
    ~DeadCurl() override { install(mFormer); }
    DeadCurl(const DeadCurl&) = delete;
    DeadCurl& operator=(const DeadCurl&) = delete;

    bool downloadable(const std::string&) override { return false; }
    fileString download(const std::string&) override { return {}; }
    bool download_to_location(const std::string&, const fileString&, std::string&) override { return false; }
    bool download_to_location(const std::string&, const fileString&, const std::vector<std::string>&, void*,
                              ProgressFunction, std::string&, int&) override
    {
        return false;
    }
    bool getURLHeader(const std::string&, const std::vector<std::string>&, std::string&,
                      std::int64_t&) override
    {
        return false;
    }
    bool browseURL(const std::string&, const std::vector<std::string>&, std::string&, bool, int) override
    {
        return false;
    }

private:
    Curl* mFormer;
};

} // namespace test
