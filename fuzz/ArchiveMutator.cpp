// Mutations that keep archives valid. A plain mutation usually breaks the lengths and checksums of the
// records, so the code behind those checks is never reached. Therefore some of them are repaired after the
// mutation.
#include <algorithm>
#include <string>
#include <vector>

#include <zlib.h>

#include "OrvLibrary/host/impl/zip/ZipFormat_p.h"

using namespace ZipUtils;

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace {

/// The parts that are repaired. Each is one bit, so that sometimes a part stays wrong.
enum Repair : unsigned
{
    EndRecord = 1,
    Offsets = 2,
    Names = 4,
    Sizes = 8,
    Checksums = 16
};

class ArchiveRepair
{
public:
    ArchiveRepair(char* bytes, std::size_t size, unsigned repairs)
        : mBytes(bytes), mSize(size), mRepairs(repairs), mText(bytes, size)
    {
    }

    void run()
    {
        mLocals = placesOf("PK\3\4", kLocalHeaderSize);
        mCentrals = placesOf("PK\1\2", kCentralRecordSize);
        const std::size_t end = mText.rfind("PK\5\6");
        if (mCentrals.empty() || end == std::string::npos || end + kEndRecordSize > mSize)
            return;
        for (std::size_t i = 0; i < std::min(mLocals.size(), mCentrals.size()); ++i)
            repairMember(mLocals[i], mCentrals[i], i + 1 < mLocals.size() ? mLocals[i + 1] : mCentrals[0]);
        if (wants(EndRecord) && end > mCentrals[0])
            repairEnd(end);
    }

private:
    bool wants(Repair repair) const { return (mRepairs & repair) == 0; }

    std::vector<std::size_t> placesOf(const char* signature, std::size_t recordSize) const
    {
        std::vector<std::size_t> places;
        for (std::size_t at = mText.find(signature, 0, 4);
             at != std::string::npos && at + recordSize <= mSize;
             at = mText.find(signature, at + recordSize, 4))
            places.push_back(at);
        return places;
    }

    void put(std::size_t at, std::uint64_t value, int bytes)
    {
        for (int i = 0; i < bytes; ++i)
            mBytes[at + static_cast<std::size_t>(i)] = static_cast<char>(value >> (8 * i) & 0xFF);
    }

    void repairMember(std::size_t local, std::size_t central, std::size_t next)
    {
        const std::size_t nameSize = get16(mBytes + central + 28);
        if (wants(Names) && get16(mBytes + local + 26) == nameSize && local + 30 + nameSize <= mSize &&
            central + 46 + nameSize <= mSize) {
            std::copy_n(mBytes + central + 46, nameSize, mBytes + local + 30);
            std::copy_n(mBytes + central + 10, 2, mBytes + local + 8); // method
        }
        if (wants(Offsets))
            put(central + 42, local - mLocals[0], 4);
        const std::size_t data = local + 30 + nameSize + get16(mBytes + local + 28);
        if (data <= next && next <= mSize)
            repairData(local, central, data, next - data);
    }

    void repairData(std::size_t local, std::size_t central, std::size_t data, std::size_t size)
    {
        const bool isDeflated = get16(mBytes + central + 10) == kMethodDeflated;
        std::string content(mBytes + data, size);
        if (isDeflated)
            size = inflateSome(content);
        if (wants(Sizes)) {
            for (const std::size_t at : {local + 18, central + 20}) {
                put(at, size, 4);
                put(at + 4, content.size(), 4);
            }
        }
        if (wants(Checksums)) {
            const auto* bytes = reinterpret_cast<const Bytef*>(content.data());
            const std::uint64_t checksum = crc32(0, bytes, static_cast<uInt>(content.size()));
            put(local + 14, checksum, 4);
            put(central + 16, checksum, 4);
        }
    }

    /// Replaces a deflate stream by as much of its content as can be inflated.
    /// @return the number of consumed bytes
    static std::size_t inflateSome(std::string& content)
    {
        z_stream stream = {};
        std::string out(1U << 20U, '\0');
        if (inflateInit2(&stream, -15) != Z_OK)
            return content.size();
        stream.next_in = reinterpret_cast<Bytef*>(content.data());
        stream.avail_in = static_cast<uInt>(content.size());
        stream.next_out = reinterpret_cast<Bytef*>(out.data());
        stream.avail_out = static_cast<uInt>(out.size());
        inflate(&stream, Z_FINISH);
        out.resize(stream.total_out);
        const std::size_t used = stream.total_in;
        inflateEnd(&stream);
        content = out;
        return used;
    }

    void repairEnd(std::size_t end)
    {
        put(end + 4, 0, 4); // disks
        put(end + 8, mCentrals.size(), 2);
        put(end + 10, mCentrals.size(), 2);
        put(end + 12, end - mCentrals[0], 4);
        put(end + 16, mCentrals[0] - (mLocals.empty() ? 0 : mLocals[0]), 4);
        put(end + 20, mSize - end - kEndRecordSize, 2);
    }

    char* mBytes;
    std::size_t mSize;
    unsigned mRepairs;
    std::string mText; ///< the bytes before any repair
    std::vector<std::size_t> mLocals;
    std::vector<std::size_t> mCentrals;
};

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned seed)
{
    size = LLVMFuzzerMutate(data, size, maxSize);
    if (seed % 4 != 0) {
        // Each of the five parts stays wrong with a probability of one quarter.
        const unsigned lies = (seed >> 8) & (seed >> 16) & 31U;
        ArchiveRepair(reinterpret_cast<char*>(data), size, lies).run();
    }
    return size;
}
