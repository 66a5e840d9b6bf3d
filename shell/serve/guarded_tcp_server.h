#pragma once

#include <QTcpServer>

#include <chrono>
#include <vector>

class QTcpSocket;

namespace loadwarden {

// A listening socket that keeps what any client can cost within bounds, so
// that strangers on the port never slow the program down: connections are
// few, each must send a whole request soon after it opened or was last
// answered, and a request is small and well formed. Whoever breaks a rule
// gets a short HTTP error, or is closed when it sent nothing to answer.
class GuardedTcpServer : public QTcpServer {
    Q_OBJECT

public:
    struct Limits {
        // Beyond it, opening one closes the one answered longest ago.
        int connections = 32;
        std::chrono::milliseconds idle{30'000};
        qint64 requestBytes = 8 * 1024; // request line and headers together
        qint64 requestLineBytes = 2 * 1024;
    };

    explicit GuardedTcpServer(Limits limits, QObject* parent = nullptr);
    ~GuardedTcpServer() override;

    // A request on `socket` was answered: its clock and its count of bytes
    // start again.
    void answered(QTcpSocket* socket);

    int openConnections() const { return static_cast<int>(watches_.size()); }

protected:
    void incomingConnection(qintptr descriptor) override;

private:
    class Watch;
    friend class Watch;

    void forget(Watch* watch);

    Limits limits_;
    std::vector<Watch*> watches_; // answered longest ago first
};

} // namespace loadwarden
