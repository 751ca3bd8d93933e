#include "ObexPushSession.h"

#include "ObexName.h"
#include "TransferLog.h"

#include <QFileInfo>
#include <QSocketNotifier>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <limits>
#include <openobex/obex.h>
#include <pthread.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {
// The largest body piece handed to the library at a time; the file is never
// read whole.
constexpr int kChunkSize = 32 * 1024;
// Work steps per wake-up before the event loop gets its turn again.
constexpr int kMaxRounds = 256;
// A body piece fills at most one packet, so a working PUT takes a new piece
// at least every other packet. This many packets in a row without one mean
// the library is going round in circles (it does that with a header too
// large for the phone's packets, or with a phone that never lets a PUT end).
constexpr int kMaxPacketsWithoutBody = 8;
// Work steps in a row that take nothing of an answer waiting on the socket.
constexpr int kMaxIdleTurns = 8;
// Every packet begins with its code and a 16-bit length that counts these
// three bytes; a CONNECT answer adds version, flags and packet size.
constexpr int kPacketHeadSize = 3;
constexpr int kConnectAnswerSize = 7;
// The other headers of a PUT's first packet.
constexpr int kLengthHeaderSize = 5;
constexpr int kBodyHeaderSize = 3;
// How soon to look again when an answer's head is still coming in.
constexpr int kPartialAnswerMs = 20;

// The library writes with write(), which raises SIGPIPE when the phone has
// gone; that must become an error for this push, not the end of the program.
// Blocking the signal in this thread and swallowing a raised one keeps the
// process' own signal handling untouched.
class SigpipeBlock {
public:
    SigpipeBlock() {
        sigemptyset(&m_pipe);
        sigaddset(&m_pipe, SIGPIPE);
        sigset_t pending;
        sigpending(&pending);
        m_wasPending = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &m_pipe, &m_previous);
    }
    ~SigpipeBlock() {
        sigset_t pending;
        sigpending(&pending);
        if (!m_wasPending && sigismember(&pending, SIGPIPE) == 1) {
            const timespec noWait{};
            sigtimedwait(&m_pipe, nullptr, &noWait);
        }
        pthread_sigmask(SIG_SETMASK, &m_previous, nullptr);
    }
    SigpipeBlock(const SigpipeBlock&) = delete;
    SigpipeBlock& operator=(const SigpipeBlock&) = delete;

private:
    sigset_t m_pipe;
    sigset_t m_previous;
    bool m_wasPending = false;
};

QString responseText(int response) {
    return QStringLiteral("%1 (0x%2)")
        .arg(QString::fromLatin1(OBEX_ResponseToString(response)))
        .arg(response, 2, 16, QLatin1Char('0'));
}
} // namespace

ObexPushSession::ObexPushSession(int socket, int responseTimeoutMs, QObject* parent)
    : QObject(parent), m_socket(socket) {
    m_silence.setSingleShot(true);
    m_silence.setInterval(responseTimeoutMs);
    connect(&m_silence, &QTimer::timeout, this, [this] {
        noteFailure(
            QStringLiteral("the phone did not answer within %1 ms").arg(m_silence.interval()));
        checkHeadway(0, false);
    });
    m_partialAnswer.setSingleShot(true);
    m_partialAnswer.setInterval(kPartialAnswerMs);
    connect(&m_partialAnswer, &QTimer::timeout, this, [this] {
        if (m_readable)
            m_readable->setEnabled(true);
    });
}

ObexPushSession::~ObexPushSession() {
    release();
}

// Hangs up at once, so the phone is free for the next push even while this
// object waits for its deferred deletion.
void ObexPushSession::release() {
    m_partialAnswer.stop();
    // The notifiers may be the very senders that brought us here.
    for (QSocketNotifier* notifier : {m_readable, m_writable}) {
        if (notifier) {
            notifier->setEnabled(false);
            notifier->deleteLater();
        }
    }
    m_readable = nullptr;
    m_writable = nullptr;
    if (m_handle) {
        OBEX_SetUserData(m_handle, nullptr);
        // Cleanup leaves a request still in flight behind; dropping it first
        // (without a word to the phone, which is gone or given up on) frees it.
        OBEX_CancelRequest(m_handle, 0);
        OBEX_Cleanup(m_handle);
        m_handle = nullptr;
    }
    if (m_socket >= 0)
        ::close(m_socket);
    m_socket = -1;
    m_file.close();
}

bool ObexPushSession::start(const QString& path, QString& reason) {
    m_file.setFileName(path);
    if (!QFileInfo(path).isFile() || !m_file.open(QIODevice::ReadOnly)) {
        reason = QStringLiteral("cannot read %1: %2").arg(path, m_file.errorString());
        return false;
    }
    if (m_file.size() > std::numeric_limits<std::uint32_t>::max()) {
        reason = QStringLiteral("%1 is too large for an OBEX push").arg(path);
        return false;
    }
    m_handle = OBEX_Init(OBEX_TRANS_FD, &ObexPushSession::onObexEvent, 0);
    if (!m_handle) {
        reason = QStringLiteral("the OBEX library could not start");
        return false;
    }
    OBEX_SetUserData(m_handle, this);
    // Never let the library wait on the socket itself: the notifiers say
    // when there is something to do.
    OBEX_SetTimeout(m_handle, 0);
    OBEX_SetTransportMTU(m_handle, OBEX_MAXIMUM_MTU, OBEX_MAXIMUM_MTU);
    if (FdOBEX_TransportSetup(m_handle, m_socket, m_socket, 0) < 0 ||
        !request(OBEX_ObjectNew(m_handle, OBEX_CMD_CONNECT))) {
        reason = QStringLiteral("the OBEX connection could not be set up");
        return false;
    }
    m_readable = new QSocketNotifier(m_socket, QSocketNotifier::Read, this);
    m_writable = new QSocketNotifier(m_socket, QSocketNotifier::Write, this);
    connect(m_readable, &QSocketNotifier::activated, this, &ObexPushSession::pump);
    connect(m_writable, &QSocketNotifier::activated, this, &ObexPushSession::pump);
    m_silence.start();
    return true;
}

void ObexPushSession::onObexEvent(obex* handle, obex_object* object, int mode, int event,
                                  int command, int response) {
    Q_UNUSED(mode);
    Q_UNUSED(command);
    if (auto* session = static_cast<ObexPushSession*>(OBEX_GetUserData(handle)))
        session->handleEvent(object, event, response);
}

// Called from inside the library: only note what happened, checkHeadway acts.
void ObexPushSession::handleEvent(obex_object* object, int event, int response) {
    switch (event) {
    case OBEX_EV_PROGRESS:
        // A request packet went out; its answer comes next.
        m_headway = true;
        m_answerDue = true;
        ++m_packetsWithoutBody;
        break;
    case OBEX_EV_STREAMEMPTY:
        m_headway = true;
        m_packetsWithoutBody = 0;
        feedBody(object);
        break;
    case OBEX_EV_REQDONE:
        m_headway = true;
        m_requestDone = true;
        m_response = response;
        break;
    case OBEX_EV_LINKERR:
        noteFailure(QStringLiteral("the connection to the phone broke off"));
        break;
    case OBEX_EV_PARSEERR:
        noteFailure(QStringLiteral("the phone sent an answer that is not OBEX"));
        break;
    case OBEX_EV_ABORT:
        noteFailure(QStringLiteral("the transfer was aborted"));
        break;
    case OBEX_EV_REQHINT:
    case OBEX_EV_REQ:
    case OBEX_EV_REQCHECK:
    case OBEX_EV_STREAMAVAIL:
    case OBEX_EV_ACCEPTHINT:
        // Only a library that has let go of our request serves the phone's.
        noteFailure(QStringLiteral("the phone sent a request instead of an answer"));
        break;
    default:
        break;
    }
}

// The first cause is the one worth telling.
void ObexPushSession::noteFailure(const QString& reason) {
    if (m_failure.isEmpty())
        m_failure = reason;
}

void ObexPushSession::feedBody(obex_object* object) {
    // The library keeps pointing into this piece until it asks for the next.
    m_chunk = m_file.read(m_pieceSize);
    if (m_file.error() != QFileDevice::NoError) {
        noteFailure(
            QStringLiteral("reading %1 failed: %2").arg(m_file.fileName(), m_file.errorString()));
        m_chunk.clear();
        OBEX_CancelRequest(m_handle, 1);
        return;
    }
    obex_headerdata_t value;
    value.bs = reinterpret_cast<const uint8_t*>(m_chunk.constData());
    const bool last = m_file.atEnd();
    OBEX_ObjectAddHeader(m_handle, object, OBEX_HDR_BODY, value,
                         static_cast<uint32_t>(m_chunk.size()),
                         last ? OBEX_FL_STREAM_DATAEND : OBEX_FL_STREAM_DATA);
}

bool ObexPushSession::request(obex_object* object) {
    if (!object)
        return false;
    if (OBEX_Request(m_handle, object) < 0) {
        OBEX_ObjectDelete(m_handle, object);
        return false;
    }
    m_packetsWithoutBody = 0;
    return true;
}

bool ObexPushSession::requestPut(QString& reason) {
    obex_object* object = OBEX_ObjectNew(m_handle, OBEX_CMD_PUT);
    if (!object)
        return false;
    // What one packet holds after its head: the phone named its packet
    // size in the CONNECT answer.
    const int room = OBEX_ObjectGetSpace(m_handle, object, 0);
    m_pieceSize = qBound(1, room - kBodyHeaderSize, kChunkSize);
    if (!addPutHeaders(object, room, reason)) {
        OBEX_ObjectDelete(m_handle, object);
        return false;
    }
    return request(object);
}

bool ObexPushSession::addPutHeaders(obex_object* object, int room, QString& reason) {
    // A NAME header cannot be split over packets: it goes with the LENGTH and
    // the start of the body in the first one, shortened when too long.
    const QString name = QFileInfo(m_file.fileName()).fileName();
    const int nameRoom = room - kLengthHeaderSize - kBodyHeaderSize;
    const QString sent = ObexName::shortened(name, (nameRoom - ObexName::headerSize(QString())) /
                                                       static_cast<int>(sizeof(char16_t)));
    const int packetSize = room + kPacketHeadSize;
    if (sent.isEmpty()) {
        reason = QStringLiteral("the phone takes packets of only %1 bytes, too small for a name")
                     .arg(packetSize);
        return false;
    }
    if (sent != name)
        qCInfo(lcTransfer).noquote()
            << QStringLiteral("%1 goes to the phone as %2: it takes packets of at most %3 bytes")
                   .arg(name, sent)
                   .arg(packetSize);
    const QByteArray encoded = ObexName::encode(sent);
    obex_headerdata_t value;
    value.bs = reinterpret_cast<const uint8_t*>(encoded.constData());
    bool added =
        OBEX_ObjectAddHeader(m_handle, object, OBEX_HDR_NAME, value,
                             static_cast<uint32_t>(encoded.size()), OBEX_FL_FIT_ONE_PACKET) >= 0;
    value.bq4 = static_cast<uint32_t>(m_file.size());
    added = added && OBEX_ObjectAddHeader(m_handle, object, OBEX_HDR_LENGTH, value,
                                          sizeof(uint32_t), OBEX_FL_FIT_ONE_PACKET) >= 0;
    value.bs = nullptr;
    added = added && OBEX_ObjectAddHeader(m_handle, object, OBEX_HDR_BODY, value, 0,
                                          OBEX_FL_STREAM_START) >= 0;
    if (!added)
        reason = QStringLiteral("the headers of %1 do not fit the phone's packets of %2 bytes")
                     .arg(sent)
                     .arg(packetSize);
    return added;
}

void ObexPushSession::pump() {
    for (int round = 0; round < kMaxRounds && !m_finished; ++round) {
        const bool answerWaited = OBEX_GetDataDirection(m_handle) == OBEX_DATA_IN;
        const Turn turn = answerWaited ? lookAtAnswer() : Turn::Work;
        if (turn == Turn::Wait)
            break;
        int result = 0;
        if (turn == Turn::Work) {
            SigpipeBlock block;
            result = OBEX_Work(m_handle);
        }
        if (!checkHeadway(result, answerWaited))
            return;
        // The socket takes no more for now: the writable notifier says when.
        if (result == 0 && !answerWaited)
            break;
    }
    if (!m_finished)
        m_writable->setEnabled(OBEX_GetDataDirection(m_handle) != OBEX_DATA_IN);
}

// Whether the library may read now, has to wait for more, or whether what
// came (or that nothing more can come) ends the push.
ObexPushSession::Turn ObexPushSession::lookAtAnswer() {
    switch (pendingInput()) {
    case Input::None:
        return Turn::Wait;
    case Input::Closed:
        // After the file was taken, a phone may hang up instead of answering
        // DISCONNECT; fail() counts that as done.
        noteFailure(QStringLiteral("the phone closed the connection"));
        return Turn::Stop;
    case Input::Waiting:
        break;
    }
    return m_answerDue ? lookAtAnswerHead() : Turn::Work;
}

ObexPushSession::Input ObexPushSession::pendingInput() {
    char byte;
    const ssize_t peeked = ::recv(m_socket, &byte, 1, MSG_PEEK | MSG_DONTWAIT);
    if (peeked > 0)
        return Input::Waiting;
    if (peeked < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR))
        return Input::None;
    return Input::Closed;
}

// An answer begins with a response code that has its final bit set and a
// length that counts at least the head itself. The library must see nothing
// else: given a shorter length it asks for a negative amount of memory. A
// refused CONNECT stops here too, as the library cannot read one without the
// connection details a refusing phone often leaves out.
ObexPushSession::Turn ObexPushSession::lookAtAnswerHead() {
    unsigned char head[kPacketHeadSize];
    if (::recv(m_socket, head, sizeof head, MSG_PEEK | MSG_DONTWAIT) < kPacketHeadSize) {
        // The rest of the head is on its way; the notifier would only spin.
        m_readable->setEnabled(false);
        m_partialAnswer.start();
        return Turn::Wait;
    }
    m_answerDue = false;
    const int code = head[0] & ~OBEX_FINAL;
    const int length = (head[1] << 8) | head[2];
    const bool connectAnswer = m_step == Step::Connect && code == OBEX_RSP_SUCCESS;
    if (!(head[0] & OBEX_FINAL) || length < (connectAnswer ? kConnectAnswerSize : kPacketHeadSize))
        noteFailure(QStringLiteral("the phone sent an answer that is not OBEX"));
    else if (m_step == Step::Connect && code != OBEX_RSP_SUCCESS)
        noteFailure(refusal(code));
    return m_failure.isEmpty() ? Turn::Work : Turn::Stop;
}

// The one place where the push learns that the exchange has stopped, however
// it stopped: the library's events, the look at each answer's head and the
// answer time limit only note what they saw, and every way of stopping ends
// the push here, so nobody waits for an answer the library will never give.
bool ObexPushSession::checkHeadway(int result, bool answerWaited) {
    if (!m_failure.isEmpty())
        return fail(m_failure);
    if (m_requestDone)
        return advance();
    if (result < 0)
        return fail(QStringLiteral("the OBEX exchange failed"));
    // No request in flight, yet no end reported: the library let go of it.
    if (OBEX_ObjectGetCommand(m_handle, nullptr) < 0)
        return fail(QStringLiteral("the OBEX library dropped the request"));
    if (m_packetsWithoutBody > kMaxPacketsWithoutBody)
        return fail(QStringLiteral("the exchange with the phone went round in circles "
                                   "without getting the file any further"));
    m_idleTurns = result == 0 && answerWaited ? m_idleTurns + 1 : 0;
    if (m_idleTurns > kMaxIdleTurns)
        return fail(QStringLiteral("the OBEX library stopped reading the phone's answer"));
    if (m_headway)
        m_silence.start();
    m_headway = false;
    return true;
}

// The request in flight has its answer: go on to the next one or end.
bool ObexPushSession::advance() {
    m_requestDone = false;
    if (m_step == Step::Disconnect) {
        finish(true, QString());
        return false;
    }
    if (m_response != OBEX_RSP_SUCCESS)
        return fail(refusal(m_response));
    m_step = m_step == Step::Connect ? Step::Put : Step::Disconnect;
    QString reason = QStringLiteral("the OBEX request could not be made");
    const bool sent = m_step == Step::Put ? requestPut(reason)
                                          : request(OBEX_ObjectNew(m_handle, OBEX_CMD_DISCONNECT));
    return sent || fail(reason);
}

QString ObexPushSession::refusal(int response) const {
    const QString what =
        m_step == Step::Connect ? QStringLiteral("the connection") : QStringLiteral("the file");
    return QStringLiteral("the phone refused %1: %2").arg(what, responseText(response));
}

// Once the PUT has succeeded the file is on the phone; only the goodbye can
// still go wrong, and that is no failure of the push. Always false, so the
// steps can end with it.
bool ObexPushSession::fail(const QString& reason) {
    finish(m_step == Step::Disconnect, reason);
    return false;
}

void ObexPushSession::finish(bool succeeded, const QString& reason) {
    if (m_finished)
        return;
    m_finished = true;
    m_silence.stop();
    release();
    emit finished(succeeded, succeeded ? QString() : reason);
}
