#pragma once

#include "ContentClass.h"
#include "ContentClassChecker.h"

#include <QByteArray>
#include <QObject>
#include <QString>
#include <optional>

class MessageDocument;
class clsMMSManager;
class clsMessage;
class QWidget;

// Holds the open message to the content class chosen in the settings, in the
// creation mode they choose. Warning mode warns once, with every broken rule,
// before an unfitting message is saved, exported or sent, and lets the user go
// on; Restricted mode refuses a part that breaks the class, offering to make it
// fit, and lets no unfitting message be exported or sent; Free mode never asks.
class ClassGuard : public QObject {
    Q_OBJECT
public:
    enum class Leaving { Save, Export, Send };
    // What becomes of a file offered to the message: taken as it is,
    // refused, or taken after it was made to fit.
    enum class Admission { Admit, Refuse, Fit };

    ClassGuard(MessageDocument& document, QWidget* window);

    // True when the message may leave as the user asked.
    bool mayLeave(Leaving how);
    // Whether the file at path, offered under name, may become part of the
    // current slide. fitOffer asks whether the caller shall make it fit ("" when
    // it cannot); the user's yes is Fit, and the caller then does so.
    Admission admit(const QString& path, const QString& name, const QString& fitOffer);
    // The fitting the Restricted mode offers for a sound: an AMR-NB sound
    // fits every class that takes sounds at all.
    static bool soundCanFit(const QString& path);
    // Fits the whole message to the chosen class as one step of the history
    // and says what was done and what still breaks the class.
    bool fitMessage();

    // The message's send form measured against the chosen class, from a copy
    // so that the message itself is not touched; nullopt, with error set,
    // when the send form cannot be written.
    static std::optional<ContentClassChecker::Report>
    measure(clsMMSManager& manager, const clsMessage& message, QString* error);

private:
    bool restrictedLeave(const ContentClassChecker::Report& report);
    bool warnedLeave(const ContentClassChecker::Report& report, const QByteArray& state);

    MessageDocument& m_document;
    QWidget* m_window;
    // The message and class the user already chose to send as they were.
    QByteArray m_acceptedState;
    std::optional<ContentClass::Id> m_acceptedClass;
};
