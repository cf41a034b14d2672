// How it works: the scan looks for the signature of a local header, reads the header and skips the member's
// data. If the sizes are only after the data, the deflate stream is read to its end to find them. If the
// bytes were not a header, the search goes on one byte later.
#include "OrvLibrary/host/impl/zip/ZipMemberScan_p.h"

#include <algorithm>

#include <zlib.h>

namespace ZipUtils {

namespace {

constexpr std::size_t kBlock = 1U << 20U;
// Most members are small and lie side by side, so little is read for each of them at first.
constexpr std::size_t kSmallestBlock = 4U << 10U;
constexpr std::size_t kStreamBlock = 64U << 10U;

/// Reads a deflate stream of unknown size to its end, to measure it.
class StreamMeasure
{
public:
    StreamMeasure() { mIsReady = inflateInit2(&mStream, -15) == Z_OK; }
    ~StreamMeasure()
    {
        if (mIsReady)
            inflateEnd(&mStream);
    }
    StreamMeasure(const StreamMeasure&) = delete;
    StreamMeasure& operator=(const StreamMeasure&) = delete;

    /// Sets the sizes and the checksum of `entry`.
    /// @return whether the stream has an end
    bool run(const ZipArchive& archive, ZipEntry& entry, std::uint64_t end)
    {
        std::uint64_t offset = entry.dataOffset;
        int result = Z_OK;
        while (mIsReady && result == Z_OK) { // without bytes it is an error
            if (mStream.avail_in == 0) {
                const auto size = std::min<std::uint64_t>(end - offset, mInput.size());
                archive.readAt(offset, mInput.data(), size);
                offset += size;
                mStream.next_in = reinterpret_cast<Bytef*>(mInput.data());
                mStream.avail_in = static_cast<uInt>(size);
            }
            result = inflateOnce(entry);
        }
        entry.compressedSize = offset - mStream.avail_in - entry.dataOffset;
        return result == Z_STREAM_END;
    }

private:
    int inflateOnce(ZipEntry& entry)
    {
        mStream.next_out = mOutput.data();
        mStream.avail_out = static_cast<uInt>(mOutput.size());
        const int result = inflate(&mStream, Z_NO_FLUSH);
        const auto got = static_cast<uInt>(mOutput.size() - mStream.avail_out);
        entry.size += got;
        entry.checksum = static_cast<std::uint32_t>(crc32(entry.checksum, mOutput.data(), got));
        return result;
    }

    z_stream mStream = {};
    bool mIsReady = false;
    std::string mInput = std::string(kStreamBlock, '\0');
    std::vector<unsigned char> mOutput = std::vector<unsigned char>(kStreamBlock);
};

} // namespace

ZipMemberScan::ZipMemberScan(const ZipArchive& archive, std::uint64_t fileSize)
    : mArchive(archive), mFileSize(fileSize)
{
}

std::shared_ptr<const ZipDirectory> ZipMemberScan::read()
{
    const auto directory = std::make_shared<ZipDirectory>();
    directory->start = mFileSize;
    std::vector<std::string> names;
    std::uint64_t from = 0;
    while (const std::optional<std::uint64_t> offset = findHeader(from)) {
        std::string name;
        const std::optional<ZipEntry> entry = readHeader(*offset, name);
        from = entry ? entry->dataEnd() : *offset + 1;
        if (!entry || directory->entries.size() >= kMostMembers)
            continue;
        directory->entries.push_back(*entry);
        directory->bytes += name;
        names.push_back(std::move(name));
    }
    std::string_view rest = directory->bytes;
    for (std::size_t i = 0; i < names.size(); ++i) {
        directory->entries[i].name = rest.substr(0, names[i].size());
        rest.remove_prefix(names[i].size());
    }
    return directory;
}

std::optional<std::uint64_t> ZipMemberScan::findHeader(std::uint64_t from) const
{
    constexpr std::string_view kSignature = "PK\x03\x04";
    std::string block;
    std::uint64_t size = kSmallestBlock;
    for (; from + kLocalHeaderSize <= mFileSize;
         from += size, size = std::min<std::uint64_t>(2 * size, kBlock)) {
        // Blocks overlap, so that a signature across two of them is found.
        block.resize(std::min<std::uint64_t>(mFileSize - from, size + kSignature.size() - 1));
        mArchive.readAt(from, block.data(), block.size());
        const std::size_t at = block.find(kSignature);
        if (at != std::string::npos && from + at + kLocalHeaderSize <= mFileSize)
            return from + at;
    }
    return std::nullopt;
}

/// @return nothing if the bytes only look like a header, or if the member has no end
std::optional<ZipEntry> ZipMemberScan::readHeader(std::uint64_t offset, std::string& name) const
{
    char header[kLocalHeaderSize];
    mArchive.readAt(offset, header, sizeof header);
    const std::size_t nameSize = get16(header + 26);
    const std::size_t extraSize = get16(header + 28);
    ZipEntry entry;
    entry.headerOffset = offset;
    entry.dataOffset = offset + kLocalHeaderSize + nameSize + extraSize;
    entry.versionNeeded = entry.versionMadeBy = get16(header + 4);
    entry.flags = get16(header + 6);
    entry.method = get16(header + 8);
    entry.time = get16(header + 10);
    entry.date = get16(header + 12);
    const bool isKnown = entry.method == kMethodStored || entry.method == kMethodDeflated;
    if (!isKnown || entry.isEncrypted() || nameSize == 0 || entry.dataOffset > mFileSize)
        return std::nullopt;
    std::string texts(nameSize + extraSize, '\0');
    mArchive.readAt(offset + kLocalHeaderSize, texts.data(), texts.size());
    name = texts.substr(0, nameSize);
    const std::string_view extra = std::string_view(texts).substr(nameSize);
    entry.hasDescriptor = (entry.flags & kFlagDescriptor) != 0;
    const bool hasEnd = entry.hasDescriptor ? findEnd(entry) : readSizes(entry, header, extra);
    return hasEnd ? std::optional(entry) : std::nullopt;
}

bool ZipMemberScan::readSizes(ZipEntry& entry, const char* header, std::string_view extra) const
{
    entry.checksum = get32(header + 14);
    entry.compressedSize = get32(header + 18);
    entry.size = get32(header + 22);
    std::string_view field = findExtraField(extra, kExtraZip64);
    for (std::uint64_t* value : {&entry.size, &entry.compressedSize}) {
        if (*value == kSee64In32 && field.size() >= 8) {
            *value = get64(field.data());
            field.remove_prefix(8);
        }
    }
    return entry.compressedSize <= mFileSize - entry.dataOffset &&
           entry.size / kMostExpansion <= entry.compressedSize + kBlock / kMostExpansion &&
           (entry.method == kMethodDeflated || entry.size == entry.compressedSize);
}

/// Finds the end of a member whose sizes and checksum come after the data. Reading the stream gives them. The
/// checksum after the data must be the same; it may follow a signature or not.
bool ZipMemberScan::findEnd(ZipEntry& entry) const
{
    if (entry.method != kMethodDeflated || !StreamMeasure().run(mArchive, entry, mFileSize))
        return false;
    char descriptor[8] = {};
    const std::uint64_t size = std::min<std::uint64_t>(mFileSize - entry.dataEnd(), sizeof descriptor);
    mArchive.readAt(entry.dataEnd(), descriptor, size);
    return get32(descriptor) == entry.checksum || get32(descriptor + 4) == entry.checksum;
}

} // namespace ZipUtils
