#include "OrvLibrary/UI/qtLibraryProgressPanel.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMetaObject>
#include <QMetaType>
#include <QSplitter>

#include "OrvLibrary/host/StringUtils.h"

namespace {

// Made when it is first used: by then the host has installed its texts.
const QString& translatedObjectName()
{
    static const QString name = StringUtils::toQString(xl8("LibraryProgressPanel"));
    return name;
}

void registerArgumentTypes()
{
    qRegisterMetaType<std::string>("std::string");
    qRegisterMetaType<size_t>("size_t");
    qRegisterMetaType<ProgressDisplayType>("ProgressDisplayType");
}

} // namespace

LibraryProgressPanel::LibraryProgressPanel(QWidget* parent)
    : QProgressDialog(parent, Qt::WindowFlags()),
      mProgressText(new ProgressText(this)),
      mGauge(new ProgressGauge(this, *mProgressText)),
      mLabelContainer(new QLabel),
      mCaptionLabel(new QLabel),
      mRangeLabel(new QLabel)
{
    registerArgumentTypes();
    setLabel(mLabelContainer);
    setBar(mGauge);
    setCancelButton(nullptr);
    setObjectName(translatedObjectName());
    layOutLabels();
}

LibraryProgressPanel::~LibraryProgressPanel() = default;

LibraryProgressPanel* LibraryProgressPanel::create(QWidget* parent)
{
    auto* splitter = parent ? parent->findChild<QSplitter*>("libMainSplitter") : nullptr;
    auto* panel = new LibraryProgressPanel(parent);
    if (!splitter)
        return panel;
    panel->reserveTwoLines();
    panel->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    panel->setFixedHeight(panel->sizeHint().height());
    splitter->addWidget(panel);
    splitter->setCollapsible(splitter->indexOf(panel), false);
    return panel;
}

QString LibraryProgressPanel::label()
{
    return QStringLiteral("ProgressPanels");
}

void LibraryProgressPanel::layOutLabels()
{
    mLabelContainer->setText("\n");
    mLabelContainer->setContentsMargins(0, 0, 0, 0);
    auto* layout = new QHBoxLayout;
    layout->addWidget(mCaptionLabel, 0, Qt::AlignLeft);
    layout->addWidget(mRangeLabel, 0, Qt::AlignRight);
    for (QLabel* label : {mCaptionLabel, mRangeLabel}) {
        label->setContentsMargins(0, 0, 0, 0);
        // Captions contain file names from a server, so markup in them must not be interpreted.
        label->setTextFormat(Qt::PlainText);
    }
    mLabelContainer->setLayout(layout);
    layout->setContentsMargins(0, 0, 0, 0);
}

void LibraryProgressPanel::reserveTwoLines()
{
    setProgressLabelText("\n");
    setProgressRangeText("\n");
}

// Marks the widget for repainting instead of painting it now, because a worker may send thousands of texts
// before the next frame.
void LibraryProgressPanel::setProgressLabelText(QString labelStr)
{
    mCaptionLabel->setText(labelStr);
    mLabelContainer->update();
}

void LibraryProgressPanel::setProgressRangeText(QString rangeStr)
{
    mRangeLabel->setText(rangeStr);
    mLabelContainer->update();
}

void LibraryProgressPanel::onUpdateInGauge()
{
    if (mGauge)
        QMetaObject::invokeMethod(mGauge, "onUpdate", Qt::QueuedConnection);
}

void LibraryProgressPanel::onSetValueInGauge(size_t val)
{
    onSetValueInGauge(numeric_cast<int>(val));
}

void LibraryProgressPanel::onSetValueInGauge(int val)
{
    passOn("onSetValue", val);
}

void LibraryProgressPanel::onSetRangeInGauge(size_t val)
{
    onSetRangeInGauge(numeric_cast<int>(val));
}

void LibraryProgressPanel::onSetRangeInGauge(int val)
{
    passOn("onSetRange", val);
}

// Deliberate: the text gets the value twice, from the gauge and from here, because it must be right even
// without a gauge.
// Kept by: LibraryProgressPanelTest.eachValueReachesTheTextTwiceAndEachRangeThrice
void LibraryProgressPanel::passOn(const char* slot, int val)
{
    if (mGauge)
        QMetaObject::invokeMethod(mGauge, slot, Qt::QueuedConnection, Q_ARG(int, val));
    if (mProgressText)
        QMetaObject::invokeMethod(mProgressText, slot, Qt::QueuedConnection, Q_ARG(int, val));
}

void LibraryProgressPanel::onSetText(std::string text)
{
    if (mProgressText)
        QMetaObject::invokeMethod(mProgressText, "onSetText", Qt::QueuedConnection, Q_ARG(std::string, text));
}

void LibraryProgressPanel::onSetUnits(std::string unit_string)
{
    if (mProgressText)
        mProgressText->setUnitString(unit_string);
}

void LibraryProgressPanel::closeEvent(QCloseEvent* e)
{
    QProgressDialog::closeEvent(e);
    deleteLater();
}
