#include "tests/soak/SoakService.h"

#include <new>
#include <stdexcept>

#include <QByteArray>
#include <QCryptographicHash>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/ArchiveBuilder.h"
#include "tests/support/FaultServer.h"

namespace test {

namespace {

constexpr std::size_t kRequestsPerFault = 10;
const char kIndex[] = "Orv_Core_Content_Index.txt";

std::string packed(unsigned seed)
{
    ArchiveBuilder builder;
    builder.add("inside.orvlib", sampleBytes(6000, seed));
    builder.add("textures/brass.png", sampleBytes(3000, seed + 1));
    return builder.bytes();
}

std::string tagOf(const std::string& body)
{
    const QByteArray hash =
        QCryptographicHash::hash(QByteArray::fromStdString(body), QCryptographicHash::Sha1);
    return "\"" + hash.toHex().toStdString() + "\"";
}

std::string nameIn(const std::string& target)
{
    const std::string key = "&library=";
    const std::size_t at = target.find(key);
    if (at == std::string::npos)
        return {};
    const std::size_t start = at + key.size();
    const std::string text = target.substr(start, target.find("&product=", start) - start);
    return QByteArray::fromPercentEncoding(QByteArray::fromStdString(text)).toStdString();
}

FaultReply soundAnswer(const FaultRequest& request, const std::map<std::string, std::string>& content)
{
    const auto found = content.find(nameIn(request.target));
    if (found == content.end())
        return FaultReply::status(404, "There is no such file.");
    return FaultReply::file(request, found->second, tagOf(found->second));
}

} // namespace

std::map<std::string, std::string> soakContent(int version)
{
    const unsigned seed = 100U * static_cast<unsigned>(version);
    std::map<std::string, std::string> content;
    content[kIndex] = "Doors.orvlib\nT\xc3\xbcr 2.orvlib\nSame.orvlib\nTextures.zip\n";
    content["Doors.orvlib"] = sampleBytes(20'000, seed + 1);
    content["T\xc3\xbcr 2.orvlib"] = sampleBytes(8'000, seed + 2);
    content["Same.orvlib"] = sampleBytes(5'000, 3);
    content["Textures.zip"] = packed(seed + 4);
    content["Lamps.orvlibz"] = packed(seed + 6);
    content["Acme.orvlibz"] = packed(seed + 8);
    return content;
}

SoakService::SoakService()
{
    void* const memory =
        mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    int pipeEnds[2];
    if (memory == MAP_FAILED || pipe(pipeEnds) != 0)
        throw std::runtime_error("no service for the soak");
    mShared = new (memory) Shared;
    mChild = fork();
    if (mChild == 0) {
        close(pipeEnds[1]);
        serve(pipeEnds[0]);
    }
    close(pipeEnds[0]);
    mEnd = pipeEnds[1];
    while (mShared->port == 0 && waitpid(mChild, nullptr, WNOHANG) == 0)
        usleep(1000);
}

SoakService::~SoakService()
{
    close(mEnd);
    waitpid(mChild, nullptr, 0);
    munmap(mShared, sizeof(Shared));
}

std::string SoakService::redirect() const
{
    return "http://127.0.0.1:" + std::to_string(mShared->port) + "/redirect";
}

void SoakService::serve(int end)
{
    {
        const std::map<std::string, std::string> versions[] = {soakContent(0), soakContent(1)};
        FaultServer server;
        server.on("/redirect", FaultReply::redirect("/content?key=1"));
        server.otherwise([&](const FaultRequest& request) {
            const std::size_t number = ++mShared->requests;
            const FaultReply sound = soundAnswer(request, versions[mShared->version]);
            // An update logs no line for a failed header request or redirect, so these never fail.
            const bool isFile = request.method == "GET" && !nameIn(request.target).empty();
            if (!mShared->isFaulty || !isFile || mShared->faults * kRequestsPerFault > number)
                return sound;
            const std::size_t fault = ++mShared->faults;
            if (fault % 2 == 0)
                return FaultReply::status(503, "Later.");
            return FaultReply(sound).cutBodyAt(5);
        });
        mShared->port = server.port();
        char byte;
        while (read(end, &byte, 1) > 0) {
        }
    }
    _exit(0);
}

} // namespace test
