#include "OrvLibrary/host/impl/http/AddressGuard_p.h"

AddressGuard::AddressGuard(const HttpLimits& limits) : mLimits(limits) {}

bool AddressGuard::isOpen(const std::string& address)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    const auto found = mSilent.find(address);
    return found == mSilent.end() || found->second.requests < mLimits.unansweredRequests ||
           mLimits.now() >= found->second.closedUntil;
}

void AddressGuard::answered(const std::string& address)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mSilent.erase(address);
}

void AddressGuard::unanswered(const std::string& address, const std::string& reason)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    Silence& silence = mSilent[address];
    ++silence.requests;
    silence.reason = reason;
    silence.closedUntil = mLimits.now() + mLimits.refusalTime;
}

std::string AddressGuard::lastReason(const std::string& address)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    const auto found = mSilent.find(address);
    return found == mSilent.end() ? std::string() : found->second.reason;
}

void AddressGuard::reset()
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mSilent.clear();
}
