// makesis: builds an installation package (.SIS) from a package definition
// (.pkg), the way the message export hands its template to the phone.
#include "PackageBuilder.h"

#include <QCoreApplication>
#include <QStringList>
#include <cstdio>

namespace {
constexpr int exitFailure = 1;
constexpr int exitUsage = 2;

void printLine(FILE* stream, const QString& text) {
    std::fprintf(stream, "%s\n", text.toLocal8Bit().constData());
}
} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QStringList arguments = QCoreApplication::arguments().mid(1);
    const bool verbose = arguments.removeAll(QStringLiteral("-v")) > 0;
    if (arguments.isEmpty() || arguments.size() > 2 || arguments.first().startsWith(u'-')) {
        printLine(stderr, QStringLiteral("usage: makesis [-v] PATH.pkg [OUT.SIS]"));
        return exitUsage;
    }
    const QString pkgPath = arguments.at(0);
    const QString sisPath =
        arguments.size() == 2 ? arguments.at(1) : PackageBuilder::defaultSisPath(pkgPath);

    PackageBuilder builder;
    if (!builder.build(pkgPath, sisPath)) {
        printLine(stderr, builder.error());
        return exitFailure;
    }
    if (verbose) {
        for (const QString& line : builder.summary())
            printLine(stdout, line);
        printLine(stdout, QStringLiteral("wrote %1").arg(sisPath));
    }
    return 0;
}
