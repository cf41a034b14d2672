#include "apps/catalog-service/PieceDeflater.h"

#include <algorithm>
#include <deque>
#include <future>
#include <new>
#include <thread>

#include <zlib.h>

namespace {

constexpr std::size_t kPiece = 1 << 20;
constexpr std::size_t kDictionary = 32768; // the distance that a deflate stream can refer back

struct Piece
{
    std::string compressed;
    std::size_t size = 0;
    std::uint32_t checksum = 0;
};

std::uint32_t checksumOf(const std::string& content)
{
    return static_cast<std::uint32_t>(
        crc32(0, reinterpret_cast<const Bytef*>(content.data()), static_cast<uInt>(content.size())));
}

/// @param dictionary the content directly before; empty for the first piece
Piece compressed(const std::string& content, const std::string& dictionary, bool isLast)
{
    z_stream stream{};
    if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, -MAX_WBITS, MAX_MEM_LEVEL,
                     Z_DEFAULT_STRATEGY) != Z_OK)
        throw std::bad_alloc();
    if (!dictionary.empty())
        deflateSetDictionary(&stream, reinterpret_cast<const Bytef*>(dictionary.data()),
                             static_cast<uInt>(dictionary.size()));
    Piece piece;
    // The bound does not include the mark between two pieces.
    piece.compressed.resize(deflateBound(&stream, static_cast<uLong>(content.size())) + 16);
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(content.data()));
    stream.avail_in = static_cast<uInt>(content.size());
    stream.next_out = reinterpret_cast<Bytef*>(piece.compressed.data());
    stream.avail_out = static_cast<uInt>(piece.compressed.size());
    deflate(&stream, isLast ? Z_FINISH : Z_SYNC_FLUSH);
    piece.compressed.resize(stream.total_out);
    deflateEnd(&stream);
    piece.size = content.size();
    piece.checksum = checksumOf(content);
    return piece;
}

std::string readPiece(std::istream& stream)
{
    std::string content(kPiece, '\0');
    stream.read(content.data(), static_cast<std::streamsize>(content.size()));
    content.resize(static_cast<std::size_t>(stream.gcount()));
    return content;
}

} // namespace

PieceDeflater::Result PieceDeflater::run(std::istream& stream, const Sink& sink)
{
    const std::size_t atOnce = std::max(2u, std::thread::hardware_concurrency());
    std::deque<std::future<Piece>> underWay;
    Result result;
    const auto takeFirst = [&] {
        const Piece piece = underWay.front().get();
        underWay.pop_front();
        result.checksum = static_cast<std::uint32_t>(
            crc32_combine(result.checksum, piece.checksum, static_cast<z_off_t>(piece.size)));
        result.size += piece.size;
        sink(piece.compressed, piece.size);
    };
    std::string dictionary;
    std::string content = readPiece(stream);
    for (bool isLast = false; !isLast;) {
        std::string next = readPiece(stream);
        isLast = next.empty();
        std::string end = content.substr(content.size() - std::min(content.size(), kDictionary));
        underWay.push_back(
            std::async(std::launch::async, [content = std::move(content), dictionary = std::move(dictionary),
                                            isLast] { return compressed(content, dictionary, isLast); }));
        dictionary = std::move(end);
        content = std::move(next);
        if (underWay.size() > atOnce)
            takeFirst();
    }
    while (!underWay.empty())
        takeFirst();
    return result;
}
