#pragma once

#include <cstdint>
#include <functional>
#include <istream>
#include <string>

/// Compresses a long stream on all cores. The stream is cut into pieces of 1 MB; each is compressed on a
/// thread of its own with the end of the piece before as its dictionary, and the results, one behind the
/// other, are one deflate stream. The same content gives the same bytes, however many cores there are.
class PieceDeflater
{
public:
    struct Result
    {
        std::uint64_t size = 0;     ///< bytes read
        std::uint32_t checksum = 0; ///< CRC-32 of them
    };

    /// Takes the compressed bytes of a piece, in order, and how many bytes of content they hold. An
    /// exception of the sink ends the compression and passes through.
    using Sink = std::function<void(const std::string& compressed, std::size_t contentSize)>;

    /// Reads the stream to its end, or to the first read that fails.
    /// @throws std::bad_alloc
    static Result run(std::istream& stream, const Sink& sink);
};
