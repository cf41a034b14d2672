// The host's services throw. The operations of the manager must still end normally, with the old table or the
// new one.
#include "OrvLibrary/Manufacturer/ManufacturerManager.h"

#include "tests/Manufacturer/ManufacturerFixture.h"
#include "tests/support/FaultServer.h"
#include "tests/support/ForwardingServices.h"

using test::Fault;
using test::Service;

namespace {

using ManufacturerManagerFault = test::ManufacturerFixture;

constexpr char kOld[] =
    R"({"Last_Modified": "20200101T000000", "Manufacturer": {"Id": 1, "Name": "old", "Last_Modified": "20200101T000000"}})";
constexpr char kNew[] =
    R"({"Last_Modified": "20210101T000000", "Manufacturer": {"Id": 1, "Name": "new", "Last_Modified": "20210101T000000", "Logo": "l.png"}})";

} // namespace

TEST_F(ManufacturerManagerFault, aFolderThatIsNotToldIsAnEmptyTable)
{
    writeDataFile(kOld);
    manager().loadManufacturers();
    ASSERT_EQ(names(), "1:old ");
    test::ForwardingServices services;
    services.calls().planFault(Service::Paths, 1, Fault::Throw, test::ServiceCalls::Repeat::ForEver);
    EXPECT_NO_THROW(manager().loadManufacturers());
    EXPECT_EQ(names(), "");
}

TEST_F(ManufacturerManagerFault, aRefreshEndsQuietlyWhicheverCallThrows)
{
    test::FaultServer server;
    server.on("/data", test::FaultReply::ok(kNew));
    server.on("/logo?x=1&logo-path=l.png", test::FaultReply::ok("picture"));
    const auto refresh = [&] {
        manager().checkForManufacturerUpdates(server.url("/data"), server.url("/logo?x=1"));
    };
    // In the first round nothing throws; it counts the calls.
    std::size_t calls = 0;
    for (std::size_t call = 0; call <= calls; ++call) {
        SCOPED_TRACE(call);
        writeDataFile(kOld);
        manager().loadManufacturers();
        test::ForwardingServices services;
        if (call > 0)
            services.calls().planFault(call, Fault::Throw);
        EXPECT_NO_THROW(refresh());
        if (call == 0)
            calls = services.calls().total();
        EXPECT_EQ(services.calls().faults(), call > 0 ? 1U : 0U);
        const std::string after = names();
        EXPECT_TRUE(after == "1:new " || (after == "1:old " && call > 0)) << after;
    }
    EXPECT_GT(calls, 3U);
}
