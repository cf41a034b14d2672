#include "apps/orv-browser/details/MakerCard.h"

#include <QGuiApplication>
#include <QImage>
#include <QLabel>
#include <QPainter>
#include <QPixmap>
#include <QPushButton>
#include <QVBoxLayout>

#include "OrvLibrary/Manufacturer/ManufacturerManager.h"
#include "apps/orv-browser/details/DetailRows.h"
#include "apps/orv-browser/gallery/ItemPicture.h"
#include "apps/orv-browser/models/Names.h"
#include "apps/orv-browser/places/MakerLogos.h"

namespace {

constexpr int kLogoWidth = 160; // at most; many logos are a word
constexpr int kLogoHeight = 64;
constexpr int kMargin = 6; // of the plate around it

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

/// The logo on a white plate, because logos are made for white, at the density of the screen.
QPixmap plateOf(const QImage& logo, double ratio)
{
    const QSize size = ItemPicture::shownSize(logo.size(), {kLogoWidth, kLogoHeight}).expandedTo({1, 1});
    QPixmap pixmap((size + QSize(2 * kMargin, 2 * kMargin)) * ratio);
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    painter.drawRoundedRect(QRect(0, 0, size.width() + 2 * kMargin, size.height() + 2 * kMargin), kMargin,
                            kMargin);
    painter.drawImage(QRect(QPoint(kMargin, kMargin), size),
                      logo.scaled(size * ratio, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    return pixmap;
}

} // namespace

MakerCard::MakerCard(MakerLogos& logos, QWidget* parent)
    : QWidget(parent),
      mLogos(logos),
      mLogo(new QLabel),
      mName(new QLabel),
      mContact(new QLabel),
      mAll(new QPushButton)
{
    mLogo->setObjectName(QStringLiteral("detailsLogo"));
    mLogo->setAccessibleName(tr("Logo of the manufacturer"));
    mName->setObjectName(QStringLiteral("detailsMaker"));
    mName->setTextFormat(Qt::PlainText);
    mName->setWordWrap(true);
    DetailRows::alignToStart(*mName);
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
    connect(&mLogos, &MakerLogos::changed, this, &MakerCard::showLogo);
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
    mContact->setText(contact);
    mContact->setVisible(!contact.isEmpty());
    showLogo();
}

void MakerCard::showLogo()
{
    const QImage logo = mMaker < 0 ? QImage() : mLogos.image(mMaker);
    mLogo->setPixmap(logo.isNull() ? QPixmap() : plateOf(logo, devicePixelRatioF()));
    mLogo->setVisible(!logo.isNull());
}
