#include "shell/serve/guarded_tcp_server.h"

#include <QTcpSocket>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace loadwarden {

namespace {

bool isTokenCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           QByteArrayView("!#$%&'*+-.^_`|~").contains(c);
}

bool isToken(QByteArrayView text) {
    return !text.isEmpty() && std::all_of(text.begin(), text.end(), isTokenCharacter);
}

// "METHOD TARGET HTTP/1.x".
bool isRequestLine(QByteArrayView line) {
    const qsizetype first = line.indexOf(' ');
    const qsizetype last = line.lastIndexOf(' ');
    if (first <= 0 || last <= first + 1) {
        return false;
    }
    static const QList<QByteArrayView> methods{"GET",     "HEAD",    "POST",  "PUT",  "DELETE",
                                               "OPTIONS", "CONNECT", "TRACE", "PATCH"};
    const QByteArrayView target = line.sliced(first + 1, last - first - 1);
    const QByteArrayView version = line.sliced(last + 1);
    return methods.contains(line.first(first)) && !target.contains(' ') &&
           (version == "HTTP/1.1" || version == "HTTP/1.0");
}

// What is wrong with a request's head so far (its lines without their line
// ends, the last one perhaps unfinished), as an HTTP status; empty when
// nothing is. Requests here never carry a body.
QByteArrayView headProblem(const QList<QByteArrayView>& lines, bool lastFinished) {
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const bool finished = i + 1 < lines.size() || lastFinished;
        const QByteArrayView line = lines[i];
        if (i == 0) {
            if (finished && !isRequestLine(line)) {
                return "400 Bad Request";
            }
            continue;
        }
        const qsizetype colon = line.indexOf(':');
        const QByteArrayView name = colon < 0 ? line : line.first(colon);
        if ((colon >= 0 || finished) && !isToken(name)) {
            return "400 Bad Request";
        }
        if (colon < 0) {
            if (!std::all_of(name.begin(), name.end(), isTokenCharacter)) {
                return "400 Bad Request";
            }
            continue;
        }
        const QByteArray lowered = name.toByteArray().toLower();
        const QByteArrayView value = line.sliced(colon + 1).trimmed();
        if (lowered == "transfer-encoding" ||
            (lowered == "content-length" && finished && value != "0")) {
            return "413 Content Too Large";
        }
    }
    return {};
}

QByteArray errorResponse(QByteArrayView status) {
    const QByteArray body = status.toByteArray() + "\n";
    return "HTTP/1.1 " + status.toByteArray() +
           "\r\nContent-Type: text/plain; charset=utf-8\r\nContent-Length: " +
           QByteArray::number(body.size()) + "\r\nConnection: close\r\n\r\n" + body;
}

} // namespace

// One connection's bounds. It reads ahead of the HTTP server, which is
// connected after it, and only counts and peeks.
class GuardedTcpServer::Watch : public QObject {
public:
    Watch(GuardedTcpServer& server, QTcpSocket& socket)
        : QObject(&socket), server_(server), socket_(socket) {
        deadline_.setSingleShot(true);
        deadline_.setInterval(server.limits_.idle);
        connect(&deadline_, &QTimer::timeout, this, [this] {
            refuse(head_.isEmpty() ? QByteArrayView() : "408 Request Timeout");
        });
        deadline_.start();
        reading_ = connect(&socket, &QTcpSocket::readyRead, this, &Watch::read);
        connect(&socket, &QTcpSocket::disconnected, this, &Watch::close);
    }

    ~Watch() override { server_.forget(this); }

    QTcpSocket& socket() { return socket_; }

    void answered() {
        head_.clear();
        headComplete_ = false;
        deadline_.start();
    }

    // Without a word when `status` is empty.
    void refuse(QByteArrayView status) {
        server_.forget(this);
        deadline_.stop();
        // The HTTP server reads no more: no answer of its own may follow ours.
        disconnect(&socket_, &QTcpSocket::readyRead, nullptr, nullptr);
        if (status.isEmpty() || socket_.state() != QAbstractSocket::ConnectedState) {
            close();
            return;
        }
        socket_.write(errorResponse(status));
        socket_.disconnectFromHost();
        // A client that reads nothing cannot hold the socket open.
        QTimer::singleShot(server_.limits_.idle, this, &Watch::close);
    }

private:
    void read() {
        const qint64 arrived = socket_.bytesAvailable();
        if (headComplete_) {
            return; // the next request waits for this one's answer
        }
        const Limits& limits = server_.limits_;
        if (head_.size() + arrived > limits.requestBytes) {
            refuse("431 Request Header Fields Too Large");
            return;
        }
        head_ += socket_.peek(arrived);
        const qsizetype end = head_.indexOf("\r\n\r\n");
        headComplete_ = end >= 0;
        const QByteArrayView head = QByteArrayView(head_).first(headComplete_ ? end : head_.size());
        const QList<QByteArrayView> lines = splitLines(head);
        const bool lastFinished = headComplete_ || head.endsWith("\r\n");
        if (lines.front().size() > limits.requestLineBytes) {
            refuse("414 URI Too Long");
            return;
        }
        if (const QByteArrayView problem = headProblem(lines, lastFinished); !problem.isEmpty()) {
            refuse(problem);
            return;
        }
        // The HTTP server drops every connection of a socket whose request it
        // cannot parse and leaves it open; once it has read, see whether it did.
        QTimer::singleShot(0, this, [this] {
            if (!reading_ && socket_.state() == QAbstractSocket::ConnectedState) {
                refuse("400 Bad Request");
            }
        });
    }

    static QList<QByteArrayView> splitLines(QByteArrayView head) {
        QList<QByteArrayView> lines;
        qsizetype start = 0;
        for (qsizetype end; (end = head.indexOf("\r\n", start)) >= 0; start = end + 2) {
            lines.append(head.sliced(start, end - start));
        }
        if (start < head.size() || lines.isEmpty()) {
            lines.append(head.sliced(start));
        }
        return lines;
    }

    void close() {
        server_.forget(this);
        socket_.abort();
        socket_.deleteLater();
    }

    GuardedTcpServer& server_;
    QTcpSocket& socket_;
    QTimer deadline_;
    QMetaObject::Connection reading_;
    QByteArray head_; // the request's head as far as it came
    bool headComplete_ = false;
};

GuardedTcpServer::GuardedTcpServer(Limits limits, QObject* parent)
    : QTcpServer(parent), limits_(limits) {}

GuardedTcpServer::~GuardedTcpServer() {
    // The sockets are children and go with the server; their watches must
    // not reach back into a server half destroyed.
    for (Watch* watch : std::exchange(watches_, {})) {
        delete watch;
    }
}

void GuardedTcpServer::incomingConnection(qintptr descriptor) {
    auto* socket = new QTcpSocket(this);
    if (!socket->setSocketDescriptor(descriptor)) {
        delete socket;
        return;
    }
    if (openConnections() >= limits_.connections) {
        watches_.front()->refuse({});
    }
    watches_.push_back(new Watch(*this, *socket));
    addPendingConnection(socket);
}

void GuardedTcpServer::answered(QTcpSocket* socket) {
    const auto found = std::find_if(watches_.begin(), watches_.end(),
                                    [socket](Watch* watch) { return &watch->socket() == socket; });
    if (found == watches_.end()) {
        return;
    }
    Watch* watch = *found;
    watches_.erase(found);
    watches_.push_back(watch);
    watch->answered();
}

void GuardedTcpServer::forget(Watch* watch) {
    std::erase(watches_, watch);
}

} // namespace loadwarden
