#pragma once

#include <QByteArray>
#include <QFile>
#include <QObject>
#include <QTimer>

class QSocketNotifier;
struct obex;
struct obex_object;

// One OBEX Object Push over an already connected socket: CONNECT, a PUT with
// the file's name and length and its body streamed in pieces (the last piece
// marked End-of-Body), then DISCONNECT. The library is driven from socket
// notifiers, so the window keeps running. Every way the exchange can stop -
// a refusal, a broken connection, an answer that is not OBEX, a library going
// round in circles or dropping the request, a phone that stays silent longer
// than the answer time limit - ends the push with finished().
class ObexPushSession : public QObject {
    Q_OBJECT
public:
    // Takes over the socket and closes it when done.
    ObexPushSession(int socket, int responseTimeoutMs, QObject* parent = nullptr);
    ~ObexPushSession() override;

    // Opens the file and starts the exchange. False, with the reason, when it
    // cannot begin; otherwise finished() follows exactly once.
    bool start(const QString& path, QString& reason);

signals:
    void finished(bool succeeded, const QString& reason);

private:
    enum class Step { Connect, Put, Disconnect };
    enum class Input { None, Waiting, Closed };
    // What a wake-up may do: let the library work, wait, or end the push.
    enum class Turn { Work, Wait, Stop };

    static void onObexEvent(obex* handle, obex_object* object, int mode, int event, int command,
                            int response);
    void handleEvent(obex_object* object, int event, int response);
    void noteFailure(const QString& reason);
    void pump();
    Turn lookAtAnswer();
    Turn lookAtAnswerHead();
    bool checkHeadway(int result, bool answerWaited);
    bool advance();
    Input pendingInput();
    bool request(obex_object* object);
    bool requestPut(QString& reason);
    bool addPutHeaders(obex_object* object, int room, QString& reason);
    void feedBody(obex_object* object);
    QString refusal(int response) const;
    bool fail(const QString& reason);
    void finish(bool succeeded, const QString& reason);
    void release();

    int m_socket;
    obex* m_handle = nullptr;
    QFile m_file;
    QByteArray m_chunk;
    qint64 m_pieceSize = 0;
    Step m_step = Step::Connect;
    // What the library reported from inside OBEX_Work, looked at after it.
    bool m_requestDone = false;
    int m_response = 0;
    QString m_failure;
    bool m_headway = false;
    int m_packetsWithoutBody = 0;
    int m_idleTurns = 0;
    // A request packet went out; its answer's first bytes are still unread.
    bool m_answerDue = false;
    // The code of the last answer, -1 before the first.
    int m_answerCode = -1;
    bool m_finished = false;
    QSocketNotifier* m_readable = nullptr;
    QSocketNotifier* m_writable = nullptr;
    QTimer m_silence;
    QTimer m_partialAnswer;
};
