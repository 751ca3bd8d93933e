#include "PkgParser.h"

#include "PkgLanguages.h"
#include "PkgLineCursor.h"

#include <QStringDecoder>
#include <array>
#include <optional>

namespace {
template <typename Value> struct Word {
    const char* shortWord;
    const char* longWord;
    Value value;
};

template <typename Value, std::size_t N>
std::optional<Value> lookUp(const std::array<Word<Value>, N>& words, const QString& word) {
    for (const Word<Value>& entry : words)
        if (word == QLatin1String(entry.shortWord) ||
            (entry.longWord && word == QLatin1String(entry.longWord)))
            return entry.value;
    return std::nullopt;
}

constexpr std::array<Word<SisType>, 6> typeWords{{
    {"SA", "SISAPP", SisType::Application},
    {"SY", "SISSYSTEM", SisType::System},
    {"SO", "SISOPTION", SisType::Option},
    {"SC", "SISCONFIG", SisType::Config},
    {"SP", "SISPATCH", SisType::Patch},
    {"SU", "SISUPGRADE", SisType::Upgrade},
}};

constexpr std::array<Word<quint16>, 3> optionWords{{
    {"SH", "SHUTDOWNAPPS", SisOption::ShutdownApps},
    {"NC", "NOCOMPRESS", SisOption::NoCompress},
    // Names are always written as UTF-16, so asking for it changes nothing.
    {"IU", "UNICODE", SisOption::Unicode},
}};

constexpr std::array<Word<SisFileType>, 5> fileTypeWords{{
    {"FF", nullptr, SisFileType::Standard},
    {"FT", nullptr, SisFileType::Text},
    {"FR", nullptr, SisFileType::Run},
    {"FN", nullptr, SisFileType::Null},
    {"FM", nullptr, SisFileType::Mime},
}};

// What to do after showing a text file (continue, skip, abort), and when to
// run a file (at install, at removal, at both).
constexpr std::array<Word<quint32>, 3> textDetailWords{{
    {"TC", nullptr, 0},
    {"TS", nullptr, 1},
    {"TA", nullptr, 2},
}};
constexpr std::array<Word<quint32>, 3> runDetailWords{{
    {"RI", nullptr, 0},
    {"RR", nullptr, 1},
    {"RB", nullptr, 2},
}};

const QString headerShape = QStringLiteral("#{\"Name\"},(0xUID),major,minor,variant");
} // namespace

QString PkgParser::decode(const QByteArray& bytes) {
    if (bytes.startsWith("\xFF\xFE"))
        return QStringDecoder(QStringDecoder::Utf16LE)(bytes.mid(2));
    if (bytes.startsWith("\xFE\xFF"))
        return QStringDecoder(QStringDecoder::Utf16BE)(bytes.mid(2));
    const QByteArray body = bytes.startsWith("\xEF\xBB\xBF") ? bytes.mid(3) : bytes;
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = utf8(body);
    // Text that is not valid UTF-8 comes from an older editor: Latin-1.
    return utf8.hasError() ? QString::fromLatin1(body) : text;
}

bool PkgParser::parse(const QByteArray& bytes) {
    m_definition = {};
    m_error = {};
    m_haveHeader = false;
    m_haveLanguages = false;
    const QString text = decode(bytes);
    if (text.trimmed().isEmpty()) {
        m_error = {1, QStringLiteral("the package definition is empty")};
        return false;
    }
    QStringList lines = text.split(u'\n');
    if (lines.size() > 1 && lines.last().isEmpty())
        lines.removeLast(); // the line end of the last line
    int number = 0;
    try {
        for (QString& line : lines) {
            ++number;
            if (line.endsWith(u'\r'))
                line.chop(1);
            parseLine(line, number);
        }
        if (!m_haveHeader)
            throw PkgSyntaxError{QStringLiteral("missing the header line %1").arg(headerShape)};
    } catch (const PkgSyntaxError& error) {
        m_error = {number, error.message};
        return false;
    }
    return true;
}

void PkgParser::parseLine(const QString& line, int number) {
    PkgLineCursor cursor(line);
    if (cursor.atEnd())
        return;
    if (cursor.peek(u'&'))
        return parseLanguages(cursor);
    if (cursor.peek(u'#'))
        return parseHeader(cursor);
    if (!m_haveHeader)
        throw PkgSyntaxError{
            QStringLiteral("missing the header line %1 before this line").arg(headerShape)};
    if (cursor.peek(u'('))
        return parseRequisite(cursor, number);
    if (cursor.peek(u'"') || cursor.peek(u'{'))
        return parseFile(cursor, number);
    throw PkgSyntaxError{
        QStringLiteral("expected a requisite (0xUID),major,minor,variant,{\"Name\"} or a file line "
                       "\"source\"-\"destination\"")};
}

void PkgParser::parseLanguages(PkgLineCursor& cursor) {
    if (m_haveHeader || m_haveLanguages)
        throw PkgSyntaxError{
            QStringLiteral("the languages line must come once, before the header line")};
    cursor.expect(u'&', QStringLiteral("'&'"));
    do {
        const QString word = cursor.word(QStringLiteral("a language code such as EN"));
        const std::optional<quint16> code = pkgLanguageCode(word);
        if (!code)
            throw PkgSyntaxError{QStringLiteral("unknown language code %1").arg(word)};
        if (m_definition.languages.contains(*code))
            throw PkgSyntaxError{QStringLiteral("language %1 is listed twice").arg(word)};
        m_definition.languages << *code;
    } while (cursor.accept(u','));
    cursor.expectEnd();
    m_haveLanguages = true;
}

void PkgParser::parseHeader(PkgLineCursor& cursor) {
    if (m_haveHeader)
        throw PkgSyntaxError{QStringLiteral("a second header line")};
    if (!m_haveLanguages)
        m_definition.languages = {1}; // English alone
    cursor.expect(u'#', QStringLiteral("'#'"));
    m_definition.names = namesPerLanguage(cursor, QStringLiteral("the component name"));
    cursor.expect(u',', QStringLiteral("',' before the package UID"));
    m_definition.uid = cursor.uidInParentheses();
    m_definition.version = version(cursor);
    while (cursor.accept(u','))
        parseHeaderOption(cursor);
    cursor.expectEnd();
    m_haveHeader = true;
}

void PkgParser::parseHeaderOption(PkgLineCursor& cursor) {
    const QString word = cursor.word(QStringLiteral("an option word")).toUpper();
    if (word == QLatin1String("TYPE")) {
        cursor.expect(u'=', QStringLiteral("'=' after TYPE"));
        const QString typeWord = cursor.word(QStringLiteral("a package type")).toUpper();
        const std::optional<SisType> type = lookUp(typeWords, typeWord);
        if (!type)
            throw PkgSyntaxError{QStringLiteral("unknown package type %1").arg(typeWord)};
        m_definition.type = *type;
        return;
    }
    const std::optional<quint16> option = lookUp(optionWords, word);
    if (!option)
        throw PkgSyntaxError{QStringLiteral("unknown option word %1").arg(word)};
    m_definition.options |= *option;
}

void PkgParser::parseRequisite(PkgLineCursor& cursor, int number) {
    PkgRequisite requisite;
    requisite.line = number;
    requisite.uid = cursor.uidInParentheses();
    requisite.version = version(cursor);
    cursor.expect(u',', QStringLiteral("',' before the requisite name"));
    requisite.names = namesPerLanguage(cursor, QStringLiteral("the requisite name"));
    cursor.expectEnd();
    m_definition.requisites << requisite;
}

void PkgParser::parseFile(PkgLineCursor& cursor, int number) {
    PkgFile file;
    file.line = number;
    file.perLanguage = cursor.peek(u'{');
    file.sources = file.perLanguage
                       ? namesPerLanguage(cursor, QStringLiteral("the per-language sources"))
                       : QStringList{cursor.quoted(QStringLiteral("the source file"))};
    cursor.expect(u'-', QStringLiteral("'-' between source and destination"));
    file.destination = cursor.quoted(QStringLiteral("the destination"));
    if (cursor.accept(u','))
        parseFileOptions(cursor, file);
    cursor.expectEnd();
    // A file created on the phone later has no source; text shown during
    // installation need not be installed anywhere.
    if (file.type != SisFileType::Null && file.sources.contains(QString()))
        throw PkgSyntaxError{QStringLiteral("the source file name is empty")};
    if (file.type != SisFileType::Text && file.destination.isEmpty())
        throw PkgSyntaxError{QStringLiteral("the destination is empty")};
    m_definition.files << file;
}

void PkgParser::parseFileOptions(PkgLineCursor& cursor, PkgFile& file) {
    const QString typeWord =
        cursor.word(QStringLiteral("a file type (FF, FT, FR, FN, FM)")).toUpper();
    const std::optional<SisFileType> type = lookUp(fileTypeWords, typeWord);
    if (!type)
        throw PkgSyntaxError{QStringLiteral("unknown file type %1").arg(typeWord)};
    file.type = *type;
    while (cursor.accept(u',')) {
        if (cursor.peek(u'"')) {
            file.mimeType = cursor.quoted(QStringLiteral("the MIME type"));
            continue;
        }
        const QString word = cursor.word(QStringLiteral("a file option")).toUpper();
        const std::optional<quint32> details =
            file.type == SisFileType::Text ? lookUp(textDetailWords, word)
            : file.type == SisFileType::Run || file.type == SisFileType::Mime
                ? lookUp(runDetailWords, word)
                : std::nullopt;
        if (!details)
            throw PkgSyntaxError{
                QStringLiteral("file option %1 does not go with file type %2").arg(word, typeWord)};
        file.details = *details;
    }
}

QStringList PkgParser::namesPerLanguage(PkgLineCursor& cursor, const QString& what) const {
    const QStringList names = cursor.quotedList(what);
    if (names.size() != m_definition.languages.size())
        throw PkgSyntaxError{QStringLiteral("%1 has %2 entries for %3 languages")
                                 .arg(what)
                                 .arg(names.size())
                                 .arg(m_definition.languages.size())};
    return names;
}

PkgVersion PkgParser::version(PkgLineCursor& cursor) {
    PkgVersion version;
    cursor.expect(u',', QStringLiteral("',' before the major version"));
    version.major = quint16(cursor.number(QStringLiteral("the major version"), 0xFFFF));
    cursor.expect(u',', QStringLiteral("',' before the minor version"));
    version.minor = quint16(cursor.number(QStringLiteral("the minor version"), 0xFFFF));
    cursor.expect(u',', QStringLiteral("',' before the variant"));
    version.variant = cursor.number(QStringLiteral("the variant"), 0xFFFFFFFFu);
    return version;
}
