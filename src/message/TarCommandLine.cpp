#include "TarCommandLine.h"

TarCommandLine::TarCommandLine(const QString& commandLine) {
    QStringList words;
    if (splitWords(commandLine, &words))
        takeWords(words);
    else
        fail(QStringLiteral("a double quote is not closed"));
}

// Splits at blanks; a double-quoted stretch belongs to the word around it, so
// "" is an empty word and "a b"c is the word a bc.
bool TarCommandLine::splitWords(const QString& line, QStringList* words) {
    QString word;
    bool inWord = false;
    bool quoted = false;
    for (const QChar c : line) {
        if (c == u'"') {
            quoted = !quoted;
            inWord = true;
        } else if (!quoted && c.isSpace()) {
            if (inWord)
                words->append(word);
            word.clear();
            inWord = false;
        } else {
            word.append(c);
            inWord = true;
        }
    }
    if (quoted)
        return false;
    if (inWord)
        words->append(word);
    return true;
}

QString TarCommandLine::withSlashes(const QString& path) {
    QString result = path;
    return result.replace(u'\\', u'/');
}

bool TarCommandLine::takeWords(const QStringList& words) {
    if (words.isEmpty())
        return fail(QStringLiteral("empty command line"));
    QStringList operands;
    for (qsizetype i = 0; i < words.size(); ++i) {
        const QString& word = words.at(i);
        if (word == QLatin1String("-o")) {
            if (m_hasOutputFolder)
                return fail(QStringLiteral("-o given twice"));
            if (i + 1 >= words.size())
                return fail(QStringLiteral("-o needs a folder"));
            m_outputFolder = withSlashes(words.at(++i));
            m_hasOutputFolder = true;
        } else if (word.startsWith(QLatin1String("--"))) {
            if (!takeLongOption(word))
                return false;
        } else if (word.startsWith(u'-') && word.size() > 1) {
            if (!takeFlags(word))
                return false;
        } else {
            operands.append(word);
        }
    }
    checkCombination(operands);
    return isValid();
}

bool TarCommandLine::takeLongOption(const QString& word) {
    const qsizetype equals = word.indexOf(u'=');
    if (equals < 0)
        return fail(QStringLiteral("option %1 needs a value").arg(word));
    const QString name = word.mid(2, equals - 2);
    const QString value = word.mid(equals + 1);
    if (value != QLatin1String("0") && value != QLatin1String("1"))
        return fail(QStringLiteral("option --%1 takes 0 or 1, not \"%2\"").arg(name, value));
    if (name == QLatin1String("use-directory"))
        m_keepFolders = value == QLatin1String("1");
    else if (name != QLatin1String("display-dialog"))
        return fail(QStringLiteral("unknown option --%1").arg(name));
    return true;
}

bool TarCommandLine::takeFlags(const QString& word) {
    for (const QChar c : word.mid(1)) {
        switch (c.unicode()) {
        case u'c':
            m_create = true;
            break;
        case u'x':
            m_extract = true;
            break;
        case u'v':
            m_list = true;
            break;
        case u'f':
            m_namesArchive = true;
            break;
        case u'z':
            m_gzip = true;
            break;
        default:
            return fail(QStringLiteral("unknown flag '%1' in %2").arg(c).arg(word));
        }
    }
    return true;
}

void TarCommandLine::checkCombination(const QStringList& operands) {
    if (m_create == m_extract) {
        fail(QStringLiteral("exactly one of the flags c and x is needed"));
        return;
    }
    if (!m_namesArchive || operands.isEmpty() || operands.first().isEmpty()) {
        fail(QStringLiteral("no archive named (flag f and a path)"));
        return;
    }
    m_operation = m_create ? Operation::Create : Operation::Extract;
    m_archive = withSlashes(operands.first());
    for (qsizetype i = 1; i < operands.size(); ++i)
        m_files.append(withSlashes(operands.at(i)));
    if (m_create) {
        if (m_hasOutputFolder)
            fail(QStringLiteral("-o only applies to extraction"));
        else if (m_files.isEmpty())
            fail(QStringLiteral("nothing to pack"));
        else if (m_files.contains(QString()))
            fail(QStringLiteral("empty file name"));
        return;
    }
    if (!m_files.isEmpty())
        fail(QStringLiteral("unexpected word \"%1\" after the archive").arg(operands.at(1)));
    else if (!m_hasOutputFolder || m_outputFolder.isEmpty())
        fail(QStringLiteral("extraction needs an output folder (-o)"));
}

bool TarCommandLine::fail(const QString& reason) {
    if (m_error.isEmpty())
        m_error = reason;
    return false;
}
