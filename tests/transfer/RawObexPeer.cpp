#include "RawObexPeer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {
// However a test ends, the peer's thread ends by this time.
constexpr auto kLifetime = std::chrono::seconds(90);
// A dribbling peer's pause between two bytes.
constexpr int kDribbleMs = 200;

constexpr std::uint8_t kConnect = 0x80;
constexpr std::uint8_t kDisconnect = 0x81;
constexpr std::uint8_t kPut = 0x02;
constexpr std::uint8_t kFinalBit = 0x80;
constexpr std::uint8_t kContinue = 0x90;
constexpr std::uint8_t kSuccess = 0xA0;
constexpr std::uint8_t kNotImplemented = 0xD1;
constexpr std::uint8_t kNameHeader = 0x01;
constexpr std::uint8_t kBodyHeader = 0x48;
constexpr std::uint8_t kEndOfBodyHeader = 0x49;

std::uint8_t byteAt(const QByteArray& bytes, qsizetype at) {
    return static_cast<std::uint8_t>(bytes[at]);
}

int wordAt(const QByteArray& bytes, qsizetype at) {
    return (byteAt(bytes, at) << 8) | byteAt(bytes, at + 1);
}

void sendBytes(int socket, const QByteArray& bytes) {
    ::send(socket, bytes.constData(), static_cast<size_t>(bytes.size()), MSG_NOSIGNAL);
}

void answer(int socket, std::uint8_t code) {
    const char reply[] = {char(code), 0x00, 0x03};
    sendBytes(socket, QByteArray(reply, sizeof reply));
}

// The code, OBEX 1.0, no flags, then the largest packet taken.
QByteArray connectAnswer(std::uint8_t code, std::uint16_t packetSize) {
    const char reply[] = {
        char(code), 0x00, 0x07, 0x10, 0x00, char(packetSize >> 8), char(packetSize & 0xff)};
    return QByteArray(reply, sizeof reply);
}

// An OBEX name: UTF-16 big endian up to its terminating zero character.
QString nameFrom(const QByteArray& value) {
    QString name;
    for (qsizetype at = 0; at + 1 < value.size(); at += 2) {
        const auto unit = static_cast<char16_t>(wordAt(value, at));
        if (unit == 0)
            break;
        name.append(QChar(unit));
    }
    return name;
}

// The whole size of the header at the start of what is left, or 0 when it
// does not fit the packet (the two top bits of its id say how it is sized).
qsizetype headerSize(const QByteArray& packet, qsizetype at) {
    const int encoding = byteAt(packet, at) >> 6;
    qsizetype size = encoding == 2 ? 2 : 5;
    if (encoding < 2)
        size = at + 3 <= packet.size() ? wordAt(packet, at + 1) : 0;
    return size >= (encoding < 2 ? 3 : 1) && at + size <= packet.size() ? size : 0;
}
} // namespace

RawObexPeer::RawObexPeer(Behaviour behaviour) : RawObexPeer(Setup{behaviour}) {}

RawObexPeer::RawObexPeer(const Setup& setup)
    : m_setup(setup), m_endOfLife(std::chrono::steady_clock::now() + kLifetime) {
    m_listener = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    ::bind(m_listener, reinterpret_cast<sockaddr*>(&address), size);
    ::getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &size);
    ::listen(m_listener, 4);
    m_port = ntohs(address.sin_port);
    m_thread = std::thread([this] { serve(); });
}

RawObexPeer::~RawObexPeer() {
    m_stop = true;
    m_thread.join();
    ::close(m_listener);
}

QString RawObexPeer::target() const {
    return QStringLiteral("tcp:127.0.0.1:%1").arg(m_port);
}

QString RawObexPeer::receivedName() const {
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_name;
}

QByteArray RawObexPeer::receivedBody() const {
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_body;
}

bool RawObexPeer::receivedWhole() const {
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_whole;
}

int RawObexPeer::largestPacket() const {
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_largest;
}

bool RawObexPeer::keepGoing() const {
    return !m_stop && std::chrono::steady_clock::now() < m_endOfLife;
}

// Waits for data with a short step so the peer notices when to stop.
bool RawObexPeer::waitReadable(int socket) {
    while (keepGoing()) {
        pollfd entry{socket, POLLIN, 0};
        if (::poll(&entry, 1, 50) > 0)
            return true;
    }
    return false;
}

// One OBEX packet: opcode, 16-bit big-endian length, the rest. Empty when
// the other side hung up first.
QByteArray RawObexPeer::readPacket(int socket) {
    QByteArray packet;
    qsizetype wanted = 3;
    while (packet.size() < wanted) {
        if (!waitReadable(socket))
            return {};
        char buffer[4096];
        const ssize_t got =
            ::recv(socket, buffer,
                   static_cast<size_t>(qMin<qsizetype>(sizeof buffer, wanted - packet.size())), 0);
        if (got <= 0)
            return {};
        packet.append(buffer, got);
        if (packet.size() >= 3)
            wanted = wordAt(packet, 1);
    }
    const std::lock_guard<std::mutex> guard(m_lock);
    m_largest = qMax(m_largest, static_cast<int>(packet.size()));
    return packet;
}

// Reads and drops whatever comes until the client hangs up.
void RawObexPeer::waitForHangUp(int socket) {
    char buffer[4096];
    while (waitReadable(socket) && ::recv(socket, buffer, sizeof buffer, 0) > 0) {
    }
}

void RawObexPeer::dribble(int socket) {
    // Continue, with the longest length there is.
    sendBytes(socket, QByteArray("\x90\xff\xff", 3));
    char buffer[4096];
    while (keepGoing()) {
        pollfd entry{socket, POLLIN, 0};
        if (::poll(&entry, 1, kDribbleMs) > 0 && ::recv(socket, buffer, sizeof buffer, 0) <= 0)
            return;
        sendBytes(socket, QByteArray(1, '\0'));
    }
}

void RawObexPeer::serve() {
    while (waitReadable(m_listener)) {
        const int socket = ::accept(m_listener, nullptr, nullptr);
        if (socket >= 0)
            serveConnection(socket);
    }
}

void RawObexPeer::serveConnection(int socket) {
    if (m_setup.behaviour == Behaviour::Silent)
        waitForHangUp(socket);
    else if (answerConnect(socket))
        servePuts(socket);
    ::close(socket);
}

// True when the client may go on to its PUT.
bool RawObexPeer::answerConnect(int socket) {
    const QByteArray request = readPacket(socket);
    // A connection that only looked whether the peer is there.
    if (request.isEmpty() || byteAt(request, 0) != kConnect)
        return false;
    switch (m_setup.behaviour) {
    case Behaviour::GarbageForConnect:
        sendBytes(socket, m_setup.garbage);
        break;
    case Behaviour::RefuseConnectBriefly:
        answer(socket, m_setup.refusal);
        break;
    case Behaviour::RefuseConnect:
        sendBytes(socket, connectAnswer(m_setup.refusal, m_setup.packetSize));
        break;
    default:
        sendBytes(socket, connectAnswer(kSuccess, m_setup.packetSize));
        return true;
    }
    waitForHangUp(socket);
    return false;
}

void RawObexPeer::servePuts(int socket) {
    for (QByteArray packet = readPacket(socket); !packet.isEmpty(); packet = readPacket(socket)) {
        const std::uint8_t opcode = byteAt(packet, 0);
        if (opcode == kDisconnect) {
            answer(socket, kSuccess);
            return;
        }
        if ((opcode & ~kFinalBit) != kPut)
            answer(socket, kNotImplemented);
        else if (!reactToPut(socket, packet))
            return;
    }
}

// False when the peer is done with this connection.
bool RawObexPeer::reactToPut(int socket, const QByteArray& packet) {
    switch (m_setup.behaviour) {
    case Behaviour::HangUpDuringPut:
        return false;
    case Behaviour::ResetDuringPut: {
        // Closing with a zero linger time sends a reset instead of a goodbye.
        const linger abrupt{1, 0};
        ::setsockopt(socket, SOL_SOCKET, SO_LINGER, &abrupt, sizeof abrupt);
        return false;
    }
    case Behaviour::GarbageDuringPut:
        sendBytes(socket, m_setup.garbage);
        waitForHangUp(socket);
        return false;
    case Behaviour::SilentAfterConnect:
        waitForHangUp(socket);
        return false;
    case Behaviour::DribbleDuringPut:
        dribble(socket);
        return false;
    case Behaviour::ContinueForever:
        answer(socket, kContinue);
        return true;
    case Behaviour::RefusePut:
        answer(socket, m_setup.refusal);
        return true;
    default:
        takePut(packet);
        answer(socket, (byteAt(packet, 0) & kFinalBit) ? kSuccess : kContinue);
        return true;
    }
}

void RawObexPeer::takePut(const QByteArray& packet) {
    const std::lock_guard<std::mutex> guard(m_lock);
    if (m_whole) {
        // A new object begins.
        m_name.clear();
        m_body.clear();
        m_whole = false;
    }
    for (qsizetype at = 3, size = 0; at < packet.size(); at += size) {
        size = headerSize(packet, at);
        if (size == 0)
            return;
        const std::uint8_t id = byteAt(packet, at);
        if (id == kNameHeader)
            m_name = nameFrom(packet.mid(at + 3, size - 3));
        else if (id == kBodyHeader || id == kEndOfBodyHeader)
            m_body += packet.mid(at + 3, size - 3);
    }
    m_whole = (byteAt(packet, 0) & kFinalBit) != 0;
}
