#include "OrvLibrary/host/impl/http/AddressMemory_p.h"

#include <algorithm>

AddressMemory::AddressMemory(const HttpLimits& limits) : mLimits(limits) {}

AddressMemory::Known AddressMemory::known(const std::string& address)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    const Record& record = mRecords[address];
    Known known;
    known.isOpen = record.unanswered < mLimits.unansweredRequests || mLimits.now() >= record.closedUntil;
    known.lastReason = record.reason;
    if (!record.latencies.empty())
        known.latency = *std::min_element(record.latencies.begin(), record.latencies.end());
    known.isMultiplexing = record.isMultiplexing;
    return known;
}

void AddressMemory::note(const std::string& address, const HttpAnswer& answer)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    Record& record = mRecords[address];
    if (!answer.answered && answer.error == CURLE_ABORTED_BY_CALLBACK)
        return;
    if (!answer.answered) {
        ++record.unanswered;
        record.reason = answer.errorText;
        record.closedUntil = mLimits.now() + mLimits.refusalTime;
        return;
    }
    record.unanswered = 0;
    record.isMultiplexing = answer.isMultiplexed;
    if (answer.hadCompany)
        return;
    record.latencies.push_back(answer.latency);
    if (record.latencies.size() > kLatencies)
        record.latencies.pop_front();
}

void AddressMemory::openAll()
{
    const std::lock_guard<std::mutex> lock(mMutex);
    for (auto& [address, record] : mRecords)
        record.unanswered = 0;
}
