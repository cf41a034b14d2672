#include "OrvLibrary/Manufacturer/Manufacturer.h"

#include <optional>

#include "tests/Manufacturer/ManufacturerFixture.h"
#include "tests/support/ClockSpan.h"

namespace {

using boost::posix_time::ptime;

const ptime kTime = Library::fromString("20261121T033512.250000");

Manufacturer sample()
{
    return Manufacturer("Ökö", "http://x", "1", "2", "logos/a.png", "3", true, false, kTime);
}

class ManufacturerRecord : public test::ManufacturerFixture
{
};

} // namespace

TEST_F(ManufacturerRecord, defaultIsEmptyAndChangedNow)
{
    std::optional<Manufacturer> made;
    const test::ClockSpan span = test::clockSpanOf([&] { made.emplace(); });
    const Manufacturer& record = *made;
    EXPECT_EQ(record.getManufacturerName(), "");
    EXPECT_EQ(record.getManufacturerUrl(), "");
    EXPECT_EQ(record.getManufacturerPhoneNumber(true), "");
    EXPECT_EQ(record.getManufacturerFaxNumber(true), "");
    EXPECT_EQ(record.getManufacturerEmail(true), "");
    EXPECT_TRUE(record.getManufacturerLogoName().empty());
    EXPECT_FALSE(record.isLocked());
    EXPECT_FALSE(record.isDeleted());
    EXPECT_GE(record.getLastModified(), span.before);
    EXPECT_LE(record.getLastModified(), span.after);
}

TEST_F(ManufacturerRecord, keepsWhatItIsMadeOf)
{
    const Manufacturer record("name", "url", "phone", "fax", "logo", "email", false, true, kTime);
    EXPECT_EQ(record.getManufacturerName(), "name");
    EXPECT_EQ(record.getManufacturerUrl(), "url");
    EXPECT_EQ(record.getManufacturerPhoneNumber(false), "phone");
    EXPECT_EQ(record.getManufacturerFaxNumber(false), "fax");
    EXPECT_EQ(record.getManufacturerLogoName().toNativeString(), "logo");
    EXPECT_EQ(record.getManufacturerEmail(false), "email");
    EXPECT_FALSE(record.isLocked());
    EXPECT_TRUE(record.isDeleted());
    EXPECT_EQ(record.getLastModified(), kTime);
}

TEST_F(ManufacturerRecord, copiesShareNoTime)
{
    const Manufacturer original = sample();
    Manufacturer copy(original);
    EXPECT_TRUE(copy == original);
    copy.setLastModified(Library::fromString("20300101T000000"));
    EXPECT_EQ(original.getLastModified(), kTime);
    EXPECT_FALSE(copy == original);
}

TEST_F(ManufacturerRecord, assignedRecordsShareNoTime)
{
    Manufacturer original = sample();
    Manufacturer assigned;
    assigned = original;
    EXPECT_TRUE(assigned == original);
    assigned.setLastModified(Library::fromString("20300101T000000"));
    EXPECT_EQ(original.getLastModified(), kTime);
    original = *&original;
    EXPECT_TRUE(original == sample());
    const Manufacturer deleted("", "", "", "", "", "", false, true, kTime);
    assigned = deleted;
    EXPECT_TRUE(assigned == deleted);
}

TEST_F(ManufacturerRecord, movedFromRecordStillHasATime)
{
    Manufacturer original = sample();
    const Manufacturer moved = std::move(original);
    EXPECT_TRUE(moved == sample());
    // A host may reuse a moved-from record, so it must still have a time of its own.
    original.setLastModified(Library::fromString("20300101T000000")); // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(original.getLastModified(), Library::fromString("20300101T000000"));
    EXPECT_EQ(moved.getLastModified(), kTime);
}

TEST_F(ManufacturerRecord, everyFieldTakesPartInEquality)
{
    const Manufacturer base("n", "u", "p", "f", "l", "e", false, false, kTime);
    const Manufacturer others[] = {
        Manufacturer("N", "u", "p", "f", "l", "e", false, false, kTime),
        Manufacturer("n", "U", "p", "f", "l", "e", false, false, kTime),
        Manufacturer("n", "u", "P", "f", "l", "e", false, false, kTime),
        Manufacturer("n", "u", "p", "F", "l", "e", false, false, kTime),
        Manufacturer("n", "u", "p", "f", "L", "e", false, false, kTime),
        Manufacturer("n", "u", "p", "f", "l", "E", false, false, kTime),
        Manufacturer("n", "u", "p", "f", "l", "e", true, false, kTime),
        Manufacturer("n", "u", "p", "f", "l", "e", false, true, kTime),
        Manufacturer("n", "u", "p", "f", "l", "e", false, false, kTime + boost::posix_time::milliseconds(1)),
        Manufacturer("n", "u", "p", "f", "l", "e", false, false, ptime()),
    };
    EXPECT_TRUE(base == Manufacturer("n", "u", "p", "f", "l", "e", false, false, kTime));
    for (const Manufacturer& other : others) {
        EXPECT_FALSE(base == other);
        EXPECT_TRUE(other == other);
    }
}

TEST_F(ManufacturerRecord, recordsWithoutATimeMayBeEqual)
{
    const Manufacturer one("n", "", "", "", "", "", false, false, ptime());
    const Manufacturer two("n", "", "", "", "", "", false, false, ptime());
    EXPECT_TRUE(one == two);
}

TEST_F(ManufacturerRecord, contactsAreDefaultedByTheExactMarkerOnly)
{
    for (const char* text : {"Default", "default ", "", "defaul", "defaults", "DEFAULT"}) {
        const Manufacturer record("", "", text, text, "", text, false, false, kTime);
        EXPECT_FALSE(record.isPhoneDefaulted() || record.isFaxDefaulted() || record.isEmailDefaulted());
        EXPECT_EQ(record.getManufacturerPhoneNumber(true), text);
        EXPECT_EQ(record.getManufacturerFaxNumber(true), text);
        EXPECT_EQ(record.getManufacturerEmail(true), text);
    }
}

TEST_F(ManufacturerRecord, contactsAreDefaultedOneByOne)
{
    Manufacturer record = sample();
    record.setFaxDefaulted();
    EXPECT_TRUE(!record.isPhoneDefaulted() && record.isFaxDefaulted() && !record.isEmailDefaulted());
    record.setPhoneDefaulted();
    EXPECT_TRUE(record.isPhoneDefaulted() && record.isFaxDefaulted() && !record.isEmailDefaulted());
    record.setEmailDefaulted();
    EXPECT_TRUE(record.isPhoneDefaulted() && record.isFaxDefaulted() && record.isEmailDefaulted());
    EXPECT_EQ(record.getManufacturerPhoneNumber(false), "default");
    EXPECT_EQ(record.getManufacturerFaxNumber(false), "default");
    EXPECT_EQ(record.getManufacturerEmail(false), "default");
}

TEST_F(ManufacturerRecord, defaultedContactIsTheManagersText)
{
    writeDataFile(R"({"Default_Text": "call us"})");
    const Manufacturer record("", "", "default", "default", "", "default", false, false, kTime);
    EXPECT_EQ(record.getManufacturerPhoneNumber(true), "call us") << "the manager is made for it";
    EXPECT_EQ(record.getManufacturerFaxNumber(true), "call us");
    EXPECT_EQ(record.getManufacturerEmail(true), "call us");
    std::map<long, Manufacturer> none;
    manager().saveModifiedManufacturers(none, "");
    EXPECT_EQ(record.getManufacturerEmail(true), "");
}

TEST_F(ManufacturerRecord, fullLogoNameIsWindows1252)
{
    const std::string folder = mHost.folder().path() + "/manufacturer-data/";
    const auto fullName = [](const std::string& logo) {
        return Manufacturer("", "", "", "", logo, "", false, false, kTime).getManufacturerFullLogoName();
    };
    EXPECT_EQ(fullName("a.png"), folder + "a.png");
    EXPECT_EQ(fullName("Möbel €.png"), folder + "M\xF6"
                                                "bel \x80.png");
    EXPECT_EQ(fullName(""), folder);
}
