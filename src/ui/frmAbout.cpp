#include "frmAbout.h"

#include "AppGlobals.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QTextBrowser>
#include <QVBoxLayout>

namespace {
QString text(const char* key, const char* fallback) {
    return AppGlobals::text(key, fallback);
}

struct Library {
    const char* name;
    const char* useKey;
    const char* use;
    const char* licence;
};

// What the program links, and under which terms; the Debian packages that
// the program depends on bring the full licence texts.
constexpr Library kLibraries[] = {
    {"Qt 6", "STR_ABOUT_USE_QT", "windows, pictures, sound and video", "LGPL-3.0-only"},
    {"pugixml", "STR_ABOUT_USE_XML", "settings, messages and presentations", "MIT"},
    {"libarchive", "STR_ABOUT_USE_ARCHIVE", "message files and templates", "BSD-2-Clause"},
    {"zlib", "STR_ABOUT_USE_ZLIB", "compressed message files", "Zlib"},
    {"FFmpeg (libavcodec, libavformat, libavutil, libswresample, libswscale)",
     "STR_ABOUT_USE_FFMPEG", "reading sounds and videos",
     "LGPL-2.1-or-later (Debian's build: GPL-2.0-or-later)"},
    {"opencore-amr", "STR_ABOUT_USE_AMR", "AMR sounds", "Apache-2.0"},
    {"LAME", "STR_ABOUT_USE_MP3", "MP3 sounds", "LGPL-2.0-or-later"},
    {"FluidSynth", "STR_ABOUT_USE_MIDI", "MIDI sounds", "LGPL-2.1-or-later"},
    {"PulseAudio client library", "STR_ABOUT_USE_PULSE", "recording what the computer plays",
     "LGPL-2.1-or-later"},
    {"FreeImage", "STR_ABOUT_USE_PICTURES", "pictures of many formats",
     "FreeImage Public License or GPL-2.0/GPL-3.0"},
    {"OpenOBEX", "STR_ABOUT_USE_OBEX", "sending to a phone", "LGPL-2.1-or-later"},
};
} // namespace

frmAbout::frmAbout(QWidget* parent)
    : QDialog(parent), lblVersion(new QLabel), txtLibraries(new QTextBrowser),
      cmdOk(new QPushButton) {
    setObjectName(QStringLiteral("frmAbout"));
    lblVersion->setObjectName(QStringLiteral("lblVersion"));
    txtLibraries->setObjectName(QStringLiteral("txtLibraries"));
    cmdOk->setObjectName(QStringLiteral("cmdOk"));
    QFont title = lblVersion->font();
    title.setPointSizeF(title.pointSizeF() * 1.4);
    title.setBold(true);
    lblVersion->setFont(title);
    cmdOk->setDefault(true);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblVersion);
    layout->addWidget(txtLibraries, 1);
    layout->addWidget(cmdOk, 0, Qt::AlignRight);
    connect(cmdOk, &QPushButton::clicked, this, &QDialog::accept);
    resize(560, 420);
    TranslateForm();
}

QString frmAbout::versionLine() {
    return QStringLiteral("Vellumo") + text("STR_ABOUT_VERSION", " version: ") +
           QApplication::applicationVersion();
}

void frmAbout::TranslateForm() {
    setWindowTitle(text("MNU_HELP_ABOUT", "About").remove(u'&').remove(QChar(0x2026)));
    lblVersion->setText(versionLine());
    lblVersion->setAccessibleName(lblVersion->text());
    txtLibraries->setAccessibleName(
        text("STR_ABOUT_LIBRARIES", "Libraries this program is built on, and their licences"));
    QString html = QStringLiteral("<p>") +
                   text("STR_ABOUT_LIBRARIES", "Libraries this program is built on, and their "
                                               "licences")
                       .toHtmlEscaped() +
                   QStringLiteral(":</p><table>");
    for (const Library& library : kLibraries)
        html += QStringLiteral("<tr><td><b>%1</b><br>%2</td><td>%3</td></tr>")
                    .arg(QString::fromUtf8(library.name).toHtmlEscaped(),
                         text(library.useKey, library.use).toHtmlEscaped(),
                         QString::fromUtf8(library.licence).toHtmlEscaped());
    txtLibraries->setHtml(html + QStringLiteral("</table><p>Qt ") +
                          QString::fromLatin1(qVersion()) + QStringLiteral("</p>"));
    cmdOk->setText(text("BTN_OK", "OK"));
}
