#include "tests/support/BrokenService.h"

#include <QByteArray>

namespace test {

const char* const kLoginPath = "/login";

namespace {

/// The page is larger than the smallest change that the updater fetches, so its size alone is no reason for a
/// refusal.
const std::string kPage = "<html><body>Please sign in.</body></html>" + std::string(2000, ' ');
const std::vector<std::string> kHtml = {"Content-Type: text/html; charset=utf-8"};

/// Redirects to the same address `hops` times, then replies with `sound`. A counter in the query tells the
/// steps apart.
FaultReply redirectChain(const FaultReply& sound, const FaultRequest& request, int hops)
{
    const std::string mark = "&hops=";
    const std::size_t at = request.target.find(mark);
    const int done = at == std::string::npos ? 0 : std::stoi(request.target.substr(at + mark.size()));
    if (done == hops)
        return sound;
    const std::string next = request.target.substr(0, at) + mark + std::to_string(done + 1);
    return FaultReply::redirect(request.path() == "/redirect" ? "/redirect?" + mark + std::to_string(done + 1)
                                                              : next);
}

std::vector<Behaviour> endings()
{
    using S = const FaultReply&;
    using R = const FaultRequest&;
    return {
        {"closed without an answer", [](S, R) { return FaultReply::raw("").close(); }},
        {"reset without an answer", [](S, R) { return FaultReply::raw("").reset(); }},
        {"cut in the status line", [](S s, R) { return FaultReply(s).cutAt(7); }},
        {"cut after the status line", [](S s, R) { return FaultReply(s).cutAt(17); }},
        {"cut in the headers", [](S s, R) { return FaultReply(s).cutAt(s.headSize() / 2); }},
        {"cut before the blank line", [](S s, R) { return FaultReply(s).cutAt(s.headSize() - 2); }},
        {"cut before the body", [](S s, R) { return FaultReply(s).cutBodyAt(0); }},
        {"cut after a byte of body", [](S s, R) { return FaultReply(s).cutBodyAt(1); }},
        {"cut before the last byte",
         [](S s, R r) { return FaultReply(s).cutAt(s.bytes(r.method).size() - 1); }},
        {"reset in the status line", [](S s, R) { return FaultReply(s).cutAt(7).reset(); }},
        {"reset in the headers", [](S s, R) { return FaultReply(s).cutAt(s.headSize() / 2).reset(); }},
        {"reset in the body", [](S s, R) { return FaultReply(s).cutBodyAt(1).reset(); }},
        {"reset after the whole answer", [](S s, R) { return FaultReply(s).reset(); }},
        {"closed after the whole answer", [](S s, R) { return FaultReply(s).close(); }},
        {"slow", [](S s, R) { return FaultReply(s).trickle(200, std::chrono::milliseconds(1)); }},
        {"late", [](S s, R) { return FaultReply(s).pauseAt(0, std::chrono::milliseconds(40)); }},
    };
}

std::vector<Behaviour> silences()
{
    using S = const FaultReply&;
    using R = const FaultRequest&;
    return {
        {"silence", [](S, R) { return FaultReply::silence(); }, false, true},
        {"silent in the status line", [](S s, R) { return FaultReply(s).silentAt(7); }, false, true},
        {"silent in the headers", [](S s, R) { return FaultReply(s).silentAt(s.headSize() / 2); }, false,
         true},
        {"silent before the body", [](S s, R) { return FaultReply(s).silentInBodyAt(0); }, false, true},
        {"silent before the last byte",
         [](S s, R r) { return FaultReply(s).silentAt(s.bytes(r.method).size() - 1); }, false, true},
    };
}

std::vector<Behaviour> lengths()
{
    using S = const FaultReply&;
    using R = const FaultRequest&;
    std::vector<Behaviour> all{
        {"length too large",
         [](S s, R) {
             return FaultReply(s)
                 .withHeader("Content-Length: " + std::to_string(s.body().size() + 10))
                 .close();
         }},
        {"length too small", [](S s, R) { return FaultReply(s).withHeader("Content-Length: 3").close(); },
         true},
        {"no length", [](S s, R) { return FaultReply(s).withoutHeader("Content-Length").close(); }},
        {"length that is no number",
         [](S s, R) { return FaultReply(s).withHeader("Content-Length: many").close(); }},
        {"empty length", [](S s, R) { return FaultReply(s).withHeader("Content-Length:").close(); }},
        {"negative length", [](S s, R) { return FaultReply(s).withHeader("Content-Length: -1").close(); }},
        {"two lengths",
         [](S s, R) {
             return FaultReply(s).withHeader("Content-Length: 1200\r\nContent-Length: 1100").close();
         },
         true},
        {"length of 2^63",
         [](S s, R) { return FaultReply(s).withHeader("Content-Length: 9223372036854775808").close(); }},
        {"length beyond all",
         [](S s, R) { return FaultReply(s).withHeader("Content-Length: 1" + std::string(40, '0')).close(); }},
        {"chunked", [](S s, R) { return FaultReply(s).inChunks(); }},
        {"chunked with a wrong size",
         [](S s, R) {
             return FaultReply::raw("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nZZ\r\n" + s.body() +
                                    "\r\n0\r\n\r\n");
         }},
        {"chunked without its end",
         [](S s, R) { return FaultReply(s).inChunks().cutBodyAt(s.body().size() + 1); }},
        {"chunked with a length too",
         [](S s, R) { return FaultReply(s).inChunks().withHeader("Content-Length: 12"); }},
        {"body until the connection ends",
         [](S s, R) { return FaultReply(s).withoutHeader("Content-Length").close(); }},
        {"empty body", [](S s, R) { return FaultReply(s).withBody(""); }},
        {"more than the length",
         [](S s, R r) { return FaultReply::raw(s.bytes(r.method) + s.body()).close(); }},
    };
    return all;
}

std::vector<Behaviour> headers()
{
    using S = const FaultReply&;
    using R = const FaultRequest&;
    return {
        {"header line of 301 KB",
         [](S s, R) { return FaultReply(s).withHeader("X-Long: " + std::string(308'224, 'x')); }},
        {"10,000 header lines",
         [](S s, R) {
             std::string lines = "X-Many: 0";
             for (int count = 1; count < 10'000; ++count)
                 lines += "\r\nX-Many: 0123456789012345678901234";
             return FaultReply(s).withHeader(lines);
         }},
        {"header line without a colon", [](S s, R) { return FaultReply(s).withHeader("nothing to see"); }},
        {"NUL in a header", [](S s, R) { return FaultReply(s).withHeader(std::string("X-Nul: a\0b", 10)); }},
        {"folded header", [](S s, R) { return FaultReply(s).withHeader("X-Folded: a\r\n\tb"); }},
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
        {"body without headers", [](S s, R) { return FaultReply::raw(s.body()).close(); }},
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
             return FaultReply(s).withHeader(
                 "Repr-Digest: sha-256=:AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA=:");
         }},
        {"claimed compression", [](S s, R) { return FaultReply(s).withHeader("Content-Encoding: gzip"); }},
        {"compression",
         [](S s, R) {
             return FaultReply(s)
                 .withBody(FaultReply::gzipped(s.body()).body())
                 .withHeader("Content-Encoding: gzip");
         }},
        {"no tag", [](S s, R) { return FaultReply(s).withoutHeader("ETag"); }},
        {"empty tag", [](S s, R) { return FaultReply(s).withHeader("ETag:"); }},
        {"tag of two quotes", [](S s, R) { return FaultReply(s).withHeader("ETag: \"\""); }},
        {"bare tag", [](S s, R) { return FaultReply(s).withHeader("ETag: bare"); }},
        {"weak tag", [](S s, R) { return FaultReply(s).withHeader("ETag: W/\"weak\""); }},
        {"tag with a colon", [](S s, R) { return FaultReply(s).withHeader("ETag: \"a:b\""); }},
        {"doubled tag", [](S s, R) { return FaultReply(s).withHeader("ETag: \"one\"\r\nETag: \"two\""); }},
        {"tag of 100 KB",
         [](S s, R) { return FaultReply(s).withHeader("ETag: \"" + std::string(100'000, 't') + "\""); }},
    };
}

std::vector<Behaviour> redirects()
{
    using S = const FaultReply&;
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
        // The server does not speak TLS, so the handshake gets no reply.
        {"redirect to https",
         [](S, R r) { return FaultReply::redirect("https://" + r.header("Host") + "/x?"); }, false, true},
    };
}

std::vector<Behaviour> lies()
{
    using S = const FaultReply&;
    using R = const FaultRequest&;
    return {
        {"a page in place of the answer", [](S, R) { return FaultReply::ok(kPage); }, true},
        {"zero bytes in place of the body",
         [](S s, R) { return FaultReply(s).withBody(std::string(s.body().size(), '\0')); }, true},
        {"a range in place of the whole",
         [](S s, R) {
             return FaultReply(s)
                 .withStatus(206)
                 .withBody(s.body().substr(0, s.body().size() / 2))
                 .withHeader("Content-Range: bytes 0-9/20");
         }},
    };
}

} // namespace

FaultReply loginPage()
{
    return FaultReply::ok(kPage, kHtml);
}

std::vector<Behaviour> loginPages()
{
    using S = const FaultReply&;
    using R = const FaultRequest&;
    return {
        {"login page", [](S, R) { return loginPage(); }, true},
        {"login page without a type", [](S, R) { return FaultReply::ok(kPage); }, true},
        {"redirect to a login page", [](S, R) { return FaultReply::redirect(kLoginPath); }, true},
        {"login page of status 511", [](S, R) { return FaultReply::status(511, kPage, kHtml); }},
    };
}

std::vector<Behaviour> brokenServices()
{
    std::vector<Behaviour> all;
    for (const auto& group : {endings(), silences(), lengths(), headers(), redirects(), lies()})
        all.insert(all.end(), group.begin(), group.end());
    return all;
}

} // namespace test
