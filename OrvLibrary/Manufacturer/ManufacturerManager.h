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

/// Owns the manufacturer records, which are stored in "manufacturer_data.json" in the manufacturer data
/// folder.
///
/// The only instance exists from the first `getManufacturerManager` until `cleanup`. These two, the look-ups
/// and the permission to edit may be used from any thread. Loading, saving, changing the folder and
/// refreshing need that no look-up runs meanwhile, and that no reference from a look-up is in use.
///
/// A file that cannot be read or written, a failed download or a host service that throws does not cause an
/// exception; the operation says what happens instead. An operation throws only if memory runs out, if the
/// host's message system throws in `ManufacturerMaterialAlert`, and where it says so.
class ORVLIBRARY_EXPORT ManufacturerManager
{
public:
    /// The instance, owned by this class. The first call makes it and loads the data file.
    static ManufacturerManager* getManufacturerManager();
    /// Destroys the instance; the next `getManufacturerManager` makes a new one.
    static void cleanup();

    ManufacturerManager(const ManufacturerManager&) = delete;
    ManufacturerManager& operator=(const ManufacturerManager&) = delete;

    /// Reads the data file again. If it is missing or unreadable, the table is empty afterwards. If it is
    /// missing, the default text and the time stay.
    void loadManufacturers();
    /// Takes over the content of the data file in another folder. Writing still uses the standard folder.
    /// @param folder with a separator at its end
    /// @return false if this file is missing or unreadable; nothing has changed then
    bool changeManufacturerDataPath(const fileString& folder);

    bool manufacturerExists(long id) const;
    /// The record with this id. If there is none, an empty one that is marked as deleted. The reference is
    /// valid until the table changes.
    const Manufacturer& getManufacturer(long id) const;
    /// The names of all records by id, including records marked as deleted.
    std::map<long, std::string> getIdNameMap() const;

    /// Whether the user may edit the records. At first false; not stored.
    bool getAllowManufacturerEdit() const;
    void setAllowManufacturerEdit(bool allow);

    /// The text for all contact fields that are "default". The reference is valid until the data changes.
    const std::string& getDefaultText() const { return mDefaultText; }
    /// When the whole file was last changed, in UTC. If nothing could be read, the earliest time.
    const boost::posix_time::ptime& getLastModified() const { return *mLastModified; }

    /// Takes over an edited table and writes the data file. Records that differ from the current ones get the
    /// current time, in `edited`, too. New records keep their time.
    void saveModifiedManufacturers(std::map<long, Manufacturer>& edited, const std::string& defaultText);
    /// Writes the data file with the current time. If the file cannot be written, the user gets a message.
    /// Other failures are silent; the file then keeps its content.
    void write_manufacturer_file();
    /// Calls `write_manufacturer_file`.
    void manageManufacturerData();
    /// Each writes one half of the document. Only the library uses documents.
    void write_globals(json_writer::Object& root) const;
    void write_manufacturers(json_writer::Object& root) const;
    /// Sends the user a message if the data file cannot be written.
    static void checkWriteDataFile();

    /// Reads a manufacturer file. If an id occurs several times, its last record counts. Records without an
    /// id are left out. If the file is missing, the outputs stay unchanged. If its root is not an object,
    /// `table` becomes empty and the others stay unchanged. After any other failure `table` is empty,
    /// `*lastModified` is the earliest time and `*defaultText` is empty.
    /// @param lastModified the time in the file; the current time if it has none; not-a-date-time if it is
    /// not a time
    /// @param defaultText the text in the file; the translated text if it has none
    /// @return whether the file was read
    static bool read_manufacturer_file(const fileString& path, std::map<long, Manufacturer>& table,
                                       boost::posix_time::ptime* lastModified, std::string* defaultText);

    /// Tells the user, once, that some material comes from manufacturers.
    static void ManufacturerMaterialAlert();

    /// Downloads the web service's manufacturer file. If it is newer than ours, takes over all its records
    /// and downloads the logos of new and newer records. No failure is reported: the data stays as it was,
    /// and a logo that fails is missing.
    /// @param dataUrl the address of the web service's manufacturer file
    /// @param logoUrl an address with a query, to which "&logo-path=" and the logo's name are appended
    void checkForManufacturerUpdates(const marl::unicode::String& dataUrl,
                                     const marl::unicode::String& logoUrl);

private:
    ManufacturerManager();
    ~ManufacturerManager();

    static fileString get_manufacturer_fullname();
    void fetchUpdate(const std::string& dataUrl, const marl::unicode::String& logoBase);
    void fetchLogos(const std::map<long, Manufacturer>& table, const marl::unicode::String& logoBase) const;

    static ManufacturerManager* mInstance;
    static ThreadMutex mMutex; ///< guards the instance and each look-up

    bool mAllowManufacturerEdit = false;
    std::string mDefaultText;
    std::shared_ptr<boost::posix_time::ptime> mLastModified; ///< never null
    std::map<long, Manufacturer> mTable;
    Manufacturer mUnknownManufacturer; ///< returned for ids that are not in the table
};
