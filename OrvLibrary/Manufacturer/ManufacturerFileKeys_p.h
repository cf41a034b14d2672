#pragma once

/// The name of a manufacturer file, and the keys in it.
namespace ManufacturerFileKeys {

constexpr char kFileName[] = "manufacturer_data.json";
constexpr char kTemporaryFileName[] = "manufacturer_data_temp.json";

constexpr char kDefaultText[] = "Default_Text";
constexpr char kManufacturer[] = "Manufacturer";
/// For the whole file, and for each record.
constexpr char kLastModified[] = "Last_Modified";

constexpr char kId[] = "Id";
constexpr char kName[] = "Name";
constexpr char kUrl[] = "Url";
constexpr char kPhone[] = "Phone";
constexpr char kFax[] = "Fax";
constexpr char kEmail[] = "Email";
constexpr char kLogo[] = "Logo";
constexpr char kLock[] = "Lock";
constexpr char kDeleted[] = "Deleted";

} // namespace ManufacturerFileKeys
