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
// notifiers, so the window keeps running; a phone that stays silent longer
// than the answer time limit ends the push as a failure.
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

    static void onObexEvent(obex* handle, obex_object* object, int mode, int event, int command,
                            int response);
    void handleEvent(obex_object* object, int event, int response);
    void pump();
    bool workOnce();
    bool advance();
    Input pendingInput();
    bool request(obex_object* object);
    bool requestPut(QString& reason);
    bool addPutHeaders(obex_object* object, int room, QString& reason);
    void feedBody(obex_object* object);
    void finish(bool succeeded, const QString& reason);
    void release();

    int m_socket;
    obex* m_handle = nullptr;
    QFile m_file;
    QByteArray m_chunk;
    qint64 m_pieceSize = 0;
    Step m_step = Step::Connect;
    bool m_requestDone = false;
    int m_response = 0;
    QString m_failure;
    bool m_finished = false;
    QSocketNotifier* m_readable = nullptr;
    QSocketNotifier* m_writable = nullptr;
    QTimer m_silence;
};
