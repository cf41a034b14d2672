#pragma once

#include <memory>
#include <string>

#include <boost/date_time/posix_time/posix_time_types.hpp>

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/fileString.h"

/// A maker of products that appear in the library catalogs. A plain value: copies share nothing, and to
/// change a record you make a new one. The table that holds it has its id as the key. One object belongs to
/// one thread. Texts are UTF-8.
class ORVLIBRARY_EXPORT Manufacturer
{
public:
    /// All texts are empty, both flags are false, and the last change is now.
    Manufacturer();
    /// @param phone, fax, email may be "default", which means the manager's shared default text
    /// @param logo UTF-8, relative to the manufacturer data folder
    /// @param lastModified may be not-a-date-time
    Manufacturer(const std::string& name, const std::string& url, const std::string& phone,
                 const std::string& fax, const std::string& logo, const std::string& email, bool lock,
                 bool deleted, const boost::posix_time::ptime& lastModified);
    Manufacturer(const Manufacturer& other);
    Manufacturer& operator=(const Manufacturer& other);
    ~Manufacturer();

    /// Whether all fields are equal, including the time of the last change.
    bool operator==(const Manufacturer& other) const;

    const std::string& getManufacturerName() const { return mName; }
    const std::string& getManufacturerUrl() const { return mUrl; }
    /// Whether the user may not edit the record.
    bool isLocked() const { return mLock; }
    /// Whether the record is marked as deleted. It still stays in the table and in the file.
    bool isDeleted() const { return mDeleted; }

    bool isPhoneDefaulted() const;
    bool isFaxDefaulted() const;
    bool isEmailDefaulted() const;
    void setPhoneDefaulted();
    void setFaxDefaulted();
    void setEmailDefaulted();

    /// A contact field. The reference is valid until the record changes or, with `resolveDefault`, the
    /// manager.
    /// @param resolveDefault if true, returns the manager's default text for the word "default" (and makes
    /// the manager if there is none); if false, returns the field unchanged
    const std::string& getManufacturerPhoneNumber(bool resolveDefault) const;
    const std::string& getManufacturerFaxNumber(bool resolveDefault) const;
    const std::string& getManufacturerEmail(bool resolveDefault) const;

    void setLastModified(const boost::posix_time::ptime& time);
    /// In UTC; not-a-date-time if unknown.
    const boost::posix_time::ptime& getLastModified() const { return *mLastModified; }

    /// Relative to the manufacturer data folder, as stored.
    fileString getManufacturerLogoName() const { return mLogo; }
    /// The full path of the logo as Windows-1252 text, for code that takes 8-bit paths. If there is no logo,
    /// the manufacturer data folder.
    std::string getManufacturerFullLogoName() const;

private:
    std::string mName;
    std::string mUrl;
    std::string mPhone;
    std::string mFax;
    fileString mLogo;
    std::string mEmail;
    bool mLock = false;
    bool mDeleted = false;
    std::shared_ptr<boost::posix_time::ptime> mLastModified; ///< never null, never shared
};
