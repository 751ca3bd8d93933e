#include "ctlPictureEditor.h"

#include "AppGlobals.h"
#include "AppPaths.h"
#include "DialogService.h"
#include "DroppedMedia.h"
#include "MediaFolderModel.h"
#include "MessageDocument.h"
#include "PictureEditorAccessible.h"
#include "SlideRenderer.h"
#include "StoredColor.h"
#include "clsDrawObjects.h"
#include "clsPopupMenu.h"
#include "ctlBrowser.h"

#include <QAccessible>
#include <QApplication>
#include <QContextMenuEvent>
#include <QDir>
#include <QFileInfo>
#include <QImageReader>
#include <QMimeData>
#include <QPainter>
#include <QPlainTextEdit>
#include <QTextDocument>
#include <QTextOption>
#include <algorithm>
#include <cmath>

namespace {
constexpr int kMargin = 8;

QString withWindowsLineEnds(QString text) {
    return text.replace(QLatin1String("\r\n"), QLatin1String("\n"))
        .replace(u'\n', QLatin1String("\r\n"));
}

QRect rectOf(const DrawObjectProperties& p) {
    return QRect(p.x, p.y, p.w, p.h);
}
} // namespace

ctlPictureEditor::ctlPictureEditor(MessageDocument& document, QWidget* parent)
    : QWidget(parent), m_document(document), m_edits(document) {
    setObjectName(QStringLiteral("ctlPictureEditor"));
    setFocusPolicy(Qt::StrongFocus);
    setAcceptDrops(true);
    setMouseTracking(true);
    setMinimumSize(160 + 2 * kMargin, 120 + 2 * kMargin);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    PictureEditorAccessible::install();
    TranslateControl();
}

void ctlPictureEditor::TranslateControl() {
    m_menu.TranslateControl();
    setAccessibleName(AppGlobals::text("STR_SLIDE_PICTURE", "Slide picture"));
    setAccessibleDescription(
        AppGlobals::text("STR_PICTURE_HINT", "Right-click or press the menu key for commands."));
}

void ctlPictureEditor::SetSurfaceSize(QSize size) {
    if (size.isEmpty() || size == m_edits.surface())
        return;
    m_edits.setSurface(size);
    m_cache.clear();
    updateGeometry();
    update();
}

QRect ctlPictureEditor::pictureRect() const {
    const QSize surface = m_edits.surface();
    const QSize room = size() - QSize(2 * kMargin, 2 * kMargin);
    const int whole = std::min(room.width() / surface.width(), room.height() / surface.height());
    const QSize shown = whole >= 1 ? surface * whole : surface.scaled(room, Qt::KeepAspectRatio);
    QRect area(QPoint(0, 0), shown.expandedTo(QSize(1, 1)));
    area.moveCenter(rect().center());
    return area;
}

double ctlPictureEditor::zoom() const {
    return double(pictureRect().width()) / m_edits.surface().width();
}

QPoint ctlPictureEditor::toSurface(const QPointF& point) const {
    const QRect area = pictureRect();
    const double factor = zoom();
    return QPoint(int(std::floor((point.x() - area.x()) / factor)),
                  int(std::floor((point.y() - area.y()) / factor)));
}

QRectF ctlPictureEditor::toWidget(const QRect& surfaceRect) const {
    const QRect area = pictureRect();
    const double factor = zoom();
    return QRectF(area.x() + surfaceRect.x() * factor, area.y() + surfaceRect.y() * factor,
                  surfaceRect.width() * factor, surfaceRect.height() * factor);
}

QRect ctlPictureEditor::objectRect(int index) const {
    const clsDrawObjects* objects = m_edits.objects();
    if (!objects || index < 1 || index > objects->Count())
        return QRect();
    const clsDrawObject& object = objects->Item(index);
    return QRect(object.XPos(), object.Ypos(), object.Width(), object.Height());
}

int ctlPictureEditor::objectAt(const QPointF& point) const {
    const QList<int> order = m_edits.stackingOrder();
    for (auto it = order.crbegin(); it != order.crend(); ++it)
        if (toWidget(objectRect(*it)).contains(point))
            return *it;
    return 0;
}

QList<ctlPictureEditor::ShownObject> ctlPictureEditor::shownObjects() const {
    QList<ShownObject> shown;
    for (const int index : m_edits.stackingOrder()) {
        const clsDrawObject& object = m_edits.objects()->Item(index);
        shown.append({index, object.typ() == QLatin1String("text"),
                      SlidePictureEdits::toolTipText(object),
                      toWidget(objectRect(index)).toAlignedRect()});
    }
    return shown;
}

void ctlPictureEditor::LoadDrawObjects() {
    const clsDrawObjects* objects = m_edits.objects();
    if (m_inPlace && (!objects || m_inPlaceIndex > objects->Count()))
        closeInPlaceEditor(false);
    // A choice belongs to its slide of its message.
    const std::pair<const clsMessage*, int> shown{m_document.message(), m_document.currentSlide()};
    if (!objects || m_selected > objects->Count() || shown != m_shownSlide)
        m_selected = 0;
    m_shownSlide = shown;
    update();
    if (QAccessible::isActive()) {
        QAccessibleEvent reordered(this, QAccessible::ObjectReorder);
        QAccessible::updateAccessibility(&reordered);
    }
    emit selectionChanged(m_selected);
}

void ctlPictureEditor::announceSelection() {
    if (!QAccessible::isActive() || !m_selected || !hasFocus())
        return;
    const QList<ShownObject> shown = shownObjects();
    for (int place = 0; place < shown.size(); ++place) {
        if (shown[place].index != m_selected)
            continue;
        QAccessibleEvent focus(this, QAccessible::Focus);
        focus.setChild(place);
        QAccessible::updateAccessibility(&focus);
    }
}

void ctlPictureEditor::SaveDrawObjects() {
    closeInPlaceEditor(true);
    finishDrag();
}

void ctlPictureEditor::ClearPicture() {
    closeInPlaceEditor(false);
    if (m_document.isLiveEditing())
        m_document.cancelLiveEdit();
    m_drag = Drag::None;
    selectObject(0);
}

QImage ctlPictureEditor::RenderImage(QSize target) const {
    const clsDrawObjects* objects = m_edits.objects();
    if (!objects)
        return QImage();
    return renderer().render(*objects, target);
}

SlideRenderer ctlPictureEditor::renderer() const {
    SlideRenderer renderer(m_edits.workFolder(), m_edits.surface());
    renderer.setCache(&m_cache);
    return renderer;
}

QString ctlPictureEditor::GetFilenameExtension(const QString& path) {
    return DroppedMedia::extensionOf(path);
}

void ctlPictureEditor::selectObject(int index) {
    const clsDrawObjects* objects = m_edits.objects();
    if (!objects || index < 0 || index > objects->Count())
        index = 0;
    if (index == m_selected)
        return;
    closeInPlaceEditor(true);
    m_selected = index;
    // Nudges of one object merge into one step; another object starts anew.
    m_document.endFieldVisit();
    update();
    announceSelection();
    emit selectionChanged(m_selected);
}

DrawObjectProperties ctlPictureEditor::selectedProperties() const {
    const clsDrawObjects* objects = m_edits.objects();
    return objects && m_selected >= 1 && m_selected <= objects->Count()
               ? objects->Item(m_selected).GetAllPproperties()
               : DrawObjectProperties();
}

bool ctlPictureEditor::selectedIsText() const {
    return selectedProperties().typ == QLatin1String("text");
}

void ctlPictureEditor::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().dark());
    const clsDrawObjects* objects = m_edits.objects();
    if (!objects) {
        painter.setPen(palette().color(QPalette::BrightText));
        painter.drawText(rect().adjusted(12, 12, -12, -12), Qt::AlignCenter | Qt::TextWordWrap,
                         AppGlobals::text("STR_CLICK_TO_ADD", "Pick a picture on the right."));
        return;
    }
    const QRect area = pictureRect();
    renderer().paint(painter, *objects, QRectF(area));
    painter.setPen(hasFocus() ? palette().color(QPalette::Highlight)
                              : palette().color(QPalette::Shadow));
    painter.drawRect(area.adjusted(-1, -1, 0, 0));
    paintSelection(painter);
}

void ctlPictureEditor::paintSelection(QPainter& painter) const {
    if (!m_selected)
        return;
    const QRectF shown = toWidget(objectRect(m_selected));
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(QPen(Qt::white, 1));
    painter.drawRect(shown);
    painter.setPen(QPen(palette().color(QPalette::Highlight), 1, Qt::DashLine));
    painter.drawRect(shown);
    painter.setPen(QPen(Qt::black, 1));
    painter.setBrush(Qt::white);
    for (const QRectF& handle : SelectionFrame::handles(shown))
        painter.drawRect(handle);
    painter.restore();
}

void ctlPictureEditor::mousePressEvent(QMouseEvent* event) {
    setFocus(Qt::MouseFocusReason);
    const QPointF at = event->position();
    if (event->button() != Qt::LeftButton) {
        if (const int hit = objectAt(at))
            selectObject(hit);
        return;
    }
    m_handle = m_selected ? SelectionFrame::handleAt(toWidget(objectRect(m_selected)), at)
                          : SelectionFrame::None;
    if (m_handle == SelectionFrame::None)
        selectObject(objectAt(at));
    if (!m_selected)
        return;
    m_drag = m_handle == SelectionFrame::None ? Drag::Move : Drag::Resize;
    m_pressedAt = at;
    m_startRect = objectRect(m_selected);
}

void ctlPictureEditor::mouseMoveEvent(QMouseEvent* event) {
    const QPointF at = event->position();
    if (m_drag == Drag::None) {
        const auto handle = m_selected
                                ? SelectionFrame::handleAt(toWidget(objectRect(m_selected)), at)
                                : SelectionFrame::None;
        setCursor(handle != SelectionFrame::None ? SelectionFrame::cursor(handle)
                  : objectAt(at)                 ? Qt::SizeAllCursor
                                                 : Qt::ArrowCursor);
        return;
    }
    const double factor = zoom();
    const QPoint delta(int(std::lround((at.x() - m_pressedAt.x()) / factor)),
                       int(std::lround((at.y() - m_pressedAt.y()) / factor)));
    const bool keepRatio = event->modifiers() & Qt::ShiftModifier;
    const QRect wanted = m_drag == Drag::Move
                             ? keptOnSlide(m_startRect.translated(delta))
                             : SelectionFrame::resized(m_startRect, m_handle, delta, keepRatio);
    if (wanted == objectRect(m_selected))
        return;
    if (!m_document.isLiveEditing())
        m_document.beginLiveEdit();
    m_edits.setGeometryLive(m_selected, wanted);
    update();
}

// A corner of the object stays on the slide, so it can be grabbed again.
QRect ctlPictureEditor::keptOnSlide(QRect box) const {
    const int edge = SelectionFrame::kMinimumSize;
    const QSize surface = m_edits.surface();
    box.moveTo(std::clamp(box.x(), edge - box.width(), surface.width() - edge),
               std::clamp(box.y(), edge - box.height(), surface.height() - edge));
    return box;
}

void ctlPictureEditor::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        finishDrag();
}

void ctlPictureEditor::finishDrag() {
    const Drag drag = m_drag;
    m_drag = Drag::None;
    if (!m_document.isLiveEditing())
        return;
    if (drag == Drag::Resize)
        m_document.finishLiveEdit("STR_RESIZE_OBJECT", "Resize");
    else
        m_document.finishLiveEdit("STR_MOVE_OBJECT", "Move");
}

void ctlPictureEditor::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && objectAt(event->position()) == m_selected &&
        selectedIsText())
        editSelectedText();
}

bool ctlPictureEditor::event(QEvent* event) {
    // Keys the editor acts on are its own while it has the focus, even where
    // the window binds them to something else.
    if (event->type() == QEvent::ShortcutOverride) {
        auto* key = static_cast<QKeyEvent*>(event);
        const bool menuKey = key->key() == Qt::Key_F10 && key->modifiers() == Qt::ShiftModifier;
        if (handleEditingKey(key) || key->matches(QKeySequence::Paste) || menuKey) {
            event->accept();
            return true;
        }
    }
    return QWidget::event(event);
}

void ctlPictureEditor::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Paste)) {
        paste();
        return;
    }
    // Shift+F10 opens the menu as the menu key does, with or without a selection.
    if (event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier) {
        QContextMenuEvent menu(QContextMenuEvent::Keyboard, QPoint(), QPoint());
        contextMenuEvent(&menu);
        return;
    }
    if (!handleEditingKey(event) || !m_selected) {
        QWidget::keyPressEvent(event);
        return;
    }
    const Qt::KeyboardModifiers mods =
        event->modifiers() & (Qt::ControlModifier | Qt::ShiftModifier | Qt::AltModifier);
    const int step = mods & Qt::ShiftModifier ? 10 : 1;
    switch (event->key()) {
    case Qt::Key_Left:
        return nudge(QPoint(-step, 0), mods & Qt::ControlModifier);
    case Qt::Key_Right:
        return nudge(QPoint(step, 0), mods & Qt::ControlModifier);
    case Qt::Key_Up:
        return nudge(QPoint(0, -step), mods & Qt::ControlModifier);
    case Qt::Key_Down:
        return nudge(QPoint(0, step), mods & Qt::ControlModifier);
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
        return DelSelected();
    case Qt::Key_Escape:
        return ClearPicture();
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_F2:
        return editSelectedText();
    case Qt::Key_D:
        return duplicateSelected();
    case Qt::Key_Home:
        return bringSelectedToFront();
    case Qt::Key_End:
        return sendSelectedToBack();
    default:
        break;
    }
    if (event->matches(QKeySequence::Cut))
        cutSelected();
    else if (event->matches(QKeySequence::Copy))
        copySelected();
}

// The keys that act on the selected object; none of them without one.
bool ctlPictureEditor::handleEditingKey(QKeyEvent* event) {
    if (!m_selected)
        return false;
    if (event->matches(QKeySequence::Cut) || event->matches(QKeySequence::Copy))
        return true;
    const Qt::KeyboardModifiers mods =
        event->modifiers() & (Qt::ControlModifier | Qt::ShiftModifier | Qt::AltModifier);
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
        // Control with Shift moves the slide in the strip.
        return mods == Qt::NoModifier || mods == Qt::ShiftModifier || mods == Qt::ControlModifier;
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
    case Qt::Key_Escape:
    case Qt::Key_F2:
        return mods == Qt::NoModifier;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return mods == Qt::NoModifier && selectedIsText();
    case Qt::Key_D:
    case Qt::Key_Home:
    case Qt::Key_End:
        return mods == Qt::ControlModifier;
    default:
        return false;
    }
}

void ctlPictureEditor::nudge(QPoint step, bool resize) {
    DrawObjectProperties p = selectedProperties();
    if (resize) {
        p.w = std::max(SelectionFrame::kMinimumSize, p.w + step.x());
        p.h = std::max(SelectionFrame::kMinimumSize, p.h + step.y());
    } else {
        p.x += step.x();
        p.y += step.y();
    }
    m_edits.setProperties(m_selected, p, true);
}

bool ctlPictureEditor::focusNextPrevChild(bool next) {
    const QList<int> order = m_edits.stackingOrder();
    if (!hasFocus() || order.isEmpty())
        return QWidget::focusNextPrevChild(next);
    const qsizetype place = order.indexOf(m_selected);
    const qsizetype target = next ? place + 1 : (place < 0 ? order.size() - 1 : place - 1);
    if (target < 0 || target >= order.size()) {
        // Past the last object the focus goes on to the next control.
        selectObject(0);
        return QWidget::focusNextPrevChild(next);
    }
    selectObject(order[target]);
    return true;
}

void ctlPictureEditor::contextMenuEvent(QContextMenuEvent* event) {
    QPoint at = event->globalPos();
    if (event->reason() == QContextMenuEvent::Keyboard)
        at = mapToGlobal(m_selected ? toWidget(objectRect(m_selected)).center().toPoint()
                                    : pictureRect().center());
    showMenuAt(at);
}

void ctlPictureEditor::showMenuAt(const QPoint& globalPosition) {
    finishDrag();
    clsPopupMenu menu(this);
    runMenuCommand(menu.PopupStringXY(menuDescriptor(), globalPosition.x(), globalPosition.y()));
}

// Images first, then texts, each numbered within its kind.
PictureEditorMenu::State ctlPictureEditor::menuState() const {
    PictureEditorMenu::State state;
    state.hasSelection = m_selected != 0;
    state.canPaste = m_clipboard.canPaste();
    const clsDrawObjects* objects = m_edits.objects();
    QList<PictureEditorMenu::Entry> texts;
    for (int i = 1; objects && i <= objects->Count(); ++i) {
        const clsDrawObject& object = objects->Item(i);
        const bool isText = object.typ() == QLatin1String("text");
        QList<PictureEditorMenu::Entry>& kind = isText ? texts : state.objects;
        kind.append({isText, int(kind.size()) + 1, SlidePictureEdits::toolTipText(object),
                     i == m_selected, i});
    }
    state.objects += texts;
    return state;
}

QString ctlPictureEditor::menuDescriptor() const {
    return m_menu.descriptor(menuState());
}

void ctlPictureEditor::runMenuCommand(int command) {
    using M = PictureEditorMenu;
    switch (command) {
    case M::Cut:
        return cutSelected();
    case M::Copy:
        return copySelected();
    case M::Paste:
        return paste();
    case M::Duplicate:
        return duplicateSelected();
    case M::Delete:
        return DelSelected();
    case M::BringToFront:
        return bringSelectedToFront();
    case M::SendToBack:
        return sendSelectedToBack();
    case M::AddText:
        emit addTextRequested();
        return;
    case M::PictureFile:
        return BrowseAddPicture();
    case M::PictureBackground:
        return BrowseAddBackground();
    case M::BackgroundColor:
        return ChooseBackgroundColor();
    default:
        if (command > M::FirstImage)
            selectByMenu(command);
    }
}

void ctlPictureEditor::selectByMenu(int command) {
    for (const PictureEditorMenu::Entry& entry : menuState().objects) {
        const int first =
            entry.isText ? PictureEditorMenu::FirstText : PictureEditorMenu::FirstImage;
        if (command == first + entry.number)
            return selectObject(entry.index);
    }
}

void ctlPictureEditor::inform(const QString& text, bool warning) {
    DialogService::messageBox(this, text, m_menu.caption("APP_PRODUCTNAME"), QMessageBox::Ok,
                              warning ? QMessageBox::Warning : QMessageBox::Information);
}

void ctlPictureEditor::SetBackgroundColor(qint64 color) {
    m_edits.setBackgroundColor(color);
}

void ctlPictureEditor::SetDefaultBackgroundColor() {
    SetBackgroundColor(
        AppGlobals::setting("preferences", "BackgroundColor", "16777215").toLongLong());
}

void ctlPictureEditor::ChooseBackgroundColor() {
    const QColor chosen =
        DialogService::colorDialog(this, StoredColor::toQColor(GetBackgroundColor()),
                                   m_menu.caption("STR_BACKGROUND_COLOR").remove(QChar(0x2026)));
    if (chosen.isValid())
        SetBackgroundColor(StoredColor::fromQColor(chosen));
}

bool ctlPictureEditor::AddBackgroundPicture(const QString& path) {
    if (!m_edits.objects())
        return false;
    if (!QFileInfo(path).isFile()) {
        inform(m_menu.caption("STR_NO_FILE_FOUND"));
        return false;
    }
    bool still = false;
    if (SlidePictureEdits::isAnimated(path)) {
        if (DialogService::messageBox(
                this, m_menu.caption("STR_ADD_ANIMATION"), m_menu.caption("APP_PRODUCTNAME"),
                QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Warning) != QMessageBox::Ok)
            return false;
        const ClassGuard::Admission answer = admitAnimation(path);
        if (answer == ClassGuard::Admission::Refuse)
            return false;
        still = answer == ClassGuard::Admission::Fit;
    }
    QString why;
    if (still ? m_edits.setBackgroundStill(path, &why) : m_edits.setBackgroundPicture(path, &why))
        return true;
    inform(why);
    return false;
}

// A still picture fits where the animation does not: the animation's first
// picture, drawn at the slide's size, is what the chosen class is offered.
ClassGuard::Admission ctlPictureEditor::admitAnimation(const QString& path) {
    if (!m_guard)
        return ClassGuard::Admission::Admit;
    const QString offer = QImageReader(path).canRead()
                              ? AppGlobals::text("STR_CLASS_FIT_ANIMATION",
                                                 "Use its first picture as a still background?")
                              : QString();
    return m_guard->admit(path, QFileInfo(path).fileName(), offer);
}

bool ctlPictureEditor::AddImage(const QString& path, std::optional<QPoint> at) {
    QString why;
    const int added = m_edits.addImage(path, at, QSize(), &why);
    if (!added) {
        if (!why.isEmpty())
            inform(why);
        return false;
    }
    selectObject(added);
    return true;
}

namespace {
// The user's own pictures (or backgrounds) of the media browser when there
// are any, else the ones the program comes with, else home.
QString startFolder(const char* browser) {
    const QStringList candidates{AppPaths::programRelative(AppGlobals::setting(
                                     "browserPaths", QLatin1String(browser), QString())),
                                 AppGlobals::programArchive() + QLatin1String(browser)};
    for (const QString& folder : candidates)
        if (!folder.isEmpty() && !QDir(folder).isEmpty(QDir::Files))
            return folder;
    return QDir::homePath();
}

// Starts where the user last picked a picture.
QString pickPicture(QWidget* parent, const PictureEditorMenu& menu, const char* browser,
                    QString& lastFolder) {
    DialogService::FileRequest request;
    request.title = menu.caption("STR_DLG_LOAD_PIC");
    request.folder = lastFolder.isEmpty() ? startFolder(browser) : lastFolder;
    request.filter = DialogService::qtFilter(menu.caption("STR_DLG_LOAD_FILTER"));
    const QString chosen = DialogService::fileDialog(parent, request);
    if (!chosen.isEmpty())
        lastFolder = QFileInfo(chosen).path();
    return chosen;
}
} // namespace

void ctlPictureEditor::BrowseAddBackground() {
    const QString chosen = pickPicture(this, m_menu, "Backgrounds", m_lastPictureFolder);
    if (!chosen.isEmpty())
        AddBackgroundPicture(chosen);
}

void ctlPictureEditor::BrowseAddPicture() {
    const QString chosen = pickPicture(this, m_menu, "Pictures", m_lastPictureFolder);
    if (!chosen.isEmpty())
        AddImage(chosen);
}

void ctlPictureEditor::AddText() {
    DrawObjectProperties text =
        DrawObjectProperties::forText(m_menu.caption("STR_TEXT_NEW"), QRect());
    if (const int added = m_edits.addText(text, std::nullopt)) {
        selectObject(added);
        editSelectedText();
    }
}

void ctlPictureEditor::ChangeText(const QString& text) {
    closeInPlaceEditor(false);
    DrawObjectProperties p = selectedProperties();
    if (p.typ != QLatin1String("text"))
        return;
    p.text = withWindowsLineEnds(text);
    m_edits.setProperties(m_selected, p);
}

// The properties of a text, but not its caption: what is being typed into
// the text stays.
void ctlPictureEditor::ApplyText(const DrawObjectProperties& properties) {
    // Taken before the typed text is kept: keeping it shows the text again
    // in the panel that sent these properties.
    DrawObjectProperties styled = properties;
    closeInPlaceEditor(true);
    if (!selectedIsText() || styled.typ != QLatin1String("text"))
        return;
    styled.text = selectedProperties().text;
    m_edits.setProperties(m_selected, styled);
}

void ctlPictureEditor::DelSelected() {
    if (!m_selected)
        return;
    if (DialogService::messageBox(
            this, m_menu.caption("STR_ASK_DELETE_OBJECTS"), m_menu.caption("APP_PRODUCTNAME"),
            QMessageBox::Yes | QMessageBox::No, QMessageBox::Question) != QMessageBox::Yes)
        return;
    const int removed = m_selected;
    m_selected = 0;
    m_edits.remove(removed);
    emit selectionChanged(0);
}

void ctlPictureEditor::copySelected() {
    QString why;
    if (m_selected && !m_clipboard.copyObject(m_edits.workFolder(), selectedProperties(), &why))
        inform(why.isEmpty() ? m_menu.caption("STR_NO_FILE_FOUND") : why);
}

void ctlPictureEditor::cutSelected() {
    QString why;
    if (!m_selected)
        return;
    if (!m_clipboard.copyObject(m_edits.workFolder(), selectedProperties(), &why))
        return inform(why.isEmpty() ? m_menu.caption("STR_NO_FILE_FOUND") : why);
    const int removed = m_selected;
    m_selected = 0;
    m_edits.remove(removed);
    emit selectionChanged(0);
}

void ctlPictureEditor::paste() {
    if (!m_edits.objects())
        return;
    const ClipboardPaste pasted = m_clipboard.paste(m_edits.workFolder());
    if (pasted.kind == ClipboardPaste::Refused)
        return inform(pasted.why);
    if (pasted.kind != ClipboardPaste::Object)
        return;
    const DrawObjectProperties& p = pasted.object;
    const bool placed = p.w > 0 && p.h > 0;
    const std::optional<QPoint> at =
        placed ? std::optional<QPoint>(QPoint(p.x, p.y)) : std::nullopt;
    int added = 0;
    QString why;
    if (p.typ == QLatin1String("image"))
        added = m_edits.addImage(m_edits.workFolder() + p.image, at,
                                 placed ? QSize(p.w, p.h) : QSize(), &why);
    else
        added = m_edits.addText(p, at);
    if (added)
        selectObject(added);
    else if (!why.isEmpty())
        inform(why);
}

void ctlPictureEditor::duplicateSelected() {
    QString why;
    if (const int added = m_selected ? m_edits.duplicate(m_selected, &why) : 0)
        selectObject(added);
    else if (!why.isEmpty())
        inform(why);
}

void ctlPictureEditor::bringSelectedToFront() {
    if (m_selected)
        m_edits.bringToFront(m_selected);
}

void ctlPictureEditor::sendSelectedToBack() {
    if (m_selected)
        m_edits.sendToBack(m_selected);
}

void ctlPictureEditor::editSelectedText() {
    const DrawObjectProperties p = selectedProperties();
    if (p.typ != QLatin1String("text") || m_inPlace)
        return;
    m_inPlaceIndex = m_selected;
    auto* editor = new QPlainTextEdit(this);
    editor->setObjectName(QStringLiteral("txtInPlace"));
    editor->setAccessibleName(AppGlobals::text("STR_TEXT_TITLE", "Text"));
    QFont font = SlideRenderer::fontOf(p);
    font.setPixelSize(std::max(1, int(std::lround(font.pixelSize() * zoom()))));
    editor->setFont(font);
    // Typed in the text's own colour and alignment, as it will show.
    QPalette colours = editor->palette();
    colours.setColor(QPalette::Text, StoredColor::toQColor(p.fontColor));
    editor->setPalette(colours);
    editor->document()->setDefaultTextOption(QTextOption(SlideRenderer::alignmentOf(p.fontAlign)));
    editor->setPlainText(QString(p.text).replace(QLatin1String("\r\n"), QLatin1String("\n")));
    editor->selectAll();
    const QRect box = toWidget(rectOf(p)).toAlignedRect();
    editor->setGeometry(
        box.adjusted(-2, -2, 2, 2)
            .united(QRect(box.topLeft(), QSize(80, editor->fontMetrics().height() * 2 + 8))));
    editor->installEventFilter(this);
    m_inPlace = editor;
    editor->show();
    editor->setFocus(Qt::OtherFocusReason);
}

// Escape drops what was typed; Ctrl+Enter and leaving the box keep it.
bool ctlPictureEditor::eventFilter(QObject* watched, QEvent* event) {
    if (watched != m_inPlace)
        return QWidget::eventFilter(watched, event);
    if (event->type() == QEvent::FocusOut) {
        closeInPlaceEditor(true);
    } else if (event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);
        const bool enter = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
        if (key->key() == Qt::Key_Escape || (enter && key->modifiers() & Qt::ControlModifier)) {
            closeInPlaceEditor(key->key() != Qt::Key_Escape);
            setFocus(Qt::OtherFocusReason);
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void ctlPictureEditor::closeInPlaceEditor(bool keep) {
    QPlainTextEdit* editor = m_inPlace;
    if (!editor)
        return;
    m_inPlace = nullptr;
    editor->removeEventFilter(this);
    editor->hide();
    // Gone from the surface's controls at once, for screen readers too.
    editor->setParent(nullptr);
    editor->deleteLater();
    const QString typed = withWindowsLineEnds(editor->toPlainText());
    const clsDrawObjects* objects = m_edits.objects();
    if (!keep || !objects || m_inPlaceIndex > objects->Count())
        return;
    DrawObjectProperties p = objects->Item(m_inPlaceIndex).GetAllPproperties();
    if (p.typ != QLatin1String("text") || p.text == typed)
        return;
    p.text = typed;
    m_edits.setProperties(m_inPlaceIndex, p);
}

namespace {
// A background or an animation dragged from its browser becomes the
// slide's background wherever it is dropped.
bool isBackgroundDrag(const QMimeData& data) {
    const int kind = data.data(QLatin1String(MediaFolderModel::KindMimeType)).toInt();
    return kind == ctlBrowser::Backgrounds || kind == ctlBrowser::Animations;
}
} // namespace

bool ctlPictureEditor::acceptsDrag(const QMimeData* data) const {
    const QString path = data && m_edits.objects() ? DroppedMedia::pathFrom(*data) : QString();
    return !path.isEmpty() &&
           (DroppedMedia::kindOf(path) != DroppedMedia::Unknown || isBackgroundDrag(*data));
}

void ctlPictureEditor::dragEnterEvent(QDragEnterEvent* event) {
    if (acceptsDrag(event->mimeData()))
        event->acceptProposedAction();
}

void ctlPictureEditor::dragMoveEvent(QDragMoveEvent* event) {
    if (acceptsDrag(event->mimeData()))
        event->acceptProposedAction();
}

void ctlPictureEditor::dropEvent(QDropEvent* event) {
    if (!acceptsDrag(event->mimeData()))
        return;
    event->acceptProposedAction();
    const QString path = DroppedMedia::pathFrom(*event->mimeData());
    if (isBackgroundDrag(*event->mimeData())) {
        AddBackgroundPicture(path);
        return;
    }
    switch (DroppedMedia::kindOf(path)) {
    case DroppedMedia::Folder:
        return inform(AppGlobals::text("STR_DROP_FOLDER",
                                       "%0 is a folder. Only files can be put on a slide.",
                                       {QFileInfo(path).fileName()}));
    case DroppedMedia::Sound: {
        const QFileInfo file(path);
        emit soundDropped(file.path() + u'/', file.fileName());
        return;
    }
    default:
        AddImage(path, toSurface(event->position()));
    }
}
