// `news`: which items the updates changed in the catalogs.
#include <filesystem>

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>
#include <gmock/gmock.h>

#include "tests/orv-library/HistoryFixture.h"

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

using Items = std::map<int, std::string>;

class News : public test::HistoryFixture
{
protected:
    News() { service.offer("Textures.zip", std::string(3000, 't')); }

    /// A catalog database with items of these ids and names.
    std::string catalog(const Items& items) const
    {
        const std::string file = program.folder().file("made.orvlib").toNativeString();
        std::remove(file.c_str());
        {
            QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", "news-test");
            database.setDatabaseName(QString::fromStdString(file));
            EXPECT_TRUE(database.open());
            QSqlQuery query(database);
            EXPECT_TRUE(query.exec("CREATE TABLE item (id INTEGER PRIMARY KEY, name TEXT, style INTEGER)"));
            for (const auto& [id, name] : items) {
                query.prepare("INSERT INTO item VALUES (?, ?, ?)");
                query.addBindValue(id);
                query.addBindValue(QString::fromStdString(name.substr(0, name.find('/'))));
                query.addBindValue(static_cast<int>(name.size()));
                EXPECT_TRUE(query.exec()) << query.lastError().text().toStdString();
            }
            query.finish();
            database.close();
        }
        QSqlDatabase::removeDatabase("news-test");
        return test::readFile(file);
    }
    void updateItems(const Items& items)
    {
        service.offer("Doors.orvlib", catalog(items));
        update();
    }
    /// One text per catalog.
    std::vector<std::string> news(const std::vector<std::string>& more = {}) const
    {
        std::vector<std::string> arguments = {"--json", "news"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const test::ProgramResult result = program.run(arguments);
        EXPECT_EQ(0, result.status) << result.err;
        std::vector<std::string> texts;
        for (const QJsonValue& value : result.json()["catalogs"].toArray()) {
            const QJsonObject one = value.toObject();
            std::string text = one["name"].toString().toStdString();
            for (const char* list : {"added", "changed", "gone"}) {
                text += std::string(" ") + list;
                for (const QJsonValue& item : one[list].toArray())
                    text += " " + std::to_string(item.toObject()["id"].toInt()) + "=" +
                            item.toObject()["name"].toString().toStdString();
            }
            texts.push_back(text);
        }
        return texts;
    }
};

} // namespace

TEST_F(News, theLastUpdateThatChangedSomethingIsTold)
{
    updateItems({{1, "Oak"}, {2, "Ash"}});
    EXPECT_THAT(news(), ElementsAre("Doors.orvlib added 1=Oak 2=Ash changed gone"));
    updateItems({{2, "Ash/other"}, {3, "Elm"}, {4, "Fir"}});
    const std::string last = "Doors.orvlib added 3=Elm 4=Fir changed 2=Ash gone 1=Oak";
    EXPECT_THAT(news(), ElementsAre(last));
    update(); // without changes
    EXPECT_THAT(news(), ElementsAre(last));
    EXPECT_EQ("core/Doors.orvlib\n  + Elm\n  + Fir\n  * Ash\n  - Oak\n", program.run({"news"}).out);
}

TEST_F(News, freshRootHasNoNews)
{
    program.createRoot();
    EXPECT_EQ("Nothing is new.\n", program.run({"news"}).out);
    EXPECT_TRUE(program.run({"--json", "news"}).json()["catalogs"].toArray().isEmpty());
    const test::ProgramResult unknown = program.run({"--json", "news", "--since", "7"});
    EXPECT_EQ(1, unknown.status);
    EXPECT_THAT(unknown.err, HasSubstr("no run has the number 7"));
    EXPECT_EQ(2, program.run({"news", "--since", "yesterday"}).status);
    EXPECT_EQ(2, program.run({"news", "--since", "-1"}).status);
}

TEST_F(News, sinceARunEachItemIsToldOnce)
{
    updateItems({{1, "Oak"}, {2, "Ash"}, {3, "Elm"}});
    updateItems({{1, "Oak"}, {2, "Ash/2"}, {4, "Fir"}, {5, "Yew"}});
    updateItems({{1, "Oak/2"}, {2, "Ash/33"}, {3, "Elm/2"}, {5, "Yew/2"}});
    EXPECT_THAT(news({"--since", "1"}),
                ElementsAre("Doors.orvlib added 5=Yew changed 1=Oak 2=Ash 3=Elm gone"));
    EXPECT_THAT(news({"--since", "2"}),
                ElementsAre("Doors.orvlib added 3=Elm changed 1=Oak 2=Ash 5=Yew gone 4=Fir"));
    EXPECT_THAT(news({"--since", "3"}), testing::IsEmpty());
}

TEST_F(News, listOfRunsThatWasRemovedTakesNoNewsAlong)
{
    updateItems({{1, "Oak"}});
    update();
    updateItems({{1, "Oak"}, {2, "Ash"}});
    ASSERT_TRUE(std::filesystem::remove(program.root() + "/runs.json"));
    updateItems({{1, "Oak"}, {2, "Ash"}, {3, "Elm"}});
    EXPECT_EQ(4, program.run({"--json", "runs"}).json()["runs"].toArray()[0].toObject()["number"].toInt());
    EXPECT_THAT(news({"--since", "3"}), ElementsAre("Doors.orvlib added 3=Elm changed gone"));
    EXPECT_THAT(news({"--since", "1"}), ElementsAre("Doors.orvlib added 2=Ash 3=Elm changed gone"));
}

TEST_F(News, filesThatAreNoDatabasesHaveNoNews)
{
    updateTo('a');
    updateTo('b');
    EXPECT_THAT(news(), testing::IsEmpty());
}
