#pragma once

#include <cstdint>

#include <QByteArray>

/// Makes small pictures for sample content, as PNG: a simple drawing in front of a coloured ground. The same
/// seed always gives the same bytes.
namespace SamplePicture {

/// @param side width and height in pixels
QByteArray png(std::uint32_t seed, int side);
/// A texture: a pattern in the whole square.
QByteArray texture(std::uint32_t seed, int side);

} // namespace SamplePicture
