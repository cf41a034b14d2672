#include "tests/host/http/Http2Front.h"

#include <stdexcept>

#include <QStandardPaths>
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace test {

namespace {

QString program()
{
    const QString found = QStandardPaths::findExecutable("nginx");
    return found.isEmpty() ? QStandardPaths::findExecutable("nginx", {"/usr/sbin"}) : found;
}

/// Opens a listening socket on a free port. A child process inherits it.
int listenAnywhere(int& port)
{
    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const general = reinterpret_cast<sockaddr*>(&address);
    if (bind(listener, general, size) != 0 || listen(listener, SOMAXCONN) != 0 ||
        getsockname(listener, general, &size) != 0)
        throw std::runtime_error("no port to listen on");
    port = ntohs(address.sin_port);
    return listener;
}

std::string configuration(const std::string& folder, const TlsCertificate& tls, int ownPort, int port,
                          int requestsOfAConnection)
{
    std::string text = "daemon off;\npid " + folder +
                       "/pid;\nevents { worker_connections 1024; }\nhttp {\naccess_log off;\n";
    for (const char* kind : {"client_body", "proxy", "fastcgi", "uwsgi", "scgi"})
        text += std::string(kind) + "_temp_path " + folder + "/" + kind + ";\n";
    return text + "server {\nlisten 127.0.0.1:" + std::to_string(ownPort) + " ssl http2;\nssl_certificate " +
           tls.certificate + ";\nssl_certificate_key " + tls.key + ";\nkeepalive_requests " +
           std::to_string(requestsOfAConnection) +
           ";\nlocation / {\nproxy_pass http://127.0.0.1:" + std::to_string(port) +
           ";\nproxy_http_version 1.1;\nproxy_buffering off;\nproxy_next_upstream off;\n"
           "proxy_set_header X-Connection $server_port.$connection;\nproxy_set_header X-Protocol "
           "$server_protocol;\n"
           "}\n}\n}\n";
}

} // namespace

bool Http2Front::isAvailable()
{
    return !program().isEmpty();
}

Http2Front::Http2Front(int port, int requestsOfAConnection) : mTls(mFolder.path())
{
    mListener = listenAnywhere(mPort);
    const std::string& folder = mFolder.path();
    mFolder.write("configuration", configuration(folder, mTls, mPort, port, requestsOfAConnection));
    // The variable makes nginx use the inherited socket with this number.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("NGINX", QString::number(mListener) + ";");
    mProcess.setProcessEnvironment(environment);
    mProcess.start(program(),
                   {"-p", QString::fromStdString(folder), "-e", QString::fromStdString(folder + "/errors"),
                    "-c", QString::fromStdString(folder + "/configuration")});
    if (!mProcess.waitForStarted())
        throw std::runtime_error("no server");
}

Http2Front::~Http2Front()
{
    stop();
}

std::string Http2Front::url(const std::string& target) const
{
    return "https://127.0.0.1:" + std::to_string(mPort) + target;
}

void Http2Front::stop()
{
    if (mListener < 0)
        return;
    close(mListener);
    mListener = -1;
    mProcess.terminate(); // its workers end with it
    mProcess.waitForFinished();
}

} // namespace test
