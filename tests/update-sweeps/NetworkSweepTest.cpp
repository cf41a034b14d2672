// Everything that a broken or hostile web service can do to each kind of request of an update.
#include <QByteArray>

#include "tests/update-sweeps/DistanceSweep.h"

using test::FaultReply;
using test::FaultRequest;
using test::RequestKind;
using test::SoundAnswer;

namespace {

struct Behaviour
{
    const char* name;
    test::UpdateWorld::Spoiler spoiler;
    /// The service sends other bytes as if they were the file; nothing can tell.
    bool lies = false;
};

SoundAnswer with(SoundAnswer answer, const std::vector<std::string>& headerLines)
{
    answer.headerLines.insert(answer.headerLines.end(), headerLines.begin(), headerLines.end());
    return answer;
}

/// The sound answer with its `Content-Length` replaced.
FaultReply withLength(const SoundAnswer& sound, const FaultRequest& request, const std::string& lengthLines)
{
    std::string bytes = sound.bytes(request.method);
    const std::size_t start = bytes.find("Content-Length: ");
    bytes.replace(start, bytes.find("\r\n", start) + 2 - start, lengthLines);
    return FaultReply::raw(bytes).close();
}

FaultReply withTag(const SoundAnswer& sound, const std::string& tagLine)
{
    SoundAnswer answer = sound;
    answer.headerLines = {tagLine};
    return answer.reply();
}

/// A chain of `hops` redirects to the address itself, told apart by a mark at the end.
FaultReply redirectChain(const SoundAnswer& sound, const FaultRequest& request, int hops)
{
    const std::string mark = "&hops=";
    const std::size_t at = request.target.find(mark);
    const int done = at == std::string::npos ? 0 : std::stoi(request.target.substr(at + mark.size()));
    if (done == hops)
        return sound.reply();
    const std::string next = request.target.substr(0, at) + mark + std::to_string(done + 1);
    return FaultReply::redirect(request.path() == "/redirect" ? "/redirect?" + mark + std::to_string(done + 1)
                                                              : next);
}

std::string gzipMagic(const std::string& body)
{
    return "\x1f\x8b\x08" + body;
}

std::vector<Behaviour> endings()
{
    using S = const SoundAnswer&;
    using R = const FaultRequest&;
    return {
        {"silence", [](S, R) { return FaultReply::silence(); }},
        {"closed without an answer", [](S, R) { return FaultReply::raw("").close(); }},
        {"reset without an answer", [](S, R) { return FaultReply::raw("").reset(); }},
        {"cut in the status line", [](S s, R) { return s.reply().cutAt(7); }},
        {"cut after the status line", [](S s, R) { return s.reply().cutAt(17); }},
        {"cut in the headers", [](S s, R) { return s.reply().cutAt(s.reply().headSize() / 2); }},
        {"cut before the blank line", [](S s, R) { return s.reply().cutAt(s.reply().headSize() - 2); }},
        {"cut before the body", [](S s, R) { return s.reply().cutAt(s.reply().headSize()); }},
        {"cut after a byte of body", [](S s, R) { return s.reply().cutAt(s.reply().headSize() + 1); }},
        {"cut before the last byte", [](S s, R r) { return s.reply().cutAt(s.bytes(r.method).size() - 1); }},
        {"reset in the status line", [](S s, R) { return s.reply().cutAt(7).reset(); }},
        {"reset in the headers", [](S s, R) { return s.reply().cutAt(s.reply().headSize() / 2).reset(); }},
        {"reset in the body", [](S s, R) { return s.reply().cutAt(s.reply().headSize() + 1).reset(); }},
        {"reset after the whole answer", [](S s, R) { return s.reply().reset(); }},
        {"closed after the whole answer", [](S s, R) { return s.reply().close(); }},
        {"silent in the status line", [](S s, R) { return s.reply().silentAt(7); }},
        {"silent in the headers", [](S s, R) { return s.reply().silentAt(s.reply().headSize() / 2); }},
        {"silent before the body", [](S s, R) { return s.reply().silentAt(s.reply().headSize()); }},
        {"silent before the last byte",
         [](S s, R r) { return s.reply().silentAt(s.bytes(r.method).size() - 1); }},
        {"slow", [](S s, R) { return s.reply().trickle(200, std::chrono::milliseconds(1)); }},
        {"late", [](S s, R) { return s.reply().pauseAt(0, std::chrono::milliseconds(40)); }},
    };
}

std::vector<Behaviour> lengths()
{
    using S = const SoundAnswer&;
    using R = const FaultRequest&;
    std::vector<Behaviour> all{
        {"length too large",
         [](S s, R r) {
             return withLength(s, r, "Content-Length: " + std::to_string(s.body.size() + 10) + "\r\n");
         }},
        {"length too small", [](S s, R r) { return withLength(s, r, "Content-Length: 3\r\n"); }, true},
        {"no length", [](S s, R r) { return withLength(s, r, ""); }},
        {"length that is no number", [](S s, R r) { return withLength(s, r, "Content-Length: many\r\n"); }},
        {"empty length", [](S s, R r) { return withLength(s, r, "Content-Length:\r\n"); }},
        {"negative length", [](S s, R r) { return withLength(s, r, "Content-Length: -1\r\n"); }},
        {"two lengths",
         [](S s, R r) { return withLength(s, r, "Content-Length: 1200\r\nContent-Length: 1100\r\n"); }, true},
        {"length of 2^63",
         [](S s, R r) { return withLength(s, r, "Content-Length: 9223372036854775808\r\n"); }},
        {"length beyond all",
         [](S s, R r) { return withLength(s, r, "Content-Length: 1" + std::string(40, '0') + "\r\n"); }},
        {"chunked", [](S s, R) { return FaultReply::chunked({s.body}, s.headerLines); }},
        {"chunked with a wrong size",
         [](S s, R) {
             return FaultReply::raw("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nZZ\r\n" + s.body +
                                    "\r\n0\r\n\r\n");
         }},
        {"chunked without its end",
         [](S s, R) { return FaultReply::chunked({s.body}, s.headerLines).cutAt(s.body.size() + 60); }},
        {"chunked with a length too",
         [](S s, R) { return FaultReply::chunked({s.body}, with(s, {"Content-Length: 12"}).headerLines); }},
        {"body until the connection ends",
         [](S s, R) { return FaultReply::untilClose(s.body, s.headerLines); }},
        {"empty body", [](S s, R) { return FaultReply::status(s.status, "", s.headerLines); }},
        {"more than the length",
         [](S s, R r) { return FaultReply::raw(s.bytes(r.method) + s.body).close(); }},
    };
    return all;
}

std::vector<Behaviour> headers()
{
    using S = const SoundAnswer&;
    using R = const FaultRequest&;
    return {
        {"header line of 301 KB",
         [](S s, R) { return with(s, {"X-Long: " + std::string(308'224, 'x')}).reply(); }},
        {"10,000 header lines",
         [](S s, R) {
             return with(s, std::vector<std::string>(10'000, "X-Many: 0123456789012345678901234")).reply();
         }},
        {"header line without a colon", [](S s, R) { return with(s, {"nothing to see"}).reply(); }},
        {"NUL in a header", [](S s, R) { return with(s, {std::string("X-Nul: a\0b", 10)}).reply(); }},
        {"folded header",
         [](S s, R) {
             return with(s, {"X-Folded: a", "\tb"}).reply();
         }},
        {"line feeds alone",
         [](S s, R r) {
             QByteArray bytes = QByteArray::fromStdString(s.bytes(r.method));
             const int head = bytes.indexOf("\r\n\r\n");
             QByteArray lines = bytes.left(head + 4);
             return FaultReply::raw(lines.replace("\r\n", "\n").toStdString() +
                                    bytes.mid(head + 4).toStdString());
         }},
        {"status without a text",
         [](S s, R r) {
             const std::string bytes = s.bytes(r.method);
             return FaultReply::raw(bytes.substr(0, 12) + bytes.substr(bytes.find("\r\n")));
         }},
        {"status that is no number",
         [](S s, R r) { return FaultReply::raw("HTTP/1.1 abc" + s.bytes(r.method).substr(12)).close(); }},
        {"body without headers", [](S s, R) { return FaultReply::raw(s.body).close(); }},
        {"another protocol",
         [](S s, R r) { return FaultReply::raw("HTTP/9.9" + s.bytes(r.method).substr(8)).close(); }},
        {"random bytes",
         [](S, R) { return FaultReply::raw(std::string("\x16\x03\x01\0\xff\r\n\r\n\x80", 10)).close(); }},
        {"interim answer first",
         [](S s, R r) { return FaultReply::raw("HTTP/1.1 103 Early Hints\r\n\r\n" + s.bytes(r.method)); }},
        {"interim answers alone",
         [](S, R) {
             std::string flood;
             for (int count = 0; count < 200; ++count)
                 flood += "HTTP/1.1 100 Continue\r\n\r\n";
             return FaultReply::raw(flood).close();
         }},
        {"wrong digest",
         [](S s, R) {
             return with(s, {"Repr-Digest: sha-256=:AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA=:"}).reply();
         }},
        {"claimed compression",
         [](S s, R) {
             SoundAnswer answer = with(s, {"Content-Encoding: gzip"});
             answer.body = gzipMagic(answer.body);
             return answer.reply();
         },
         true},
        {"no tag", [](S s, R) { return withTag(s, "X-No-Tag: 1"); }},
        {"empty tag", [](S s, R) { return withTag(s, "ETag:"); }},
        {"tag of two quotes", [](S s, R) { return withTag(s, "ETag: \"\""); }},
        {"bare tag", [](S s, R) { return withTag(s, "ETag: bare"); }},
        {"weak tag", [](S s, R) { return withTag(s, "ETag: W/\"weak\""); }},
        {"tag with a colon", [](S s, R) { return withTag(s, "ETag: \"a:b\""); }},
        {"doubled tag", [](S s, R) { return withTag(s, "ETag: \"one\"\r\nETag: \"two\""); }},
        {"tag of 100 KB", [](S s, R) { return withTag(s, "ETag: \"" + std::string(100'000, 't') + "\""); }},
    };
}

std::vector<Behaviour> redirects()
{
    using S = const SoundAnswer&;
    using R = const FaultRequest&;
    return {
        {"redirect loop", [](S, R r) { return FaultReply::redirect(r.target); }},
        {"10 redirects", [](S s, R r) { return redirectChain(s, r, 10); }},
        {"11 redirects", [](S s, R r) { return redirectChain(s, r, 11); }},
        {"redirect to a local file", [](S, R) { return FaultReply::redirect("file:///etc/passwd"); }},
        {"redirect to ftp", [](S, R) { return FaultReply::redirect("ftp://127.0.0.1:1/x"); }},
        {"redirect to nowhere", [](S, R) { return FaultReply::status(302, "", {}); }},
        {"redirect to an empty address", [](S, R) { return FaultReply::redirect(""); }},
        {"redirect to nonsense", [](S, R) { return FaultReply::redirect("http://[::1"); }},
        {"redirect to a closed port", [](S, R) { return FaultReply::redirect("http://127.0.0.1:1/x?"); }},
        {"redirect to https",
         [](S, R r) { return FaultReply::redirect("https://" + r.header("Host") + "/x?"); }},
    };
}

std::vector<Behaviour> lies()
{
    using S = const SoundAnswer&;
    using R = const FaultRequest&;
    return {
        {"a page in place of the answer",
         [](S, R) { return FaultReply::ok("<html>Please sign in.</html>" + std::string(2000, ' ')); }, true},
        {"zero bytes in place of the body",
         [](S s, R) {
             SoundAnswer answer = s;
             answer.body.assign(answer.body.size(), '\0');
             return answer.reply();
         },
         true},
        {"a range in place of the whole",
         [](S s, R) {
             return FaultReply::status(206, s.body.substr(0, s.body.size() / 2),
                                       with(s, {"Content-Range: bytes 0-9/20"}).headerLines);
         }},
    };
}

std::vector<Behaviour> allBehaviours()
{
    std::vector<Behaviour> all;
    for (const auto& group : {endings(), lengths(), headers(), redirects(), lies()})
        all.insert(all.end(), group.begin(), group.end());
    return all;
}

/// One cell: a run with the spoilt service, then one without.
void expectSurvives(test::UpdateWorld& world, RequestKind kind, const Behaviour& behaviour)
{
    SCOPED_TRACE(std::string(kindName(kind)) + ": " + behaviour.name);
    world.spoil(kind, behaviour.spoiler);
    world.run();
    const bool isFile = kind == RequestKind::Body || kind == RequestKind::Archive;
    world.expectNothingLost(behaviour.lies && isFile);
    // A file that was a lie with the right tag stays until its tag changes or it is verified.
    if (!behaviour.lies || kind != RequestKind::Body)
        world.expectConverges();
}

using NetworkSweep = test::DistanceSweep;
INSTANTIATE_TEST_SUITE_P(Service, NetworkSweep, testing::Values(test::kNear, test::kFar), test::distanceName);

} // namespace

TEST_P(NetworkSweep, everyBehaviourOnEveryKindOfRequest)
{
    const std::vector<Behaviour> behaviours = allBehaviours();
    const std::vector<RequestKind>& kinds = test::spoiltKinds();
    EXPECT_GE(behaviours.size(), 60u);
    for (const std::size_t cell : test::sweepCells(behaviours.size() * kinds.size(), 100)) {
        reset();
        expectSurvives(mWorld, kinds[cell % kinds.size()], behaviours[cell / kinds.size()]);
        if (HasFatalFailure())
            return;
    }
}

TEST_P(NetworkSweep, everyReplyCutAtEveryByte)
{
    for (const RequestKind kind : test::spoiltKinds()) {
        const char* const method = kind == RequestKind::Header ? "HEAD" : "GET";
        const std::size_t size = mWorld.soundAnswer(kind).bytes(method).size();
        for (const std::size_t cut : test::sweepCells(size, 8)) {
            const std::string name = "cut at byte " + std::to_string(cut);
            reset();
            expectSurvives(mWorld, kind, {name.c_str(), [cut](const SoundAnswer& sound, const FaultRequest&) {
                                              return sound.reply().cutAt(cut);
                                          }});
        }
    }
}

TEST_P(NetworkSweep, everyStatusOnEveryKindOfRequest)
{
    for (const RequestKind kind : test::spoiltKinds()) {
        for (const std::size_t cell : test::sweepCells(500, 10)) {
            const int status = 100 + static_cast<int>(cell);
            const std::string name = "status " + std::to_string(status);
            reset();
            expectSurvives(mWorld, kind,
                           {name.c_str(), [status](const SoundAnswer& sound, const FaultRequest&) {
                                return FaultReply::status(status, sound.body, sound.headerLines).close();
                            }});
        }
    }
}
