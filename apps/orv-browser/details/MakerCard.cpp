#include "apps/orv-browser/details/MakerCard.h"

#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QLabel>
#include <QPixmap>
#include <QPushButton>
#include <QVBoxLayout>

#include "OrvLibrary/Manufacturer/ManufacturerManager.h"
#include "OrvLibrary/host/PathUtils.h"
#include "apps/orv-browser/gallery/ItemPicture.h"
#include "apps/orv-browser/models/Names.h"

namespace {

constexpr int kLogoSide = 64;

QString text(const std::string& utf8)
{
    return QString::fromStdString(utf8);
}

QString link(const QString& scheme, const QString& address)
{
    return QStringLiteral("<a href=\"%1%2\">%2</a>").arg(scheme, address.toHtmlEscaped());
}

/// Web and mail addresses are shown as links, everything else as plain text, without interpreting markup. The
/// default text for missing contacts ("Please ask your dealer.") is shown only once.
QString contactText(const Manufacturer& maker, const QString& defaultText)
{
    QStringList lines;
    const QString url = text(maker.getManufacturerUrl());
    const QString email = text(maker.getManufacturerEmail(false));
    const QString phone = text(maker.getManufacturerPhoneNumber(false));
    const QString fax = text(maker.getManufacturerFaxNumber(false));
    const bool isDefaulted = text(maker.getManufacturerEmail(true)) != email ||
                             text(maker.getManufacturerPhoneNumber(true)) != phone ||
                             text(maker.getManufacturerFaxNumber(true)) != fax;
    const auto isOwn = [](const QString& resolved, const QString& field) {
        return resolved == field && !field.isEmpty();
    };
    if (url.startsWith(QLatin1String("http")))
        lines << link(QString(), url);
    if (isOwn(text(maker.getManufacturerEmail(true)), email))
        lines << (email.contains(QLatin1Char('@')) ? link(QStringLiteral("mailto:"), email)
                                                   : email.toHtmlEscaped());
    if (isOwn(text(maker.getManufacturerPhoneNumber(true)), phone))
        lines << MakerCard::tr("Phone: %1").arg(phone.toHtmlEscaped());
    if (isOwn(text(maker.getManufacturerFaxNumber(true)), fax))
        lines << MakerCard::tr("Fax: %1").arg(fax.toHtmlEscaped());
    if (isDefaulted && !defaultText.isEmpty())
        lines << defaultText.toHtmlEscaped();
    if (lines.isEmpty())
        return {};
    // Text that looks like an address is written from left to right in every language, but aligned like the
    // others.
    const bool isMirrored = QGuiApplication::layoutDirection() == Qt::RightToLeft;
    return QStringLiteral("<div align=\"%1\">%2</div>")
        .arg(isMirrored ? QStringLiteral("right") : QStringLiteral("left"),
             lines.join(QStringLiteral("<br>")));
}

QPixmap logoOf(const Manufacturer& maker, double ratio)
{
    const fileString path =
        PathUtils::getObject().getManufacturerDataPath() / maker.getManufacturerLogoName();
    const QImage image(QFile::decodeName(path.toNativeString().c_str()));
    if (image.isNull())
        return {};
    const QSize size = ItemPicture::shownSize(image.size(), {kLogoSide, kLogoSide});
    QPixmap pixmap =
        QPixmap::fromImage(image.scaled(size * ratio, Qt::KeepAspectRatio, Qt::SmoothTransformation));
    pixmap.setDevicePixelRatio(ratio);
    return pixmap;
}

} // namespace

MakerCard::MakerCard(QWidget* parent)
    : QWidget(parent), mLogo(new QLabel), mName(new QLabel), mContact(new QLabel), mAll(new QPushButton)
{
    mLogo->setObjectName(QStringLiteral("detailsLogo"));
    mLogo->setAccessibleName(tr("Logo of the manufacturer"));
    mName->setObjectName(QStringLiteral("detailsMaker"));
    mName->setTextFormat(Qt::PlainText);
    mName->setWordWrap(true);
    QFont font = mName->font();
    font.setBold(true);
    mName->setFont(font);
    mContact->setObjectName(QStringLiteral("detailsContact"));
    mContact->setTextFormat(Qt::RichText);
    mContact->setWordWrap(true);
    mContact->setOpenExternalLinks(true);
    mContact->setTextInteractionFlags(Qt::TextBrowserInteraction);
    mAll->setObjectName(QStringLiteral("showAllOfMaker"));
    mAll->setAccessibleName(tr("Show all items of the manufacturer"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    for (QWidget* widget :
         {static_cast<QWidget*>(mLogo), static_cast<QWidget*>(mName), static_cast<QWidget*>(mContact)})
        layout->addWidget(widget);
    layout->addWidget(mAll, 0, Qt::AlignLeft);
    connect(mAll, &QPushButton::clicked, this, [this] { Q_EMIT allAsked(mMaker); });
}

void MakerCard::show(std::int32_t maker, int count)
{
    mMaker = maker;
    setVisible(maker >= 0);
    if (maker < 0)
        return;
    mName->setText(Names::maker(maker));
    mAll->setText(count < 0 ? tr("Show all") : tr("Show all %Ln", nullptr, count));
    ManufacturerManager* manager = ManufacturerManager::getManufacturerManager();
    const bool isKnown = manager->manufacturerExists(maker);
    const QString contact =
        isKnown ? contactText(manager->getManufacturer(maker), text(manager->getDefaultText())) : QString();
    const QPixmap logo = isKnown ? logoOf(manager->getManufacturer(maker), devicePixelRatioF()) : QPixmap();
    mContact->setText(contact);
    mContact->setVisible(!contact.isEmpty());
    mLogo->setPixmap(logo);
    mLogo->setVisible(!logo.isNull());
}
