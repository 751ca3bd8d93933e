#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

// What a package definition (.pkg) says, as the builder needs it.

// Bits of the package header's options field.
namespace SisOption {
constexpr quint16 Unicode = 0x0001;
constexpr quint16 NoCompress = 0x0008;
constexpr quint16 ShutdownApps = 0x0010;
} // namespace SisOption

// The package type field.
enum class SisType : quint16 { Application, System, Option, Config, Patch, Upgrade };

// The file type field of a file record.
enum class SisFileType : quint32 {
    Standard = 0,
    Text = 1,
    Component = 2,
    Run = 3,
    Null = 4,
    Mime = 5,
};

// A failure, with the .pkg line it belongs to (0 when it belongs to no line).
struct PkgError {
    int line = 0;
    QString message;
};

struct PkgVersion {
    quint16 major = 0;
    quint16 minor = 0;
    quint32 variant = 0;
};

struct PkgFile {
    int line = 0;
    // One source, or one per language for a file that differs by language.
    QStringList sources;
    bool perLanguage = false;
    QString destination;
    SisFileType type = SisFileType::Standard;
    quint32 details = 0;
    QString mimeType;
    // The bytes of each source, filled in by SourceLoader; a file created on
    // the phone later (FN) has none.
    QList<QByteArray> contents;
};

struct PkgRequisite {
    int line = 0;
    quint32 uid = 0;
    PkgVersion version;
    QStringList names; // one per language
};

struct PkgDefinition {
    QList<quint16> languages; // numeric language codes, in .pkg order
    QStringList names;        // the component name, one per language
    quint32 uid = 0;
    PkgVersion version;
    quint16 options = 0;
    SisType type = SisType::Application;
    QList<PkgRequisite> requisites;
    QList<PkgFile> files; // in installation order, as in the .pkg
};
