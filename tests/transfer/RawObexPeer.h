#pragma once

#include <QByteArray>
#include <QString>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <thread>

// A hand-made OBEX Object Push server on loopback (127.0.0.1) that behaves
// the way real phones do, well or badly. It announces any packet size in its
// CONNECT answer, serves one connection after another, and stops when it is
// destroyed or, at the latest, when its lifetime runs out.
class RawObexPeer {
public:
    enum class Behaviour {
        // Takes the file: every PUT packet answered, name and body kept.
        Accept,
        // Answers CONNECT with the refusal code, version, flags and packet size.
        RefuseConnect,
        // Answers CONNECT with the bare refusal code, as many phones do.
        RefuseConnectBriefly,
        // Accepts CONNECT, answers the first PUT packet with the refusal code.
        RefusePut,
        // Accepts CONNECT, then hangs up on the first PUT packet.
        HangUpDuringPut,
        // Accepts CONNECT, then resets the connection on the first PUT packet.
        ResetDuringPut,
        // Answers CONNECT with bytes that are not OBEX.
        GarbageForConnect,
        // Accepts CONNECT, answers the first PUT packet with bytes that are not OBEX.
        GarbageDuringPut,
        // Answers every PUT packet, the final one too, with Continue.
        ContinueForever,
        // Takes the connection and never says a word.
        Silent,
        // Accepts CONNECT, then never answers again.
        SilentAfterConnect,
        // Accepts CONNECT, then begins a long answer to the first PUT packet
        // and sends the rest one byte at a time, slowly, for as long as the
        // client listens.
        DribbleDuringPut,
    };
    struct Setup {
        Behaviour behaviour = Behaviour::Accept;
        // The largest packet it says it takes, in its CONNECT answer.
        std::uint16_t packetSize = 0x2000;
        // The answer code of a refusal (final bit set).
        std::uint8_t refusal = 0xC3;
        // What a peer that talks garbage says; by default a web server's answer.
        QByteArray garbage = "HTTP/1.1 400 Bad Request\r\nContent-Length: 0\r\n\r\n";
    };

    explicit RawObexPeer(Behaviour behaviour);
    explicit RawObexPeer(const Setup& setup);
    ~RawObexPeer();
    RawObexPeer(const RawObexPeer&) = delete;
    RawObexPeer& operator=(const RawObexPeer&) = delete;

    std::uint16_t port() const { return m_port; }
    QString target() const;

    // What the last PUT carried.
    QString receivedName() const;
    QByteArray receivedBody() const;
    // Whether that PUT reached its final packet.
    bool receivedWhole() const;
    // The longest packet the client sent on any connection.
    int largestPacket() const;

private:
    void serve();
    void serveConnection(int socket);
    bool answerConnect(int socket);
    void servePuts(int socket);
    bool reactToPut(int socket, const QByteArray& packet);
    void takePut(const QByteArray& packet);
    void waitForHangUp(int socket);
    void dribble(int socket);
    QByteArray readPacket(int socket);
    bool waitReadable(int socket);
    bool keepGoing() const;

    Setup m_setup;
    int m_listener = -1;
    std::uint16_t m_port = 0;
    std::atomic<bool> m_stop{false};
    std::chrono::steady_clock::time_point m_endOfLife;
    mutable std::mutex m_lock;
    QString m_name;
    QByteArray m_body;
    bool m_whole = false;
    int m_largest = 0;
    std::thread m_thread;
};
