#pragma once

#include <QString>

class clsMMSManager;
class clsMessage;

// A message written in one of the forms a user can ask for: a SMIL set, a
// template, an installation package, or a binary MMS as it is sent or as it
// is received. Everything is made in a hidden folder inside the target folder
// and moved into place only once all of it was written, so a failure (a full
// disk, a folder that cannot be written) leaves nothing half written behind
// and an earlier export under the same names as it was.
class MessageExport {
public:
    enum Kind { Smil, Template, Package, SentMms, ReceivedMms };
    // Whether the SMIL set a package or binary MMS was made from stays beside
    // it; a SMIL export is its set either way.
    enum Keep { OutputOnly, WholeSet };

    explicit MessageExport(clsMMSManager& manager) : m_manager(manager) {}

    // Writes message as kind to output, a file in an existing folder. For a
    // SMIL set the output's base name names the set's files, as the manager
    // does; the other outputs are made from a set named after "mms" and then
    // take the output's name. Results as clsMMSManager::ExportMMS gives them,
    // and clsMMSManager::kSaveAsMmsFailed when the binary MMS cannot be packed;
    // status() says why.
    int run(clsMessage& message, Kind kind, int durationFormat, const QString& output,
            bool overwrite, Keep keep);
    QString status() const { return m_status; }

    // ".smil", ".tpl", ".SIS" or ".wap".
    static QString extension(Kind kind);
    // The name the manager gives the output of kind in its folder.
    static QString madeName(Kind kind, const QString& smilName);

private:
    int build(clsMessage& message, Kind kind, int durationFormat, const QString& stage,
              const QString& smilName);
    bool folderUsable(Kind kind, const QString& folder);
    bool placeDefinition(const clsMessage& message, const QString& stage, const QString& folder);
    bool commit(const QString& stage, const QString& made, const QString& output, Keep keep);
    bool notWritten(const QString& path, const QString& why);
    bool fail(const QString& status);

    clsMMSManager& m_manager;
    QString m_status;
};
