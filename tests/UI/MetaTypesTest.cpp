// A host may register the meta types of queued calls itself, before or after the library does.
#include <string>

#include <QCoreApplication>
#include <QMetaType>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include "OrvLibrary/UI/qtLibraryProgressPanel.h"
#include "tests/UI/UiHost.h"

Q_DECLARE_METATYPE(std::string)
Q_DECLARE_METATYPE(ProgressDisplayType)

TEST(MetaTypes, panelRegistersWhatItsSlotsTake)
{
    const test::UiHost host;
    const LibraryProgressPanel panel(nullptr);
    for (const char* name : {"std::string", "size_t", "ProgressDisplayType", "int"})
        EXPECT_NE(QMetaType::type(name), QMetaType::UnknownType) << name;
    EXPECT_EQ(QMetaType::sizeOf(QMetaType::type("size_t")), static_cast<int>(sizeof(size_t)));
    EXPECT_EQ(QMetaType::sizeOf(QMetaType::type("std::string")), static_cast<int>(sizeof(std::string)));
}

TEST(MetaTypes, hostThatDeclaresThemSharesTheirIds)
{
    const test::UiHost host;
    const LibraryProgressPanel panel(nullptr);
    EXPECT_EQ(qMetaTypeId<std::string>(), QMetaType::type("std::string"));
    EXPECT_EQ(qMetaTypeId<ProgressDisplayType>(), QMetaType::type("ProgressDisplayType"));
    EXPECT_EQ(QVariant::fromValue(std::string("text")).value<std::string>(), "text");
}

TEST(MetaTypes, queuedCallsCarryTextsWhenTheHostDeclaredThemFirst)
{
    qRegisterMetaType<std::string>("std::string");
    const test::UiHost host;
    LibraryProgressPanel panel(nullptr);
    auto* text = panel.findChild<ProgressText*>();
    QSignalSpy captions(text, &ProgressText::setLabelText);
    ASSERT_TRUE(QMetaObject::invokeMethod(&panel, "onSetText", Qt::QueuedConnection,
                                          Q_ARG(std::string, std::string("caption"))));
    for (int hop = 0; hop < 3; ++hop)
        QCoreApplication::sendPostedEvents();
    ASSERT_EQ(captions.count(), 1);
    EXPECT_EQ(captions.front().front().toString(), "caption");
}
