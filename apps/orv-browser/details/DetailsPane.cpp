#include "apps/orv-browser/details/DetailsPane.h"

#include <QFile>
#include <QFormLayout>
#include <QGuiApplication>
#include <QImage>
#include <QLabel>
#include <QPixmap>

#include "OrvLibrary/Manufacturer/ManufacturerManager.h"
#include "OrvLibrary/Utility/Chooser.h"
#include "OrvLibrary/Utility/ObjectStyleManager.h"
#include "OrvLibrary/host/PathUtils.h"
#include "apps/orv-browser/models/Background.h"
#include "apps/orv-browser/models/CatalogDatabase.h"

namespace {

constexpr int kPictureSide = 144;
constexpr int kLogoSide = 64;
constexpr int kLeastWidth = 240;

QString text(const std::string& utf8)
{
    return QString::fromStdString(utf8);
}

QPixmap fitting(const QImage& image, int side)
{
    return QPixmap::fromImage(image.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation));
}

/// Web and mail addresses as links; everything else as plain text, whatever marks it holds.
QString contactText(const Manufacturer& maker, const QString& url)
{
    QStringList lines;
    const auto link = [](const QString& scheme, const QString& address) {
        return QStringLiteral("<a href=\"%1%2\">%2</a>").arg(scheme, address.toHtmlEscaped());
    };
    if (url.startsWith(QLatin1String("http")))
        lines << link(QString(), url);
    const QString email = text(maker.getManufacturerEmail(true));
    if (!email.isEmpty())
        lines << (email.contains(QLatin1Char('@')) ? link(QStringLiteral("mailto:"), email)
                                                   : email.toHtmlEscaped());
    const QString phone = text(maker.getManufacturerPhoneNumber(true));
    if (!phone.isEmpty())
        lines << DetailsPane::tr("Phone: %1").arg(phone.toHtmlEscaped());
    const QString fax = text(maker.getManufacturerFaxNumber(true));
    if (!fax.isEmpty())
        lines << DetailsPane::tr("Fax: %1").arg(fax.toHtmlEscaped());
    if (lines.isEmpty())
        return {};
    // What looks like an address runs from left to right in every language, but stands where the others do.
    const bool isMirrored = QGuiApplication::layoutDirection() == Qt::RightToLeft;
    return QStringLiteral("<div align=\"%1\">%2</div>")
        .arg(isMirrored ? QStringLiteral("right") : QStringLiteral("left"),
             lines.join(QStringLiteral("<br>")));
}

} // namespace

/// What was read of an item off the interface thread.
struct DetailsPane::Found
{
    CatalogDatabase::Details details;
    QImage picture;
    QString problem;
};

DetailsPane::DetailsPane(QWidget* parent) : QScrollArea(parent)
{
    mPool.setMaxThreadCount(1);
    setObjectName(QStringLiteral("detailsPane"));
    setAccessibleName(tr("Details of the chosen item"));
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setMinimumWidth(kLeastWidth);

    auto* content = new QWidget;
    auto* layout = new QFormLayout(content);
    mRows = layout;
    layout->setRowWrapPolicy(QFormLayout::WrapLongRows);
    layout->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    layout->setLabelAlignment(Qt::AlignTop);
    mTitle = new QLabel;
    mTitle->setObjectName(QStringLiteral("detailsTitle"));
    mTitle->setTextFormat(Qt::PlainText);
    mTitle->setWordWrap(true);
    QFont font = mTitle->font();
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * 1.2);
    mTitle->setFont(font);
    layout->addRow(mTitle);
    mPicture = new QLabel;
    mPicture->setObjectName(QStringLiteral("detailsPicture"));
    mPicture->setAccessibleName(tr("Picture of the item"));
    layout->addRow(mPicture);
    mCatalog = addRow(*layout, tr("Catalog:"), QStringLiteral("detailsCatalog"));
    mPaneName = addRow(*layout, tr("Selection name:"), QStringLiteral("detailsPaneName"));
    mStyle = addRow(*layout, tr("Style:"), QStringLiteral("detailsStyle"));
    mMaker = addRow(*layout, tr("Manufacturer:"), QStringLiteral("detailsManufacturer"));
    mContact = addRow(*layout, tr("Contact:"), QStringLiteral("detailsContact"));
    mContact->setTextFormat(Qt::RichText);
    mContact->setOpenExternalLinks(true);
    mContact->setTextInteractionFlags(Qt::TextBrowserInteraction);
    mLogo = new QLabel;
    mLogo->setObjectName(QStringLiteral("detailsLogo"));
    mLogo->setAccessibleName(tr("Logo of the manufacturer"));
    layout->addRow(mLogo);
    setWidget(content);
    showChosen();
}

DetailsPane::~DetailsPane()
{
    mPool.clear();
    mPool.waitForDone();
}

QLabel* DetailsPane::addRow(QFormLayout& layout, const QString& title, const QString& objectName)
{
    auto* value = new QLabel;
    value->setObjectName(objectName);
    value->setTextFormat(Qt::PlainText);
    value->setWordWrap(true);
    value->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    layout.addRow(title, value);
    return value;
}

void DetailsPane::clear(const QString& title)
{
    mTitle->setText(title);
    for (QLabel* label : {mPicture, mLogo})
        label->clear();
    for (QLabel* label : {mCatalog, mPaneName, mStyle, mMaker, mContact})
        setRow(label, QString());
}

/// A row without a value is not shown.
void DetailsPane::setRow(QLabel* value, const QString& text)
{
    value->setText(text);
    value->setVisible(!text.isEmpty());
    mRows->labelForField(value)->setVisible(!text.isEmpty());
}

void DetailsPane::showChosen()
{
    const Library::TreeItemData item = Library::Chooser::get()->getData();
    if (item.getId() < 0) {
        clear(tr("Nothing is chosen"));
        return;
    }
    clear(text(item.getItemName()));
    setRow(mCatalog, text(item.getDatabasePath().stem().toNativeString()));
    setRow(mPaneName, text(item.getSelectionPaneName()));
    const fileString& database = item.getDatabasePath();
    const long long id = item.getId();
    Background::run(
        mPool, this,
        [database, id] {
            Found found;
            try {
                found.details = CatalogDatabase(database).details(id);
                found.picture = QImage::fromData(found.details.picture);
            } catch (const std::exception& error) {
                found.problem = QString::fromUtf8(error.what());
            }
            return found;
        },
        [this, id](const Found& found) { showFound(id, found); });
}

void DetailsPane::showFound(long long item, const Found& found)
{
    if (Library::Chooser::get()->getData().getId() != item)
        return; // the user has gone on
    if (!found.problem.isEmpty()) {
        setRow(mStyle, tr("Cannot be read: %1").arg(found.problem));
        return;
    }
    if (!found.picture.isNull())
        mPicture->setPixmap(fitting(found.picture, kPictureSide));
    else if (!found.details.picture.isEmpty())
        mPicture->setText(tr("The picture is broken."));
    if (found.details.style)
        setRow(mStyle, text(ObjectStyleManager::getObjectStyleManager().getStyleName(*found.details.style)));
    if (found.details.manufacturer)
        showManufacturer(*found.details.manufacturer);
}

void DetailsPane::showManufacturer(long id)
{
    const ManufacturerManager* manager = ManufacturerManager::getManufacturerManager();
    if (!manager->manufacturerExists(id)) {
        setRow(mMaker, tr("Number %1, not in the records").arg(id));
        return;
    }
    const Manufacturer maker = manager->getManufacturer(id);
    setRow(mMaker, text(maker.getManufacturerName()));
    setRow(mContact, contactText(maker, text(maker.getManufacturerUrl())));
    const fileString logo =
        PathUtils::getObject().getManufacturerDataPath() / maker.getManufacturerLogoName();
    const QImage image(QFile::decodeName(logo.toNativeString().c_str()));
    if (!image.isNull())
        mLogo->setPixmap(fitting(image, kLogoSide));
}
