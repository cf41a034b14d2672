#pragma once

#include <string>

#include <QImage>

namespace test {

/// A picture of a window that is kept in the repository, at a quarter of its size and with 32 shades of each
/// colour, so that it is small and so that the last pixel of a letter does not count.
class KeptPicture
{
public:
    static constexpr int kReduction = 4;
    static constexpr int kCell = 8;              ///< pixels of a reduced picture on a side of a cell
    static constexpr double kMostInAll = 1.0;    ///< mean difference of all pixels, of 255
    static constexpr double kMostInACell = 15.0; ///< mean difference of the pixels of the worst cell, of 255

    /// How far two reduced pictures are from each other.
    struct Difference
    {
        bool haveSameSize = false;
        double inAll = 0;
        double inACell = 0;

        bool isTolerable() const { return haveSameSize && inAll <= kMostInAll && inACell <= kMostInACell; }
        std::string text() const;
    };

    static QImage reduced(const QImage& picture);
    static Difference compare(const QImage& kept, const QImage& now);

    /// @param name of the file below "pictures", without its ending
    explicit KeptPicture(std::string name);

    /// Compares with the kept one.
    Difference compareWith(const QImage& picture) const;
    /// Keeps a picture from now on.
    /// @return whether it was written
    bool keep(const QImage& picture) const;
    /// Writes what the window looks like now and where that differs beside the test program.
    /// @return where, for people
    std::string writeEvidence(const QImage& picture) const;

    /// Whether pictures are to be kept instead of compared.
    static bool isKeeping();

private:
    std::string mName;
    QImage mKept;
};

} // namespace test
