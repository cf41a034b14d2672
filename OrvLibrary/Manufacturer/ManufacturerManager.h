#pragma once

#include <map>
#include <memory>
#include <string>

#include <boost/date_time/posix_time/posix_time_types.hpp>

#include "OrvLibrary/Manufacturer/Manufacturer.h"
#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/ThreadMutex.h"
#include "OrvLibrary/host/UnicodeString.h"
#include "OrvLibrary/host/fileString.h"

namespace json_writer {
class Object;
}

/// The owner of the manufacturer records, kept in "manufacturer_data.json" in the manufacturer data folder.
///
/// The one instance exists from the first `getManufacturerManager` to `cleanup`. These two, the look-ups and
/// the edit permission may be called from any thread; loading, saving, changing the folder and the refresh
/// only while no look-up runs and no reference that a look-up gave is in use.
///
/// A file that cannot be read or written, a failed download and a host service that throws meanwhile end as
/// the operation says, not as an exception. An operation may let out lack of memory, an exception of the
/// host's message system from `ManufacturerMaterialAlert`, and what it names itself.
class ORVLIBRARY_EXPORT ManufacturerManager
{
public:
    /// The instance, owned by the class; the first call makes it and loads the data file.
    static ManufacturerManager* getManufacturerManager();
    /// Destroys the instance; the next `getManufacturerManager` makes a new one.
    static void cleanup();

    ManufacturerManager(const ManufacturerManager&) = delete;
    ManufacturerManager& operator=(const ManufacturerManager&) = delete;

    /// Reads the data file again. A file that is missing or cannot be read leaves an empty table; a missing
    /// one leaves default text and time as they were.
    void loadManufacturers();
    /// Takes over the content of the data file in another folder. Later writes still go to the standard one.
    /// @param folder ends with a separator
    /// @return false when there is no such file or it cannot be read; nothing has changed then
    bool changeManufacturerDataPath(const fileString& folder);

    bool manufacturerExists(long id) const;
    /// The record of that id, or one that is empty and marked deleted. The reference holds until the table
    /// changes.
    const Manufacturer& getManufacturer(long id) const;
    /// The names of all records by id, those marked deleted included.
    std::map<long, std::string> getIdNameMap() const;

    /// Whether the user may edit the records; false at first, and kept in memory only.
    bool getAllowManufacturerEdit() const;
    void setAllowManufacturerEdit(bool allow);

    /// The text that stands for every contact field that is "default". The reference holds until the data
    /// changes.
    const std::string& getDefaultText() const { return mDefaultText; }
    /// When the file as a whole last changed, UTC; the earliest time when nothing could be read.
    const boost::posix_time::ptime& getLastModified() const { return *mLastModified; }

    /// Takes over an edited table and writes the data file. Records that differ from those held get the
    /// current time, in `edited` too; new ones keep the time that they carry.
    void saveModifiedManufacturers(std::map<long, Manufacturer>& edited, const std::string& defaultText);
    /// Writes the data file with the current time. When the file cannot be written the user is told; other
    /// failures are silent, and the file keeps its content.
    void write_manufacturer_file();
    /// `write_manufacturer_file`.
    void manageManufacturerData();
    /// The two halves of the document that is written; documents are the library's own affair.
    void write_globals(json_writer::Object& root) const;
    void write_manufacturers(json_writer::Object& root) const;
    /// Tells the user when the data file cannot be written.
    static void checkWriteDataFile();

    /// Reads a manufacturer file. Of several records of one id the last one counts; records without an id are
    /// left out. A missing file leaves the outputs untouched. One whose root is no object leaves `table`
    /// empty and the other outputs untouched. Any other failure leaves `table` empty, `*lastModified` the
    /// earliest time and `*defaultText` empty.
    /// @param lastModified the file's time; the current one when it names none, not-a-date-time when what it
    /// names is no time
    /// @param defaultText the file's text, or the translated one when it has none
    /// @return whether the file was read
    static bool read_manufacturer_file(const fileString& path, std::map<long, Manufacturer>& table,
                                       boost::posix_time::ptime* lastModified, std::string* defaultText);

    /// Tells the user, once, about manufacturer-supplied material.
    static void ManufacturerMaterialAlert();

    /// Fetches the service's records and takes all of them over when their file is newer; then the logos of
    /// records that are new or newer than those held are fetched as well. Says nothing: failures leave things
    /// as they are, a failed logo leaves that logo missing.
    /// @param dataUrl the address of the service's manufacturer file
    /// @param logoUrl an address that ends in a query, to which "&logo-path=" and the logo's name are added
    void checkForManufacturerUpdates(const marl::unicode::String& dataUrl,
                                     const marl::unicode::String& logoUrl);

private:
    ManufacturerManager();
    ~ManufacturerManager();

    static fileString get_manufacturer_fullname();
    void fetchUpdate(const std::string& dataUrl, const marl::unicode::String& logoBase);
    void fetchLogos(const std::map<long, Manufacturer>& table, const marl::unicode::String& logoBase) const;

    static ManufacturerManager* mInstance;
    static ThreadMutex mMutex; ///< guards the instance, and each look-up

    bool mAllowManufacturerEdit = false;
    std::string mDefaultText;
    std::shared_ptr<boost::posix_time::ptime> mLastModified; ///< never null
    std::map<long, Manufacturer> mTable;
    Manufacturer mUnknownManufacturer; ///< stands for ids that the table lacks
};
