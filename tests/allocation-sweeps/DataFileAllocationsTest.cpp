// Failing allocations in filters, manufacturers, JSON, hash files, preferences and the error log.
#include <optional>

#include <boost/date_time/posix_time/posix_time.hpp>
#include <gtest/gtest.h>

#include "OrvLibrary/IO/ErrorLog.h"
#include "OrvLibrary/LibraryFilterManager.h"
#include "OrvLibrary/Manufacturer/ManufacturerManager.h"
#include "OrvLibrary/catalog/CatalogHashFile_p.h"
#include "OrvLibrary/catalog/CatalogHashesAhead_p.h"
#include "OrvLibrary/host/SHA1.h"
#include "OrvLibrary/host/TimeUtils.h"
#include "OrvLibrary/json/json_file.h"
#include "OrvLibrary/json/json_writer.h"
#include "tests/allocation-sweeps/AllocationPlan.h"
#include "tests/allocation-sweeps/AllocationScenario.h"

using test::AllocationPlan;
using test::AllocationScenario;
using test::CountedAllocations;

namespace {

const char kFilterFile[] = "core/catalog_filters.json";
const char kOtherFile[] = "user/other_filters.json";
const char kManufacturerFile[] = "manufacturer-data/manufacturer_data.json";

std::string filterText(int id, const std::string& name)
{
    return R"({"Current_Filter": )" + std::to_string(id) + R"(, "Filter": {"Filter_Name": ")" + name +
           R"( with a name that needs memory", "Filter_Id": )" + std::to_string(id) +
           R"(, "Database_Ids": ["a database of some length", "b"]}})";
}

LibraryFilterManager& filters()
{
    return LibraryFilterManager::getLibraryFilterManager();
}

class SaveFilters : public AllocationScenario
{
public:
    using AllocationScenario::AllocationScenario;

    void prepare() override { host().folder().write(kFilterFile, filterText(3, "Old")); }
    void act() override
    {
        filters().setLibraryFilters({LibraryFilter("A new filter of the user's", 4, {"one", "two"}),
                                     LibraryFilter("Another new one of the user's", 5, {})});
        filters().setCurrentFilterId(5);
        const CountedAllocations counted;
        filters().saveFilters();
    }
};

class LoadFilters : public AllocationScenario
{
public:
    using AllocationScenario::AllocationScenario;

    void prepare() override { host().folder().write(kFilterFile, filterText(3, "Old")); }
    void act() override
    {
        const CountedAllocations counted;
        filters().loadFilters();
    }
};

class MergeFilters : public AllocationScenario
{
public:
    using AllocationScenario::AllocationScenario;

    void prepare() override { host().folder().write(kOtherFile, filterText(3, "Other")); }
    void act() override
    {
        filters().setLibraryFilters({LibraryFilter("A filter of the user's own", 3, {"one", "two"})});
        const fileString other = host().folder().file(kOtherFile);
        const CountedAllocations counted;
        filters().mergeFilters(other);
    }
};

class SaveManufacturers : public AllocationScenario
{
public:
    using AllocationScenario::AllocationScenario;

    void prepare() override { host().folder().write(kManufacturerFile, R"({"Default_Text": "old"})"); }
    void act() override
    {
        ManufacturerManager::cleanup();
        ManufacturerManager& manager = *ManufacturerManager::getManufacturerManager();
        std::map<long, Manufacturer> records;
        records[7] =
            Manufacturer("A maker of doors and windows", "https://maker.example/with/a/path", "1", "2",
                         "logo.png", "default", false, false, Library::fromString("20260102T030405"));
        const CountedAllocations counted;
        manager.saveModifiedManufacturers(records, "the new default text of all makers");
    }
    bool mayThrow() const override { return true; } // the caller's table is copied
};

class LoadManufacturers : public AllocationScenario
{
public:
    using AllocationScenario::AllocationScenario;

    void prepare() override
    {
        host().folder().write(kManufacturerFile,
                              R"({"Last_Modified": "20260101T000000", "Default_Text": "a text for all makers",
                                  "Manufacturer": {"Id": 1, "Name": "A maker of doors and windows"}})");
    }
    void act() override
    {
        ManufacturerManager::cleanup();
        const CountedAllocations counted;
        ManufacturerManager::getManufacturerManager();
    }
    bool mayThrow() const override { return true; } // creating the instance may fail
};

class JsonRoundTrip : public AllocationScenario
{
public:
    using AllocationScenario::AllocationScenario;

    void prepare() override
    {
        host().folder().write("user/in.json",
                              R"({"a": [1, 2.5, true, null, "text \u00fc"], "b": {"c": []}})");
        host().folder().write("user/out.json", "{}");
    }
    void act() override
    {
        const CountedAllocations counted;
        const auto root = json::readFile(host().folder().file("user/in.json"));
        json_writer::Object object;
        object.add_element<int>("size", static_cast<int>(boost::any_cast<const json::object&>(*root).size()));
        json_writer::write_file(host().folder().file("user/out.json").toNativeString(), object);
    }
    bool mayThrow() const override { return true; }
};

class HashFiles : public AllocationScenario
{
public:
    using AllocationScenario::AllocationScenario;

    void prepare() override
    {
        host().folder().write("core/Doors and windows of all kinds.orvlib", "doors");
        host().folder().write("core/catalog_hash.txt",
                              "Doors and windows of all kinds.orvlib:old tag of it\n");
    }
    void act() override
    {
        const CountedAllocations counted;
        LibraryCatalogUpdate::CatalogMap catalogs;
        LibraryCatalogUpdate::readCatalogHashMap(catalogs, Library::kCoreLibrary);
        for (auto& [name, record] : catalogs) {
            record.installed = true;
            record.serverETag = "the new tag of the installed catalog";
        }
        LibraryCatalogUpdate::saveCatalogHashMap(catalogs, Library::kCoreLibrary);
    }
    bool mayThrow() const override { return true; } // the run catches it
};

class HashesAhead : public AllocationScenario
{
public:
    using AllocationScenario::AllocationScenario;

    void prepare() override
    {
        for (const std::string& name : kNames)
            host().folder().write(name, "the content of " + name);
    }
    void act() override
    {
        std::vector<fileString> files;
        std::vector<std::string> expected;
        for (const std::string& name : kNames) {
            files.push_back(host().folder().file(name));
            expected.push_back(SHA1::fileContentsToSHA1Hex(files.back()));
        }
        const CountedAllocations counted;
        LibraryCatalogUpdate::CatalogHashesAhead hashes(files);
        beforeAsking();
        for (std::size_t i = 0; i < files.size(); ++i)
            EXPECT_EQ(hashes.hashOf(files[i]), expected[i]);
    }
    bool mayThrow() const override { return true; } // the run catches it

protected:
    virtual void beforeAsking() {}

private:
    const std::vector<std::string> kNames{"core/1.orvlib", "core/2.orvlib", "core/3.orvlib", "core/4.orvlib"};
};

class HashesInAdvance : public HashesAhead
{
public:
    using HashesAhead::HashesAhead;

    bool hasHelpers() const override { return true; }

protected:
    void beforeAsking() override { AllocationPlan::waitForHelpers(); }
};

class Preferences : public AllocationScenario
{
public:
    using AllocationScenario::AllocationScenario;

    void prepare() override { host().prefs().setPrefAs<bool>(PrefId::kLastCoreUpdateHadError, false); }
    void act() override
    {
        const CountedAllocations counted;
        host().prefs().setPrefAs<bool>(PrefId::kLastCoreUpdateHadError, true);
        host().prefs().getPrefAs<bool>(PrefId::kExcludeCoreContent);
    }
    bool mayThrow() const override { return true; } // it is a host service
};

/// The log is written in place and is not part of the compared tree. The test only checks that no failure
/// escapes it.
class LogEntry : public AllocationScenario
{
public:
    using AllocationScenario::AllocationScenario;

    void act() override
    {
        Library::ErrorLog log;
        log << "an entry that is long enough to need some memory of its own\n";
        const CountedAllocations counted;
        Library::ErrorLog() << "another entry, made without memory, with a number " << 5UL << "\n";
    }
    bool mayThrow() const override { return true; } // while the text is composed
};

class DataFileAllocations : public testing::Test
{
protected:
    ~DataFileAllocations() override { ManufacturerManager::cleanup(); }

    template <class Scenario>
    void sweep()
    {
        Scenario(mHost).sweep();
    }

    test::ScopedHost mHost;
};

} // namespace

TEST_F(DataFileAllocations, savingFiltersLosesNone)
{
    sweep<SaveFilters>();
}

TEST_F(DataFileAllocations, loadingFiltersChangesNothing)
{
    sweep<LoadFilters>();
}

TEST_F(DataFileAllocations, mergingFiltersLosesNone)
{
    sweep<MergeFilters>();
}

TEST_F(DataFileAllocations, savingManufacturersLosesNone)
{
    sweep<SaveManufacturers>();
}

TEST_F(DataFileAllocations, loadingManufacturersChangesNothing)
{
    sweep<LoadManufacturers>();
}

TEST_F(DataFileAllocations, readingAndWritingJsonLeavesOldOrNew)
{
    sweep<JsonRoundTrip>();
}

TEST_F(DataFileAllocations, hashFilesAreOldOrNew)
{
    sweep<HashFiles>();
}

TEST_F(DataFileAllocations, hashesComeAllTheSame)
{
    sweep<HashesAhead>();
}

TEST_F(DataFileAllocations, hashesThatFailInAdvanceComeLater)
{
    sweep<HashesInAdvance>();
}

TEST_F(DataFileAllocations, preferencesAreOldOrNew)
{
    sweep<Preferences>();
}

TEST_F(DataFileAllocations, anEntryOfTheLogIsDropped)
{
    sweep<LogEntry>();
}

TEST_F(DataFileAllocations, aTimeIsReadOrItsCallerIsTold)
{
    for (const std::string text : {"+infinity", "-infinity", "20261301T000000", "20261121T033512.25"}) {
        const std::string expected = Library::toString(Library::fromString(text));
        bool hasFailed = true;
        for (std::size_t failing = 1; hasFailed; ++failing) {
            SCOPED_TRACE(text + ", allocation " + std::to_string(failing));
            std::optional<boost::posix_time::ptime> time;
            const test::AllocationPlan plan(failing);
            {
                const CountedAllocations counted;
                try {
                    time = Library::fromString(text);
                } catch (const std::bad_alloc&) {
                }
            }
            hasFailed = plan.hasFailed();
            EXPECT_EQ(time.has_value(), !hasFailed);
            EXPECT_EQ(time ? Library::toString(*time) : expected, expected);
        }
    }
}
