#pragma once

#include <cstdint>
#include <functional>
#include <istream>
#include <string>

/// Compresses a long stream on all processors. Each piece of 1 MB is compressed on its own thread, with the
/// end of the piece before as its dictionary. The results, joined, are one deflate stream. Its bytes do not
/// depend on the number of processors.
class PieceDeflater
{
public:
    struct Result
    {
        std::uint64_t size = 0;     ///< bytes read
        std::uint32_t checksum = 0; ///< their CRC-32
    };

    /// Receives the compressed bytes of the pieces in order, with the size of their content. An exception
    /// ends the compression and is passed on.
    using Sink = std::function<void(const std::string& compressed, std::size_t contentSize)>;

    /// Compresses up to the end of the stream, or to the first read that fails.
    /// @throws std::bad_alloc
    static Result run(std::istream& stream, const Sink& sink);
};
