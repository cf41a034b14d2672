#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "OrvHost/health/Doctor.h"
#include "tests/orv-host/HostedTest.h"
#include "tests/support/FaultServer.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/StubServices.h"

namespace test {

/// A catalog service with sound answers, which a test replaces. It records the requests.
class SoundService : public DeadCurl
{
public:
    /// The address of the redirect.
    std::string url;
    std::string endpoint = "http://service.example/c?";
    std::string index = "Doors.orvlib\nTextures.zip\nreadme.txt\n";
    Answer redirectAnswer{200, "HTTP/1.1 200 OK\r\n\r\n", "", ""};
    Answer certificateAnswer{200, "HTTP/1.1 200 OK\r\n\r\n", "", ""};
    Answer indexAnswer{200, "HTTP/1.1 200 OK\r\n\r\n", "", ""};
    Answer headerAnswer{200, "HTTP/1.1 200 OK\r\nETag: \"new\"\r\nContent-Length: 4\r\n\r\n", "", ""};
    bool isBodyWhole = true;
    std::string bodyReason;
    int bodyNumber = 0;
    std::vector<std::string> asked;
    fileString target;      ///< of the last download
    std::vector<int> stops; ///< what the download's progress function returned for 4095 and 4096 bytes

    bool downloadable(const std::string& address) override { return address.rfind("http", 0) == 0; }
    std::string urlAfterRedirects(const std::string& address) override
    {
        return answered("redirect " + address, redirectAnswer) ? endpoint : std::string();
    }
    bool browseURL(const std::string& address, const std::vector<std::string>&, std::string& body,
                   bool followRedirects, int timeoutSeconds) override
    {
        body = index;
        return answered((followRedirects ? "page " : "page itself ") + address + " " +
                            std::to_string(timeoutSeconds),
                        indexAnswer);
    }
    bool getURLHeader(const std::string& address, const std::vector<std::string>& lines, std::string& header,
                      std::int64_t& status) override
    {
        const Answer& answer = address == url ? certificateAnswer : headerAnswer;
        header = answer.headerText;
        status = answer.status;
        return answered("header " + address + (lines.empty() ? "" : " " + lines[0]), answer) || status != 0;
    }
    using DeadCurl::download_to_location;
    bool download_to_location(const std::string& address, const fileString& file,
                              const std::vector<std::string>&, void* context, ProgressFunction progress,
                              std::string& reason, int& errorNumber) override
    {
        asked.push_back("body " + address);
        target = file;
        writeFile(file.toNativeString(), "door");
        stops = {progress(context, 0, 4095, 0, 0), progress(context, 0, 4096, 0, 0)};
        if (!isBodyWhole) {
            reason = bodyReason;
            errorNumber = bodyNumber;
        }
        return isBodyWhole;
    }
    Answer lastAnswer() override { return mLast; }

private:
    bool answered(const std::string& request, const Answer& answer)
    {
        asked.push_back(request);
        mLast = answer;
        return answer.status == 200;
    }

    Answer mLast;
};

/// A doctor on a fresh root, with a server that only accepts connections, and `SoundService` for the
/// requests. The environment names no proxy.
class DoctorFixture : public HostedTest
{
protected:
    DoctorFixture()
    {
        use("http");
        subject.root = host.root();
        subject.values.product = "P";
        subject.values.productVersion = "1";
        subject.indexName = "Index.txt";
    }

    std::string port() const { return std::to_string(server.port()); }
    /// Uses the server with this scheme.
    void use(const std::string& scheme)
    {
        service.url = scheme + "://127.0.0.1:" + port() + "/redirect";
        subject.values.url = service.url;
    }
    std::vector<OrvHost::Doctor::Step> examine() const { return OrvHost::Doctor(subject).examine(); }
    OrvHost::Doctor::Step step(const std::string& name) const
    {
        const auto steps = examine();
        const auto found =
            std::find_if(steps.begin(), steps.end(), [&](const auto& one) { return one.name == name; });
        EXPECT_NE(found, steps.end()) << name;
        return found == steps.end() ? OrvHost::Doctor::Step() : *found;
    }
    /// The text of a good step.
    std::string good(const std::string& name) const
    {
        const OrvHost::Doctor::Step one = step(name);
        EXPECT_EQ(one.ok, true) << name << ": " << one.text;
        EXPECT_EQ(one.advice, "");
        return one.text;
    }
    /// Text and advice of a step that failed, with " | " in between.
    std::string bad(const std::string& name) const
    {
        const OrvHost::Doctor::Step one = step(name);
        EXPECT_EQ(one.ok, false) << name << ": " << one.text;
        return one.text + " | " + one.advice;
    }

    OrvHost::Doctor::Subject subject;
    FaultServer server;
    SoundService service;

private:
    const ScopedEnvironment mNone[8] = {
        {"http_proxy", nullptr}, {"HTTP_PROXY", nullptr}, {"https_proxy", nullptr}, {"HTTPS_PROXY", nullptr},
        {"all_proxy", nullptr},  {"ALL_PROXY", nullptr},  {"no_proxy", nullptr},    {"NO_PROXY", nullptr}};
};

} // namespace test
