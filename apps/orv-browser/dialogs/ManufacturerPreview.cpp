#include "apps/orv-browser/dialogs/ManufacturerPreview.h"

#include <stdexcept>

#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include "OrvHost/records/ManufacturerRefresh.h"
#include "OrvLibrary/Manufacturer/ManufacturerManager.h"
#include "OrvLibrary/host/Curl.h"
#include "OrvLibrary/host/FileReaper.h"
#include "OrvLibrary/host/PathUtils.h"
#include "apps/orv-browser/models/Background.h"
#include "apps/orv-browser/models/Reasons.h"

namespace {

using Records = std::map<long, Manufacturer>;

QString nameOf(const Manufacturer& record)
{
    return QString::fromStdString(record.getManufacturerName());
}

Records installedRecords()
{
    Records records;
    boost::posix_time::ptime stamp;
    std::string defaultText;
    const fileString file =
        PathUtils::getObject().getManufacturerDataPath() + fileString("manufacturer_data.json");
    ManufacturerManager::read_manufacturer_file(file, records, &stamp, &defaultText);
    return records;
}

QStringList changesBetween(const Records& before, const Records& after)
{
    QStringList changes;
    for (const auto& [id, record] : after) {
        const auto former = before.find(id);
        if (former == before.end())
            changes << ManufacturerPreview::tr("New: %1").arg(nameOf(record));
        else if (former->second.getLastModified() < record.getLastModified())
            changes << ManufacturerPreview::tr("Newer: %1").arg(nameOf(record));
        else if (record.getLastModified() < former->second.getLastModified())
            changes << ManufacturerPreview::tr("Older: %1").arg(nameOf(record));
    }
    for (const auto& [id, record] : before)
        if (after.count(id) == 0)
            changes << ManufacturerPreview::tr("Removed: %1").arg(nameOf(record));
    return changes;
}

} // namespace

/// The records of the service, or the reason why they could not be read.
struct ManufacturerPreview::Fetched
{
    Records records;
    bool isReadable = false;
};

ManufacturerPreview::ManufacturerPreview(const QString& dataUrl, const QString& logoUrl, QWidget* parent)
    : QDialog(parent),
      mDataUrl(dataUrl),
      mLogoUrl(logoUrl),
      mText(new QLabel(tr("Fetching the records…"))),
      mChanges(new QListWidget),
      mButtons(new QDialogButtonBox(QDialogButtonBox::Apply | QDialogButtonBox::Cancel))
{
    mPool.setMaxThreadCount(1);
    setObjectName(QStringLiteral("manufacturerPreview"));
    setWindowTitle(tr("Manufacturers"));
    resize(420, 320);
    mChanges->setObjectName(QStringLiteral("manufacturerChanges"));
    mChanges->setAccessibleName(tr("What the refresh changes"));
    mText->setObjectName(QStringLiteral("manufacturerText"));
    mText->setWordWrap(true);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(mText);
    layout->addWidget(mChanges);
    layout->addWidget(mButtons);
    // Without a default of its own the box would let Enter mean Cancel.
    mButtons->button(QDialogButtonBox::Apply)->setDefault(true);
    mButtons->button(QDialogButtonBox::Cancel)
        ->setAutoDefault(false); // also while it alone can have the focus
    mButtons->button(QDialogButtonBox::Apply)->setEnabled(false);
    connect(mButtons->button(QDialogButtonBox::Apply), &QPushButton::clicked, this,
            &ManufacturerPreview::accept);
    connect(mButtons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    Background::run(
        mPool, this,
        [url = dataUrl.toStdString()] {
            Fetched fetched;
            const fileString file = Curl::get().download(url);
            const FileReaper guard(file);
            boost::posix_time::ptime stamp;
            std::string defaultText;
            fetched.isReadable = !file.empty() && ManufacturerManager::read_manufacturer_file(
                                                      file, fetched.records, &stamp, &defaultText);
            return fetched;
        },
        [this](const Fetched& fetched) { show(fetched); });
}

ManufacturerPreview::~ManufacturerPreview()
{
    mPool.clear();
    mPool.waitForDone();
}

void ManufacturerPreview::show(const Fetched& fetched)
{
    if (!fetched.isReadable) {
        mText->setText(
            tr("The records could not be fetched from %1; those that you have stay.").arg(mDataUrl));
        return;
    }
    const QStringList changes = changesBetween(installedRecords(), fetched.records);
    mChanges->addItems(changes);
    mText->setText(changes.isEmpty() ? tr("The records are up to date.")
                                     : tr("The refresh replaces all records. It changes:"));
    mButtons->button(QDialogButtonBox::Apply)->setEnabled(!changes.isEmpty());
}

void ManufacturerPreview::accept()
{
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    try {
        OrvHost::ManufacturerRefresh refresh(Curl::get());
        refresh.run(mDataUrl.toStdString(), mLogoUrl.toStdString());
        mSummary = tr("The manufacturer records were refreshed.");
        if (!refresh.failedLogos().empty())
            mSummary += " " + tr("%n logo(s) could not be fetched.", nullptr,
                                 static_cast<int>(refresh.failedLogos().size()));
    } catch (const std::runtime_error& error) {
        mSummary = tr("The manufacturer records were not refreshed: %1").arg(Reasons::text(error.what()));
    }
    QGuiApplication::restoreOverrideCursor();
    QDialog::accept();
}
