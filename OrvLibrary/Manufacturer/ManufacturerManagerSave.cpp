// Writes the manufacturer file.
#include "OrvLibrary/Manufacturer/ManufacturerManager.h"

#include "OrvLibrary/Manufacturer/ManufacturerFileKeys_p.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/MessagingSystem.h"
#include "OrvLibrary/host/TimeUtils.h"
#include "OrvLibrary/json/json_writer.h"

using namespace ManufacturerFileKeys;

namespace {

json_writer::Object recordObject(long id, const Manufacturer& record)
{
    json_writer::Object object;
    object.add_element<long>(kId, id);
    object.add_element(kLastModified, Library::toString(record.getLastModified()));
    object.add_element(kName, record.getManufacturerName());
    object.add_element(kUrl, record.getManufacturerUrl());
    object.add_element(kPhone, record.getManufacturerPhoneNumber(false));
    object.add_element(kFax, record.getManufacturerFaxNumber(false));
    object.add_element(kEmail, record.getManufacturerEmail(false));
    object.add_element(kLogo, record.getManufacturerLogoName().unicodeString().toUTF8String());
    object.add_element<bool>(kLock, record.isLocked());
    object.add_element<bool>(kDeleted, record.isDeleted());
    return object;
}

void tellThatFileCannotBeWritten(const fileString& path)
{
    error::MessagingSystem::control().notify(__FILE__, __LINE__, error::ErrorMinimalTrait(),
                                             error::Message::kCannotWriteDataFile, path.unicodeString(), {},
                                             {});
}

} // namespace

void ManufacturerManager::write_globals(json_writer::Object& root) const
{
    root.add_element(kLastModified, Library::toString(Library::getTimeNow()));
    root.add_element(kDefaultText, mDefaultText);
}

void ManufacturerManager::write_manufacturers(json_writer::Object& root) const
{
    for (const auto& [id, record] : mTable)
        root.add_element(kManufacturer, recordObject(id, record));
}

void ManufacturerManager::write_manufacturer_file()
{
    try {
        json_writer::Object root;
        write_globals(root);
        write_manufacturers(root);
        const fileString path = get_manufacturer_fullname();
        if (path.pathExists() && !FileUtils::canWriteFile(path))
            tellThatFileCannotBeWritten(path);
        else
            json_writer::write_file(path.unicodeString().toUTF8String(), root);
        // Deliberate: this is also done for a file that was read-only, so the next attempt can write it.
        // Kept by: ManufacturerManagerSave.readOnlyFileIsToldAndMadeWritableForTheNextTime
        if (path.pathExists()) {
            FileUtils::makeFileWritable(path);
            FileUtils::setFilePermission(path);
        }
    } catch (...) {
        // Deliberate: no message. The file keeps its old content.
        // Kept by: ManufacturerManagerSave.otherFailuresAreSilent
    }
}

void ManufacturerManager::manageManufacturerData()
{
    write_manufacturer_file();
}

void ManufacturerManager::checkWriteDataFile()
{
    try {
        const fileString path = get_manufacturer_fullname();
        if (!FileUtils::canWriteFile(path))
            tellThatFileCannotBeWritten(path);
    } catch (...) {
        // Deliberate: no message, because the message system itself may have failed.
        // Kept by: ManufacturerManagerSave.otherFailuresAreSilent
    }
}

void ManufacturerManager::saveModifiedManufacturers(std::map<long, Manufacturer>& edited,
                                                    const std::string& defaultText)
{
    for (auto& [id, record] : edited) {
        const auto stored = mTable.find(id);
        if (stored != mTable.end() && !(record == stored->second))
            record.setLastModified(Library::getTimeNow());
    }
    mTable = edited;
    mDefaultText = defaultText;
    write_manufacturer_file();
}
