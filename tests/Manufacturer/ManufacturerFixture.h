#pragma once

#include <map>
#include <string>

#include <gtest/gtest.h>

#include "OrvLibrary/Manufacturer/ManufacturerManager.h"
#include "OrvLibrary/host/TimeUtils.h"
#include "tests/support/ScopedHost.h"

namespace test {

/// A host without a manufacturer file. No manager exists at the start.
class ManufacturerFixture : public testing::Test
{
protected:
    using ptime = boost::posix_time::ptime;
    using Table = std::map<long, Manufacturer>;

    ManufacturerFixture() { ManufacturerManager::cleanup(); }
    ~ManufacturerFixture() override { ManufacturerManager::cleanup(); }

    static ManufacturerManager& manager() { return *ManufacturerManager::getManufacturerManager(); }
    static ptime time(const std::string& text) { return Library::fromString(text); }
    static ptime earliest() { return ptime(boost::date_time::min_date_time); }

    /// A record with this name.
    static Manufacturer named(const std::string& name, const std::string& lastModified = "20200101T000000",
                              const std::string& logo = "")
    {
        return Manufacturer(name, "url", "phone", "fax", logo, "email", false, false, time(lastModified));
    }

    fileString dataFile() const { return mHost.folder().file("manufacturer-data/manufacturer_data.json"); }
    void writeDataFile(const std::string& content) { writeFile(dataFile().toNativeString(), content); }
    /// The names in the manager's table, ordered by id.
    static std::string names()
    {
        std::string text;
        for (const auto& [id, name] : manager().getIdNameMap())
            text += std::to_string(id) + ":" + name + " ";
        return text;
    }

    ScopedHost mHost;
};

} // namespace test
