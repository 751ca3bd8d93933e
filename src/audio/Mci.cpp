#include "Mci.h"

#include "AudioBackend.h"
#include "MciError.h"
#include "MciOptions.h"
#include "MpegVideoDevice.h"
#include "SequencerDevice.h"
#include "WaveAudioDevice.h"

#include <QRegularExpression>

namespace {
Mci* g_installed = nullptr;

// Words separated by blanks; a double-quoted word may hold blanks.
int splitWords(const QString& text, QStringList& words) {
    words.clear();
    for (qsizetype i = 0; i < text.size();) {
        if (text[i].isSpace()) {
            ++i;
        } else if (text[i] == QLatin1Char('"')) {
            const qsizetype close = text.indexOf(QLatin1Char('"'), i + 1);
            if (close < 0)
                return MciError::NoClosingQuote;
            words << text.mid(i + 1, close - i - 1);
            i = close + 1;
        } else {
            qsizetype end = i;
            while (end < text.size() && !text[end].isSpace())
                ++end;
            words << text.mid(i, end - i);
            i = end;
        }
    }
    return MciError::None;
}

QString unquoted(QString text) {
    text = text.trimmed();
    if (text.size() >= 2 && text.startsWith(QLatin1Char('"')) && text.endsWith(QLatin1Char('"')))
        return text.mid(1, text.size() - 2);
    return text;
}

// A path as written in a command: in quotes, which are then not part of it,
// or bare, when every character is the path's own (a quote inside included).
int pathOf(QString written, QString& path) {
    const QString text = written.trimmed();
    if (text.startsWith(QLatin1Char('"')) && (text.size() < 2 || !text.endsWith(QLatin1Char('"'))))
        return MciError::NoClosingQuote;
    path = unquoted(text);
    return MciError::None;
}

QString key(const QString& alias) {
    return alias.toLower();
}

const QStringList kDeviceKeywords[] = {
    {},             // open, close
    {"from", "to"}, // play
    {"to"},         // record
    {"time format", "alignment", "channels", "bitspersample", "samplespersec", "bytespersec"},
};
} // namespace

Mci::Mci(AudioBackend& backend) : m_backend(backend) {}

Mci::~Mci() = default;

Mci& Mci::instance() {
    if (g_installed)
        return *g_installed;
    // Made once for the whole run and never torn down: sound devices must not
    // be closed after the application object has gone.
    static Mci* const standard = new Mci(*AudioBackend::createDefault().release());
    return *standard;
}

void Mci::install(Mci* mci) {
    g_installed = mci;
}

QString Mci::mciGetErrorString(int code) {
    return MciError::text(code);
}

int Mci::mciSendString(const QString& command, QString* reply, int replySize) {
    QString text;
    m_lastDetail.clear();
    if (m_trace)
        m_trace(command);
    const int result = execute(command, text);
    if (reply)
        *reply = replySize > 0 ? text.left(replySize - 1) : QString();
    return result;
}

int Mci::execute(const QString& command, QString& reply) {
    const QString verb = command.trimmed().section(QLatin1Char(' '), 0, 0).toLower();
    // A file name may hold anything, quotes included: the commands that end
    // in one read it themselves instead of splitting it into words.
    if (verb == QLatin1String("open"))
        return open(command.trimmed().mid(4));
    QStringList words;
    if (verb == QLatin1String("save")) {
        words = command.trimmed().split(QRegularExpression(QStringLiteral("\\s+"))).mid(0, 2);
    } else {
        if (const int error = splitWords(command, words); error != MciError::None)
            return error;
        if (command.count(QLatin1Char('"')) % 2)
            return MciError::NoClosingQuote;
    }
    if (words.isEmpty())
        return MciError::MissingCommandString;
    static const QStringList deviceVerbs{"close", "play", "stop",  "record",
                                         "save",  "set",  "status"};
    if (!deviceVerbs.contains(verb))
        return MciError::UnrecognizedCommand;
    if (words.size() < 2)
        return MciError::InvalidDeviceName;
    if (verb == QLatin1String("close"))
        return words.size() > 2 ? MciError::ExtraCharacters : close(words[1]);
    return deviceCommand(verb, words[1], words.mid(2), command, reply);
}

// "open ELEMENT [type T] [alias A] [buffer N]", where ELEMENT is "new",
// "TYPE!PATH" or a PATH. The path may hold blanks, quotes and even the
// option words, so the options are taken from the end of the command, each
// once, and the path is all that comes before them. After "TYPE!" the type is
// given, so a "type" there belongs to the file's name, and a buffer is a number.
int Mci::open(const QString& arguments) {
    MciOptions options;
    QString element = arguments.trimmed();
    const bool typed = element.contains(QLatin1Char('!'));
    const QStringList allowed =
        typed ? QStringList{"alias"} : QStringList{"alias", "type", "buffer"};
    static const QRegularExpression trailing(
        QStringLiteral(R"re(\s+([A-Za-z]+)\s+("[^"]*"|[^\s"]+)$)re"));
    for (QRegularExpressionMatch match = trailing.match(element); match.hasMatch();
         match = trailing.match(element)) {
        const QString keyword = match.captured(1).toLower();
        const bool number = match.captured(2).toUInt() > 0 || match.captured(2) == u'0';
        if (!allowed.contains(keyword) || options.has(keyword) ||
            (keyword == QLatin1String("buffer") && !number))
            break;
        options.add(keyword, unquoted(match.captured(2)));
        element.truncate(match.capturedStart());
    }
    if (element.isEmpty())
        return MciError::MissingParameter;
    int error = MciError::None;
    options.number("buffer", &error);
    if (error != MciError::None)
        return error;

    // Either the whole element or the path after "TYPE!" may be in quotes.
    if (const int quoting = pathOf(element, element); quoting != MciError::None)
        return quoting;
    const qsizetype bang = element.indexOf(QLatin1Char('!'));
    const QString type = (bang > 0 ? element.left(bang) : options.value("type")).toLower();
    QString path = element;
    if (const int quoting = bang > 0 ? pathOf(element.mid(bang + 1), path) : MciError::None;
        quoting != MciError::None)
        return quoting;
    const bool isNew = bang < 0 && path.compare(QLatin1String("new"), Qt::CaseInsensitive) == 0;
    if (type.isEmpty())
        return MciError::DeviceTypeRequired;
    if (isNew && !options.has("alias"))
        return MciError::NewRequiresAlias;
    const QString alias = options.has("alias") ? options.value("alias") : path;
    if (m_devices.count(key(alias)))
        return MciError::DuplicateAlias;

    std::unique_ptr<MciDevice> device;
    if (isNew) {
        if (type != QLatin1String("waveaudio"))
            return MciError::FilenameRequired;
        device = std::make_unique<WaveAudioDevice>(m_backend);
    } else if (const int failed = openDevice(type, path, device); failed != MciError::None) {
        return failed;
    }
    m_devices[key(alias)] = std::move(device);
    return MciError::None;
}

int Mci::openDevice(const QString& type, const QString& path, std::unique_ptr<MciDevice>& device) {
    if (type == QLatin1String("waveaudio"))
        return WaveAudioDevice::open(path, m_backend, device, m_lastDetail);
    if (type == QLatin1String("sequencer"))
        return SequencerDevice::open(path, m_backend, device, m_lastDetail);
    if (type == QLatin1String("mpegvideo"))
        return MpegVideoDevice::open(path, m_backend, device, m_lastDetail);
    return MciError::InvalidDeviceName;
}

int Mci::close(const QString& alias) {
    if (alias.compare(QLatin1String("all"), Qt::CaseInsensitive) == 0) {
        m_devices.clear();
        return MciError::None;
    }
    return m_devices.erase(key(alias)) ? MciError::None : MciError::InvalidDeviceName;
}

int Mci::deviceCommand(const QString& verb, const QString& alias, const QStringList& words,
                       const QString& command, QString& reply) {
    const auto found = m_devices.find(key(alias));
    if (found == m_devices.end())
        return MciError::InvalidDeviceName;
    MciDevice& device = *found->second;
    if (verb == QLatin1String("save"))
        return save(device, command);
    if (verb == QLatin1String("status")) {
        if (words.isEmpty())
            return MciError::MissingParameter;
        if (words.size() > 1)
            return MciError::ExtraCharacters;
        return device.status(words[0].toLower(), reply);
    }

    const int kind = verb == QLatin1String("play")     ? 1
                     : verb == QLatin1String("record") ? 2
                     : verb == QLatin1String("set")    ? 3
                                                       : 0;
    MciOptions options;
    if (const int error = options.parse(words, kDeviceKeywords[kind]); error != MciError::None)
        return error;
    int error = MciError::None;
    const auto from = options.number("from", &error);
    const auto to = options.number("to", &error);
    if (error != MciError::None)
        return error;

    int result = MciError::None;
    switch (kind) {
    case 1:
        result = device.play(from, to);
        break;
    case 2:
        result = device.record(to);
        break;
    case 3:
        result = device.set(options);
        break;
    default:
        result = device.stop();
        break;
    }
    if (result != MciError::None)
        m_lastDetail = device.errorDetail();
    return result;
}

// "save ALIAS PATH": the path is the rest of the command and may hold blanks.
int Mci::save(MciDevice& device, const QString& command) {
    static const QRegularExpression pattern(QStringLiteral(R"(^\s*\S+\s+\S+\s+(.+)$)"));
    const QRegularExpressionMatch match = pattern.match(command);
    if (!match.hasMatch())
        return MciError::FilenameRequired;
    QString path;
    if (const int quoting = pathOf(match.captured(1), path); quoting != MciError::None)
        return quoting;
    const int result = device.save(path);
    if (result != MciError::None)
        m_lastDetail = device.errorDetail();
    return result;
}

int mciSendString(const QString& command, QString* reply, int replySize) {
    return Mci::instance().mciSendString(command, reply, replySize);
}

bool mciGetErrorString(int code, QString* text, int size) {
    const QString message = Mci::mciGetErrorString(code);
    if (text)
        *text = size > 0 ? message.left(size - 1) : QString();
    return MciError::isKnown(code);
}
