// Any text as a manufacturer file. Reading must give what the rules give for the tree of another JSON reader.
// The files that the manager writes must read as the same.
#include <map>

#include "OrvLibrary/Manufacturer/ManufacturerManager.h"
#include "OrvLibrary/host/StringUtils.h"
#include "OrvLibrary/host/TimeUtils.h"
#include "fuzz/FuzzSandbox.h"
#include "fuzz/JsonMembers.h"

using boost::posix_time::ptime;
using fuzz::lastMember;
using fuzz::require;
using fuzz::WrongType;
using Json = test::JsonOracle;

namespace {

using Table = std::map<long, Manufacturer>;

struct Reading
{
    bool isRead = false;
    Table table;
    ptime lastModified;
    std::string defaultText;
};

const ptime kFormerTime(boost::gregorian::date(2001, 2, 3));
const char kFormerText[] = "former";

std::string textMember(const Json::Value& object, const std::string& key)
{
    const Json::Value* found = lastMember(object, key, Json::Kind::Text);
    return found ? found->text : "";
}

bool flagMember(const Json::Value& object, const std::string& key)
{
    const Json::Value* found = lastMember(object, key, Json::Kind::Boolean);
    return found && found->boolean;
}

void addRecord(Table& table, const Json::Value& value)
{
    if (value.kind != Json::Kind::Object)
        throw WrongType();
    const Json::Value* id = lastMember(value, "Id", Json::Kind::Integer);
    if (!id)
        return;
    const Json::Value* time = lastMember(value, "Last_Modified", Json::Kind::Text);
    table[id->integer] =
        Manufacturer(textMember(value, "Name"), textMember(value, "Url"), textMember(value, "Phone"),
                     textMember(value, "Fax"), textMember(value, "Logo"), textMember(value, "Email"),
                     flagMember(value, "Lock"), flagMember(value, "Deleted"),
                     time ? Library::fromString(time->text) : ptime());
}

/// Applies the rules of reading to the other reader's tree.
/// @param now the time for a file without one
Reading expectedReading(const std::string& text, const ptime& now)
{
    const Json::Verdict verdict = Json::judge(text);
    Reading reading{false, {}, kFormerTime, kFormerText};
    if (!verdict.tree)
        return reading;
    try {
        const Json::Value* time = lastMember(*verdict.tree, "Last_Modified", Json::Kind::Text);
        reading.lastModified = time ? Library::fromString(time->text) : now;
        const Json::Value* defaultText = lastMember(*verdict.tree, "Default_Text", Json::Kind::Text);
        reading.defaultText = defaultText ? defaultText->text : StringUtils::loadString(10108);
        for (const auto& [key, value] : verdict.tree->members) {
            if (key == "Manufacturer")
                addRecord(reading.table, value);
        }
        reading.isRead = true;
        return reading;
    } catch (const WrongType&) {
        return {false, {}, ptime(boost::date_time::min_date_time), ""};
    }
}

Reading read(const fileString& file)
{
    Reading reading{false, {}, kFormerTime, kFormerText};
    reading.table[1] = Manufacturer();
    reading.isRead = ManufacturerManager::read_manufacturer_file(file, reading.table, &reading.lastModified,
                                                                 &reading.defaultText);
    return reading;
}

bool isBetween(const ptime& time, const ptime& earliest, const ptime& latest)
{
    return !time.is_special() && earliest <= time && time <= latest;
}

void checkReading(const Reading& found, const Reading& expected, const ptime& before)
{
    require(found.isRead == expected.isRead, "what can be read is read, and nothing else");
    require(found.table == expected.table, "the table is read by the rules");
    require(found.defaultText == expected.defaultText, "the default text is read by the rules");
    const bool isNow =
        expected.lastModified == before && isBetween(found.lastModified, before, Library::getTimeNow());
    require(isNow || found.lastModified == expected.lastModified, "the time is read by the rules");
}

/// The manager writes what it has loaded; reading that gives the same.
void checkWriting(const fileString& file, const Reading& loaded)
{
    ManufacturerManager& manager = *ManufacturerManager::getManufacturerManager();
    manager.loadManufacturers();
    const std::string defaultText = manager.getDefaultText();
    require(!loaded.isRead || defaultText == loaded.defaultText, "the manager has the file's default text");
    const ptime before = Library::getTimeNow();
    manager.write_manufacturer_file();
    const Reading again = read(file);
    require(again.isRead, "what was written can be read");
    require(again.table == loaded.table, "what was written has the same records");
    require(again.defaultText == defaultText, "what was written has the same default text");
    require(isBetween(again.lastModified, before, Library::getTimeNow()), "what was written has a new time");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const fuzz::Sandbox& sandbox = fuzz::Sandbox::get();
    const std::string text = fuzz::textOf(data, size);
    const fileString file = sandbox.write("manufacturer-data/manufacturer_data.json", text);
    const ptime before = Library::getTimeNow();
    const Reading found = read(file);
    checkReading(found, expectedReading(text, before), before);
    checkWriting(file, found);
    return 0;
}
