#include "ui/shell/open_requests.h"

#include <QApplication>
#include <QDir>
#include <QLocalSocket>

#include <utility>

namespace busquill {

namespace {

constexpr int patience = 1000;    // milliseconds, for the kernel to take what is written
constexpr int openingPeriod = 50; // milliseconds

/// The socket of the running program; empty without a runtime folder.
QString SocketPath() {
    const QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return QDir::isAbsolutePath(folder) && QDir(folder).exists() ? folder + "/busquill-open"
                                                                 : QString();
}

bool Connect(QLocalSocket& socket) {
    const QString path = SocketPath();
    if (path.isEmpty()) {
        return false;
    }
    socket.connectToServer(path);
    return socket.waitForConnected(patience);
}

} // namespace

// One path per line. It waits for no answer: a program that is connecting to its board may take the
// files up to ten seconds later.
bool HandOver(const std::vector<std::string>& files) {
    QLocalSocket socket;
    if (files.empty() || !Connect(socket)) {
        return false;
    }
    for (const std::string& file : files) {
        socket.write(QByteArray::fromStdString(file + "\n"));
    }
    while (socket.bytesToWrite() > 0) {
        if (!socket.waitForBytesWritten(patience)) {
            return false;
        }
    }
    socket.disconnectFromServer();
    return true;
}

OpenRequests::OpenRequests(const MainThread& mainThread,
                           std::function<void(const std::string&)> open)
    : open_(std::move(open)), timer_(nullptr, mainThread, [this] { OpenNext(); }) {}

void OpenRequests::Listen() {
    const QString path = SocketPath();
    QLocalSocket other;
    if (path.isEmpty() || server_.listen(path) || Connect(other)) {
        return;
    }
    // The socket remains from a program that crashed or was killed.
    QLocalServer::removeServer(path);
    server_.listen(path);
}

void OpenRequests::Serve(const std::vector<std::string>& files) {
    for (const std::string& file : files) {
        waiting_ << QString::fromStdString(file);
    }
    connect(&server_, &QLocalServer::newConnection, this, [this] { TakeConnections(); });
    TakeConnections();
    timer_.start(openingPeriod);
}

void OpenRequests::TakeConnections() {
    while (QLocalSocket* from = server_.nextPendingConnection()) {
        connect(from, &QLocalSocket::readyRead, this, [this, from] { Take(*from); });
        connect(from, &QLocalSocket::disconnected, from, &QObject::deleteLater);
        Take(*from);
        if (from->state() == QLocalSocket::UnconnectedState) {
            from->deleteLater();
        }
    }
}

void OpenRequests::Take(QLocalSocket& from) {
    while (from.canReadLine()) {
        waiting_ << QString::fromUtf8(from.readLine()).chopped(1);
    }
    if (!waiting_.isEmpty()) {
        timer_.start(openingPeriod);
    }
}

void OpenRequests::OpenNext() {
    if (waiting_.isEmpty()) {
        timer_.stop();
    } else if (QApplication::activeModalWidget() == nullptr &&
               QApplication::activePopupWidget() == nullptr) {
        open_(waiting_.takeFirst().toStdString());
    }
}

} // namespace busquill
