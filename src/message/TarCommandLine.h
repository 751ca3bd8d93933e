#pragma once

#include <QString>
#include <QStringList>

// One command line of the tar engine, taken apart. The syntax:
//   --name=value        long options: use-directory and display-dialog, each 0 or 1
//   -xcvfz              a group of flag letters in any order: c create, x extract,
//                       v list the members, f an archive is named, z gzip
//   -o FOLDER           the folder extraction writes into
//   anything else       operands: the archive first, then (when creating) the files
// Words are separated by blanks; double quotes keep blanks inside a word and are
// removed. Paths may use "\" as separator; they come out with "/".
class TarCommandLine {
public:
    enum class Operation { Create, Extract };

    explicit TarCommandLine(const QString& commandLine);

    // False when the line could not be understood; error() then says why.
    bool isValid() const { return m_error.isEmpty(); }
    QString error() const { return m_error; }

    Operation operation() const { return m_operation; }
    bool listsMembers() const { return m_list; }
    bool compresses() const { return m_gzip; }
    // use-directory: whether extraction keeps the folder names of members (default yes).
    bool keepsFolders() const { return m_keepFolders; }
    QString archive() const { return m_archive; }
    // The files to pack, in the order given; the last path component may be a
    // wildcard pattern such as "*.*".
    QStringList files() const { return m_files; }
    QString outputFolder() const { return m_outputFolder; }

private:
    static bool splitWords(const QString& line, QStringList* words);
    static QString withSlashes(const QString& path);
    bool takeLongOption(const QString& word);
    bool takeFlags(const QString& word);
    bool takeWords(const QStringList& words);
    void checkCombination(const QStringList& operands);
    bool fail(const QString& reason);

    QString m_error;
    Operation m_operation = Operation::Create;
    bool m_create = false;
    bool m_extract = false;
    bool m_list = false;
    bool m_gzip = false;
    bool m_namesArchive = false;
    bool m_keepFolders = true;
    bool m_hasOutputFolder = false;
    QString m_archive;
    QStringList m_files;
    QString m_outputFolder;
};
