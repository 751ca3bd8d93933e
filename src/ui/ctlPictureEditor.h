#pragma once

#include "ClassGuard.h"
#include "PictureCache.h"
#include "PictureEditorMenu.h"
#include "SelectionFrame.h"
#include "SlidePictureEdits.h"
#include "SlideRenderer.h"
#include "clsClipboardManager.h"

#include <QImage>
#include <QPointer>
#include <QWidget>
#include <optional>
#include <utility>

class MessageDocument;
class clsMessage;
class QMimeData;
class QPlainTextEdit;

// The surface on which the user composes the current slide's picture: a
// background with image and text objects that are selected by click or Tab,
// moved and resized by mouse and keys, stacked, copied and pasted, and
// edited through the right-click menu. It is painted by the slide renderer,
// so what it shows is what is saved; every change is one step of the
// document's history.
class ctlPictureEditor : public QWidget {
    Q_OBJECT
public:
    struct ShownObject {
        int index = 0; // among the slide's draw objects, 1-based
        bool isText = false;
        QString name;
        QRect rect; // in this widget's coordinates
    };

    explicit ctlPictureEditor(MessageDocument& document, QWidget* parent = nullptr);

    void TranslateControl();
    // The slide picture's size in pixels; objects are placed in these.
    void SetSurfaceSize(QSize size);
    QSize surfaceSize() const { return m_edits.surface(); }
    // The rectangle the slide picture is shown in: a whole-number zoom while
    // that fits, else scaled down to fit.
    QRect pictureRect() const;

    // Shows the current slide afresh, keeping the selection while it exists.
    void LoadDrawObjects();
    // Ends what the user is in the middle of (a drag, typing into a text),
    // so that it is in the slide before the slide list changes.
    void SaveDrawObjects();
    // Drops the selection and whatever was in progress.
    void ClearPicture();
    // The slide picture at target's size, as saved: without selection marks.
    QImage RenderImage(QSize target) const;
    static QString GetFilenameExtension(const QString& path);

    int selectedObject() const { return m_selected; }
    // Every property of the selected object; empty ones without a selection.
    DrawObjectProperties selectedProperties() const;
    void selectObject(int index);
    // The objects from the bottom of the stack to its top.
    QList<ShownObject> shownObjects() const;

    void SetBackgroundColor(qint64 color);
    qint64 GetBackgroundColor() const { return m_edits.backgroundColor(); }
    void SetDefaultBackgroundColor();
    void ChooseBackgroundColor();
    bool AddBackgroundPicture(const QString& path);
    // Animations offered as backgrounds are held to the chosen content class.
    void setClassGuard(ClassGuard* guard) { m_guard = guard; }
    void BrowseAddBackground();
    bool AddImage(const QString& path, std::optional<QPoint> at = std::nullopt);
    void BrowseAddPicture();
    void AddText();
    // The selected text object's caption, or all its properties.
    void ChangeText(const QString& text);
    void ApplyText(const DrawObjectProperties& properties);
    // Asks first; image and text objects alike.
    void DelSelected();

    void cutSelected();
    void copySelected();
    void paste();
    void duplicateSelected();
    void bringSelectedToFront();
    void sendSelectedToBack();
    void editSelectedText();
    // A command of the right-click menu, by its number.
    void runMenuCommand(int command);
    QString menuDescriptor() const;

signals:
    void addTextRequested();
    // A sound file was dropped: the window attaches it to the slide.
    void soundDropped(const QString& folder, const QString& fileName);
    void selectionChanged(int index);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    ClassGuard::Admission admitAnimation(const QString& path);
    enum class Drag { None, Move, Resize };

    double zoom() const;
    QPoint toSurface(const QPointF& point) const;
    QRectF toWidget(const QRect& surfaceRect) const;
    QRect objectRect(int index) const;
    QRect keptOnSlide(QRect box) const;
    int objectAt(const QPointF& point) const;
    void paintSelection(QPainter& painter) const;
    void announceSelection();
    bool handleEditingKey(QKeyEvent* event);
    void nudge(QPoint step, bool resize);
    void finishDrag();
    void showMenuAt(const QPoint& globalPosition);
    void selectByMenu(int command);
    void inform(const QString& text, bool warning = true);
    bool acceptsDrag(const QMimeData* data) const;
    void closeInPlaceEditor(bool keep);
    bool selectedIsText() const;
    SlideRenderer renderer() const;
    PictureEditorMenu::State menuState() const;

    MessageDocument& m_document;
    std::pair<const clsMessage*, int> m_shownSlide{nullptr, 0};
    SlidePictureEdits m_edits;
    ClassGuard* m_guard = nullptr;
    PictureEditorMenu m_menu;
    clsClipboardManager m_clipboard;
    mutable PictureCache m_cache;
    int m_selected = 0;
    Drag m_drag = Drag::None;
    SelectionFrame::Handle m_handle = SelectionFrame::None;
    QPointF m_pressedAt;
    QRect m_startRect;
    QPointer<QPlainTextEdit> m_inPlace;
    int m_inPlaceIndex = 0;
    // Where the user last picked a picture file, for the next pick.
    QString m_lastPictureFolder;
};
