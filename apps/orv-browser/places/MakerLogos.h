#pragma once

#include <cstdint>
#include <map>

#include <QIcon>
#include <QImage>
#include <QObject>
#include <QThreadPool>

#include "OrvLibrary/host/fileString.h"

/// The logos of makers, read off the interface thread when they are first asked for, from the files that the
/// records of the manufacturers name. Lives on the interface thread.
class MakerLogos : public QObject
{
    Q_OBJECT

public:
    explicit MakerLogos(QObject* parent = nullptr);
    /// Waits for the reading that is under way.
    ~MakerLogos() override;

    /// The logo of a maker on a plate; null while it is read, and where there is none that can be shown.
    QIcon icon(std::int32_t maker);
    /// The logo itself, large ones scaled down; null like the icon.
    QImage image(std::int32_t maker);
    /// Reads the logos anew, because the records have changed.
    void forget();

Q_SIGNALS:
    /// A logo has come, or all may be others.
    void changed();

private:
    struct Logo
    {
        QIcon icon;
        QImage image;
    };

    const Logo& logo(std::int32_t maker);
    void read(std::int32_t maker, const fileString& file);

    std::map<std::int32_t, Logo> mLogos; ///< of the makers that were asked for
    int mVersion = 0;                    ///< how often they were forgotten
    QThreadPool mPool;
};
