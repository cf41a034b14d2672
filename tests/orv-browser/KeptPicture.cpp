#include "tests/orv-browser/KeptPicture.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include <QCoreApplication>
#include <QDir>

namespace test {

namespace {

constexpr int kShadesMask = 0xf8; // of a channel
constexpr int kMiddle = 0x04;     // of what the mask takes away

int differenceOf(QRgb left, QRgb right)
{
    return (std::abs(qRed(left) - qRed(right)) + std::abs(qGreen(left) - qGreen(right)) +
            std::abs(qBlue(left) - qBlue(right))) /
           3;
}

QString fileOf(const std::string& name)
{
    return QString(ORV_BROWSER_PICTURES "/") + QString::fromStdString(name) + ".png";
}

/// Black where two pictures are alike, the brighter the more they differ.
QImage differencesOf(const QImage& kept, const QImage& now)
{
    QImage all(kept.size().expandedTo(now.size()), QImage::Format_RGB32);
    all.fill(Qt::white);
    for (int y = 0; y < std::min(kept.height(), now.height()); ++y)
        for (int x = 0; x < std::min(kept.width(), now.width()); ++x) {
            const int shade = std::min(255, 4 * differenceOf(kept.pixel(x, y), now.pixel(x, y)));
            all.setPixel(x, y, qRgb(shade, shade, shade));
        }
    return all;
}

} // namespace

std::string KeptPicture::Difference::text() const
{
    if (!haveSameSize)
        return "another size, or no kept picture";
    return "mean difference " + std::to_string(inAll) + " (at most " + std::to_string(kMostInAll) +
           "), worst cell " + std::to_string(inACell) + " (at most " + std::to_string(kMostInACell) + ")";
}

/// Each pixel is the mean of a square.
QImage KeptPicture::reduced(const QImage& picture)
{
    const QImage source = picture.convertToFormat(QImage::Format_RGB32);
    QImage small(source.width() / kReduction, source.height() / kReduction, QImage::Format_RGB32);
    for (int y = 0; y < small.height(); ++y)
        for (int x = 0; x < small.width(); ++x) {
            int sums[3] = {};
            for (int dy = 0; dy < kReduction; ++dy)
                for (int dx = 0; dx < kReduction; ++dx) {
                    const QRgb pixel = source.pixel(x * kReduction + dx, y * kReduction + dy);
                    sums[0] += qRed(pixel);
                    sums[1] += qGreen(pixel);
                    sums[2] += qBlue(pixel);
                }
            for (int& sum : sums)
                sum = ((sum / (kReduction * kReduction)) & kShadesMask) | kMiddle;
            small.setPixel(x, y, qRgb(sums[0], sums[1], sums[2]));
        }
    return small;
}

KeptPicture::Difference KeptPicture::compare(const QImage& kept, const QImage& now)
{
    Difference difference;
    difference.haveSameSize = !kept.isNull() && kept.size() == now.size();
    if (!difference.haveSameSize)
        return difference;
    double sum = 0;
    for (int top = 0; top < kept.height(); top += kCell)
        for (int left = 0; left < kept.width(); left += kCell) {
            double sumOfCell = 0;
            int count = 0;
            for (int y = top; y < std::min(top + kCell, kept.height()); ++y)
                for (int x = left; x < std::min(left + kCell, kept.width()); ++x, ++count)
                    sumOfCell += differenceOf(kept.pixel(x, y), now.pixel(x, y));
            sum += sumOfCell;
            difference.inACell = std::max(difference.inACell, sumOfCell / count);
        }
    difference.inAll = sum / kept.width() / kept.height();
    return difference;
}

KeptPicture::KeptPicture(std::string name) : mName(std::move(name)), mKept(fileOf(mName))
{
    mKept = mKept.convertToFormat(QImage::Format_RGB32);
}

KeptPicture::Difference KeptPicture::compareWith(const QImage& picture) const
{
    return compare(mKept, reduced(picture));
}

bool KeptPicture::keep(const QImage& picture) const
{
    return QDir().mkpath(ORV_BROWSER_PICTURES) &&
           reduced(picture).convertToFormat(QImage::Format_RGB888).save(fileOf(mName), "PNG", 0);
}

std::string KeptPicture::writeEvidence(const QImage& picture) const
{
    const QString folder = QCoreApplication::applicationDirPath() + "/pictures/";
    const QString path = folder + QString::fromStdString(mName);
    if (!QDir().mkpath(folder) || !picture.save(path + "-now.png") ||
        !differencesOf(mKept, reduced(picture)).save(path + "-difference.png"))
        return folder.toStdString() + " cannot be written";
    return path.toStdString() + "-now.png and -difference.png; where the window is meant to look so, run "
                                "script/screenshots --keep";
}

bool KeptPicture::isKeeping()
{
    return std::getenv("ORV_KEEP_PICTURES") != nullptr;
}

} // namespace test
