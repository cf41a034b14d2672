#include "OrvLibrary/Manufacturer/Manufacturer.h"

#include <tuple>

#include "OrvLibrary/Manufacturer/ManufacturerManager.h"
#include "OrvLibrary/host/PathUtils.h"
#include "OrvLibrary/host/StringUtils.h"
#include "OrvLibrary/host/TimeUtils.h"

using boost::posix_time::ptime;

namespace {

/// A contact field with this word means the shared default text.
const char kDefault[] = "default";

const std::string& resolve(const std::string& field, bool resolveDefault)
{
    if (!resolveDefault || field != kDefault)
        return field;
    return ManufacturerManager::getManufacturerManager()->getDefaultText();
}

} // namespace

Manufacturer::Manufacturer() : mLastModified(std::make_shared<ptime>(Library::getTimeNow())) {}

Manufacturer::Manufacturer(const std::string& name, const std::string& url, const std::string& phone,
                           const std::string& fax, const std::string& logo, const std::string& email,
                           bool lock, bool deleted, const ptime& lastModified)
    : mName(name),
      mUrl(url),
      mPhone(phone),
      mFax(fax),
      mLogo(marl::unicode::String(logo)),
      mEmail(email),
      mLock(lock),
      mDeleted(deleted),
      mLastModified(std::make_shared<ptime>(lastModified))
{
}

Manufacturer::Manufacturer(const Manufacturer& other)
    : Manufacturer(other.mName, other.mUrl, other.mPhone, other.mFax,
                   other.mLogo.unicodeString().toUTF8String(), other.mEmail, other.mLock, other.mDeleted,
                   *other.mLastModified)
{
}

Manufacturer& Manufacturer::operator=(const Manufacturer& other)
{
    Manufacturer copy(other);
    std::swap(mName, copy.mName);
    std::swap(mUrl, copy.mUrl);
    std::swap(mPhone, copy.mPhone);
    std::swap(mFax, copy.mFax);
    std::swap(mLogo, copy.mLogo);
    std::swap(mEmail, copy.mEmail);
    std::swap(mLock, copy.mLock);
    std::swap(mDeleted, copy.mDeleted);
    std::swap(mLastModified, copy.mLastModified);
    return *this;
}

Manufacturer::~Manufacturer() = default;

bool Manufacturer::operator==(const Manufacturer& other) const
{
    // Deliberate: records that differ only in their time are not equal.
    // Kept by: ManufacturerRecord.everyFieldTakesPartInEquality
    const auto fields = [](const Manufacturer& record) {
        return std::tie(record.mName, record.mUrl, record.mPhone, record.mFax, record.mLogo, record.mEmail,
                        record.mLock, record.mDeleted, *record.mLastModified);
    };
    return fields(*this) == fields(other);
}

bool Manufacturer::isPhoneDefaulted() const
{
    return mPhone == kDefault;
}

bool Manufacturer::isFaxDefaulted() const
{
    return mFax == kDefault;
}

bool Manufacturer::isEmailDefaulted() const
{
    return mEmail == kDefault;
}

void Manufacturer::setPhoneDefaulted()
{
    mPhone = kDefault;
}

void Manufacturer::setFaxDefaulted()
{
    mFax = kDefault;
}

void Manufacturer::setEmailDefaulted()
{
    mEmail = kDefault;
}

const std::string& Manufacturer::getManufacturerPhoneNumber(bool resolveDefault) const
{
    return resolve(mPhone, resolveDefault);
}

const std::string& Manufacturer::getManufacturerFaxNumber(bool resolveDefault) const
{
    return resolve(mFax, resolveDefault);
}

const std::string& Manufacturer::getManufacturerEmail(bool resolveDefault) const
{
    return resolve(mEmail, resolveDefault);
}

void Manufacturer::setLastModified(const ptime& time)
{
    *mLastModified = time;
}

std::string Manufacturer::getManufacturerFullLogoName() const
{
    // Deliberate: Windows-1252, even if the file system uses another encoding.
    // Kept by: ManufacturerRecord.fullLogoNameIsWindows1252
    const fileString path = PathUtils::getObject().getManufacturerDataPath() / mLogo;
    return StringUtils::toWin1252(path.unicodeString());
}
