#pragma once

#include <QJsonArray>
#include <gtest/gtest.h>

#include "tests/orv-library/Program.h"
#include "tests/support/ArchiveBuilder.h"
#include "tests/support/ContentService.h"

namespace test {

inline std::string zip(const std::string& name, const std::string& content)
{
    ArchiveBuilder builder;
    builder.add(name, content);
    return builder.bytes();
}

inline std::string packed(const std::string& catalog, const std::string& picture)
{
    ArchiveBuilder builder;
    builder.add("Garden.orvlib", catalog).method = ArchiveMember::kStored;
    builder.add("oak.png", picture).method = ArchiveMember::kStored;
    return builder.bytes();
}

/// A root that is updated from a service whose content changes.
class HistoryFixture : public testing::Test
{
protected:
    HistoryFixture() { service.offer("Orv_Core_Content_Index.txt", "Doors.orvlib\nTextures.zip\n"); }

    void update(const std::vector<std::string>& more = {}) const
    {
        std::vector<std::string> arguments = {"--json",
                                              "update",
                                              "--url",
                                              service.redirect(),
                                              "--product",
                                              "Orv",
                                              "--product-version",
                                              "7",
                                              "--no-database-check"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const ProgramResult result = program.run(arguments);
        EXPECT_EQ(0, result.status) << result.err;
    }
    QJsonObject history(const std::string& name) const
    {
        const ProgramResult result = program.run({"--json", "history", name});
        EXPECT_EQ(0, result.status) << result.err;
        return result.json();
    }
    std::vector<std::string> versions(const std::string& name) const
    {
        std::vector<std::string> list;
        for (const QJsonValue& value : history(name)["versions"].toArray())
            list.push_back(value.toObject()["version"].toString().toStdString());
        return list;
    }

    std::string content(const std::string& name) const { return readFile(program.root() + "/" + name); }
    /// Puts one core catalog and one archive of 3,000 bytes each on the service, and updates.
    void updateTo(char letter)
    {
        service.offer("Doors.orvlib", std::string(3000, letter));
        service.offer("Textures.zip", std::string(3000, letter));
        update();
    }
    static std::string tagOf(char letter) { return ContentService::sha1(std::string(3000, letter)); }

    Program program;
    ContentService service;
};

} // namespace test
