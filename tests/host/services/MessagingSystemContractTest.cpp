#include <mutex>
#include <thread>
#include <vector>

#include <QString>

#include "tests/host/ServiceContract.h"

namespace {

std::mutex loggedMutex;
std::vector<std::string> logged;

void keepMessage(QtMsgType, const QMessageLogContext&, const QString& message)
{
    const std::lock_guard<std::mutex> guard(loggedMutex);
    logged.push_back(message.toStdString());
}

class MessagingSystemContract : public test::ServiceContract
{
protected:
    MessagingSystemContract() : mFormerHandler(qInstallMessageHandler(keepMessage)) { logged.clear(); }
    ~MessagingSystemContract() override { qInstallMessageHandler(mFormerHandler); }

    static void send(const error::Trait& trait, int number, const std::string& argument)
    {
        error::MessagingSystem::control().notify(__FILE__, __LINE__, trait, number, argument, "", "");
    }

private:
    QtMessageHandler mFormerHandler;
};

TEST_P(MessagingSystemContract, recordsEveryKindOfMessageWithItsArgument)
{
    send(error::ErrorMinimalTrait(), error::Message::kCannotWriteDataFile, "/some/path.json");
    send(error::WarningTrait(), error::Message::kPreferenceType, "the whole text");
    ASSERT_EQ(logged.size(), 2u);
    EXPECT_NE(logged[0].find("/some/path.json"), std::string::npos) << logged[0];
    EXPECT_NE(logged[1].find("the whole text"), std::string::npos) << logged[1];
    expectCalls(test::Service::Messages);
}

TEST_P(MessagingSystemContract, showsAnInformationAtMostOncePerRun)
{
    for (int i = 0; i < 3; ++i)
        send(error::InformationOnceTrait(), error::Message::kManufacturerMaterial, "");
    EXPECT_LE(logged.size(), 1u);
}

TEST_P(MessagingSystemContract, doesNotMindAnUnknownNumber)
{
    EXPECT_NO_THROW(send(error::WarningTrait(), -1, "argument"));
    EXPECT_EQ(logged.size(), 1u);
}

TEST_P(MessagingSystemContract, mayBeCalledFromEveryThread)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([] {
            for (int round = 0; round < 25; ++round)
                send(error::WarningTrait(), error::Message::kPreferenceType, "text");
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(logged.size(), 100u);
}

ORV_TEST_IMPLEMENTATIONS(MessagingSystemContract);

} // namespace
