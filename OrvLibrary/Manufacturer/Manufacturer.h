#pragma once

#include <memory>
#include <string>

#include <boost/date_time/posix_time/posix_time_types.hpp>

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/fileString.h"

/// A manufacturer of products whose objects appear in the library catalogs. A value: copies share nothing,
/// and a record is changed by making a new one. Its id is the key of the table that holds it. One object
/// belongs to one thread; texts are UTF-8.
class ORVLIBRARY_EXPORT Manufacturer
{
public:
    /// All texts empty, both flags false, changed now.
    Manufacturer();
    /// @param phone, fax, email may be "default", which stands for the manager's shared default text
    /// @param logo UTF-8, relative to the manufacturer data folder
    /// @param lastModified may be not-a-date-time
    Manufacturer(const std::string& name, const std::string& url, const std::string& phone,
                 const std::string& fax, const std::string& logo, const std::string& email, bool lock,
                 bool deleted, const boost::posix_time::ptime& lastModified);
    Manufacturer(const Manufacturer& other);
    Manufacturer& operator=(const Manufacturer& other);
    ~Manufacturer();

    /// Whether all fields are equal, the time of the last change included.
    bool operator==(const Manufacturer& other) const;

    const std::string& getManufacturerName() const { return mName; }
    const std::string& getManufacturerUrl() const { return mUrl; }
    /// Whether the user may not edit the record.
    bool isLocked() const { return mLock; }
    /// Whether the record is marked deleted; it stays in table and file.
    bool isDeleted() const { return mDeleted; }

    bool isPhoneDefaulted() const;
    bool isFaxDefaulted() const;
    bool isEmailDefaulted() const;
    void setPhoneDefaulted();
    void setFaxDefaulted();
    void setEmailDefaulted();

    /// A contact field. The reference holds as long as the record and, with `resolveDefault`, the manager
    /// stay as they are.
    /// @param resolveDefault true gives the manager's default text for a defaulted field (and makes the
    /// manager if there is none yet); false gives the field as it is
    const std::string& getManufacturerPhoneNumber(bool resolveDefault) const;
    const std::string& getManufacturerFaxNumber(bool resolveDefault) const;
    const std::string& getManufacturerEmail(bool resolveDefault) const;

    void setLastModified(const boost::posix_time::ptime& time);
    /// UTC; not-a-date-time when the time is not known.
    const boost::posix_time::ptime& getLastModified() const { return *mLastModified; }

    /// Relative to the manufacturer data folder, as stored.
    fileString getManufacturerLogoName() const { return mLogo; }
    /// The logo's whole path as Windows-1252 text, for code that takes 8-bit paths; the manufacturer data
    /// folder itself when there is no logo.
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
