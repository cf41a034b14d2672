#pragma once

#include <map>
#include <string>

#include <QDialog>
#include <QThreadPool>

#include "OrvLibrary/Manufacturer/Manufacturer.h"

class QDialogButtonBox;
class QLabel;
class QListWidget;

/// Shows the changes that a refresh of the manufacturer records would make, and makes them if the user
/// accepts. The records are downloaded on another thread.
class ManufacturerPreview : public QDialog
{
    Q_OBJECT

public:
    ManufacturerPreview(const QString& dataUrl, const QString& logoUrl, QWidget* parent);
    ~ManufacturerPreview() override;

    /// The result for people.
    const QString& summary() const { return mSummary; }

    void accept() override;

private:
    struct Fetched;

    void show(const Fetched& fetched);

    QThreadPool mPool;
    QString mDataUrl;
    QString mLogoUrl;
    QString mSummary;
    QLabel* mText;
    QListWidget* mChanges;
    QDialogButtonBox* mButtons;
};
