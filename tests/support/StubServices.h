#pragma once

#include <string>
#include <utility>

#include "OrvLibrary/host/Curl.h"
#include "OrvLibrary/host/StringTable.h"

namespace test {

/// A string table with one text for all numbers, installed until the destructor. The translation of a key is
/// the key.
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

/// A download service whose requests all fail, installed until the destructor. Tests override the operations
/// that they need.
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
