#include "frmMmsInfo.h"

#include "AppGlobals.h"
#include "ContentClassChecker.h"
#include "DialogService.h"
#include "MessageSnapshot.h"
#include "MmsInfoLines.h"
#include "PrivateTempDir.h"
#include "SendForm.h"
#include "TabStopDelegate.h"
#include "clsMMSManager.h"
#include "clsMessage.h"

#include <QAction>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QScrollBar>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

namespace {
QString text(const char* key, const char* fallback) {
    return AppGlobals::text(key, fallback);
}

// Room between the longest name and the widest size.
constexpr int kColumnGap = 24;
constexpr int kRowsShown = 24;
} // namespace

frmMmsInfo::frmMmsInfo(clsMMSManager& manager, QWidget* parent)
    : QDialog(parent), m_manager(manager), listBoxInfo(new QListWidget),
      m_tabs(new TabStopDelegate(this)), lblStatus(new QLabel), lblClass(new QLabel),
      cmdCopy(new QPushButton), cmdClose(new QPushButton) {
    setObjectName("frmMmsInfo");
    listBoxInfo->setObjectName("listBoxInfo");
    listBoxInfo->setItemDelegate(m_tabs);
    listBoxInfo->setUniformItemSizes(true);
    listBoxInfo->setSelectionMode(QAbstractItemView::ExtendedSelection);
    lblStatus->setObjectName("lblStatus");
    lblStatus->setTextInteractionFlags(Qt::TextSelectableByMouse);
    lblClass->setObjectName("lblClass");
    lblClass->setWordWrap(true);
    lblClass->setTextInteractionFlags(Qt::TextSelectableByMouse);
    cmdCopy->setObjectName("cmdCopy");
    cmdClose->setObjectName("cmdClose");
    auto* buttons = new QDialogButtonBox;
    buttons->addButton(cmdCopy, QDialogButtonBox::ActionRole);
    buttons->addButton(cmdClose, QDialogButtonBox::RejectRole);
    connect(cmdCopy, &QPushButton::clicked, this, &frmMmsInfo::copyLines);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    // Ctrl+C anywhere in the window takes every line, not only the current one.
    auto* copy = new QAction(this);
    copy->setShortcut(QKeySequence::Copy);
    copy->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    connect(copy, &QAction::triggered, this, &frmMmsInfo::copyLines);
    addAction(copy);
    // The list would copy its current line alone.
    listBoxInfo->installEventFilter(this);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(listBoxInfo, 1);
    layout->addWidget(lblStatus);
    layout->addWidget(lblClass);
    layout->addWidget(buttons);
    cmdClose->setDefault(true);
    TranslateForm();
}

frmMmsInfo* frmMmsInfo::showFor(QWidget* parent, clsMMSManager& manager,
                                const clsMessage* message) {
    if (!message) {
        DialogService::messageBox(
            parent,
            text("STR_MSGINFO_NOMSG", "There is no open message to show information about."),
            text("APP_PRODUCTNAME", "Vellumo"), QMessageBox::Ok, QMessageBox::Information);
        return nullptr;
    }
    auto* window = new frmMmsInfo(manager, parent);
    window->setAttribute(Qt::WA_DeleteOnClose);
    // What it lists is the message of this moment: it is not edited meanwhile.
    window->setWindowModality(Qt::WindowModal);
    window->show();
    window->SetMessage(*message);
    // Now that the lines are known, the window takes their size.
    window->adjustSize();
    return window;
}

void frmMmsInfo::TranslateForm() {
    setWindowTitle(text("STR_MMSINFO_TITLE", "Message information"));
    listBoxInfo->setAccessibleName(windowTitle());
    lblStatus->setAccessibleName(text("STR_MMSINFO_STATUS", "Status"));
    cmdCopy->setText(text("STR_COPY_TEXT", "Copy"));
    cmdClose->setText(text("BTN_CLOSE", "Close"));
    if (m_measured)
        setStatus(totalText(m_total));
}

// The manager writes a copy of the message: writing the send form records
// its file list in the message it writes, and this window changes nothing.
bool frmMmsInfo::SetMessage(const clsMessage& message) {
    listBoxInfo->clear();
    m_total = 0;
    m_measured = false;
    m_lastSlide = 0;
    setStatus(text("STR_INFOCALC_MSG", "Calculating the size of the message…"));
    clsMessage copy;
    copy.setPath(message.Path());
    const PrivateTempDir folder;
    SendForm form;
    const auto progress = connect(&m_manager, &clsMMSManager::ProsessingSlide, this,
                                  &frmMmsInfo::mMmsManager_ProsessingSlide);
    const bool written = MessageSnapshot::take(message, 0).restore(copy) && folder.isValid() &&
                         form.write(m_manager, copy, folder.path());
    disconnect(progress);
    if (!written) {
        setStatus(folder.isValid() ? form.error() : folder.errorString());
        return false;
    }
    const MmsInfoLines info(copy, form);
    for (const QString& line : info.lines()) {
        auto* item = new QListWidgetItem(line, listBoxInfo);
        item->setData(Qt::AccessibleTextRole, line);
    }
    m_total = info.totalBytes();
    m_measured = true;
    showClass(form);
    DoTabs();
    setStatus(totalText(m_total));
    return true;
}

// Whether the message will arrive: the smallest content class it fits, and
// what it breaks of the class the settings choose.
void frmMmsInfo::showClass(const SendForm& form) {
    const ContentClassChecker checker(form);
    const ContentClassChecker::Report report =
        checker.report(ContentClassChecker::classFromSettings());
    QStringList said{AppGlobals::text("STR_MMSINFO_SMALLEST_CLASS", "Smallest content class: %0",
                                      {report.smallest ? ContentClass::name(*report.smallest)
                                                       : text("STR_MMSINFO_NO_CLASS", "none")})};
    const QString chosen = ContentClass::name(report.chosen);
    if (report.fits())
        said << AppGlobals::text("STR_MMSINFO_FITS", "It fits %0.", {chosen});
    else
        said << AppGlobals::text("STR_MMSINFO_BREAKS", "It does not fit %0:", {chosen});
    for (const ContentClassChecker::Broken& rule : report.broken)
        said << rule.line();
    lblClass->setText(said.join(u'\n'));
    lblClass->setAccessibleName(lblClass->text());
}

void frmMmsInfo::DoTabs() {
    const QFontMetrics metrics(listBoxInfo->font());
    const int indent = metrics.horizontalAdvance(QStringLiteral("MMMM"));
    int names = 0;
    int sizes = 0;
    for (const QString& line : lines()) {
        if (!line.startsWith(u'\t'))
            continue;
        names = std::max(names, metrics.horizontalAdvance(line.section(u'\t', 1, 1)));
        sizes = std::max(sizes, metrics.horizontalAdvance(line.section(u'\t', 2)));
    }
    m_tabs->setTabs({QTextOption::Tab(indent, QTextOption::LeftTab),
                     QTextOption::Tab(indent + names + kColumnGap + sizes, QTextOption::RightTab)});
    qreal widest = 0;
    for (const QString& line : lines())
        widest = std::max(widest, m_tabs->textWidth(line, listBoxInfo->font()));
    // Room for every line without a horizontal scroll bar, and for the scroll bar of many;
    // a long message scrolls after a screenful of lines.
    const int frame = 2 * listBoxInfo->frameWidth();
    listBoxInfo->setMinimumWidth(int(std::ceil(widest)) + frame +
                                 listBoxInfo->verticalScrollBar()->sizeHint().width() + 16);
    const int rows = std::clamp(listBoxInfo->count(), 8, kRowsShown);
    listBoxInfo->setMinimumHeight(rows * listBoxInfo->sizeHintForRow(0) + frame);
    listBoxInfo->doItemsLayout();
    listBoxInfo->viewport()->update();
}

QStringList frmMmsInfo::lines() const {
    QStringList all;
    for (int row = 0; row < listBoxInfo->count(); ++row)
        all << listBoxInfo->item(row)->text();
    return all;
}

QString frmMmsInfo::totalText(qint64 bytes) {
    return AppGlobals::text("STR_MMSINFO_TOTSIZE", "Total size: %0 KB",
                            {MmsInfoLines::kilobytes(bytes)});
}

QString frmMmsInfo::status() const {
    return lblStatus->text();
}

// The export reports each slide before it writes it, and the last one once
// more when all are written; the packing follows.
void frmMmsInfo::mMmsManager_ProsessingSlide(int slide, int count) {
    const bool allWritten = slide >= count && m_lastSlide >= count;
    m_lastSlide = slide;
    setStatus(allWritten ? text("STR_COMPRESS", "Compressing…")
                         : text("STR_PROCESS", "Processing…") + u' ' +
                               AppGlobals::text("STR_SLIDE_OF", "Slide %0 of %1",
                                                {QString::number(slide), QString::number(count)}));
    // Nothing else may run while the parts are written; only the line is painted.
    lblStatus->repaint();
}

void frmMmsInfo::setStatus(const QString& status) {
    lblStatus->setText(status);
    emit statusChanged(status);
}

bool frmMmsInfo::eventFilter(QObject* watched, QEvent* event) {
    if (watched == listBoxInfo && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->matches(QKeySequence::Copy)) {
        copyLines();
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

void frmMmsInfo::copyLines() {
    QGuiApplication::clipboard()->setText(lines().join(u'\n') + u'\n');
}
