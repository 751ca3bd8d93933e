#pragma once

#include "PkgDefinition.h"

#include <QByteArray>

class PkgLineCursor;

// Reads the text of a package definition (.pkg): an optional languages line
// (&EN,FR), the header line #{"Name"},(0xUID),major,minor,variant[,words],
// requisite lines (0xUID),major,minor,variant,{"Name"} and file lines
// "source"-"destination"[,FF|FT|FR|FN|FM[,...]]; ';' starts a comment.
// The text may be UTF-8, Latin-1 or UTF-16 with a byte order mark, with
// CR LF or LF line ends.
class PkgParser {
public:
    // False, with error() naming the line, when the text is not a package
    // definition this builder can make a package from.
    bool parse(const QByteArray& bytes);

    const PkgDefinition& definition() const { return m_definition; }
    const PkgError& error() const { return m_error; }

    static QString decode(const QByteArray& bytes);

private:
    void parseLine(const QString& line, int number);
    void parseLanguages(PkgLineCursor& cursor);
    void parseHeader(PkgLineCursor& cursor);
    void parseHeaderOption(PkgLineCursor& cursor);
    void parseRequisite(PkgLineCursor& cursor, int number);
    void parseFile(PkgLineCursor& cursor, int number);
    void parseFileOptions(PkgLineCursor& cursor, PkgFile& file);
    QStringList namesPerLanguage(PkgLineCursor& cursor, const QString& what) const;
    static PkgVersion version(PkgLineCursor& cursor);

    PkgDefinition m_definition;
    PkgError m_error;
    bool m_haveHeader = false;
    bool m_haveLanguages = false;
};
