#pragma once

#include <QListView>

class SlideListModel;
class clsMessage;

// The strip of slide thumbnails beside the slide: a list of the message's
// slides that the keyboard walks (arrows, Home, End), in which choosing a
// thumbnail makes that slide current, Delete asks to delete it, and dragging
// a thumbnail asks to move its slide.
class ctlSlideThumbs : public QListView {
    Q_OBJECT
public:
    // Commands of the strip's slide menu, as the main window handles them.
    enum Command {
        AddSlide = 1,
        InsertBefore = 3,
        InsertAfter = 4,
        DuplicateBefore = 6,
        DuplicateAfter = 7,
        DeleteSlide = 9,
        DeleteImage = 10,
        DeleteSound = 11,
        DeleteText = 12,
    };

    explicit ctlSlideThumbs(QWidget* parent = nullptr);

    // The accessible name, in the user's language.
    void TranslateControl();
    // All thumbnails anew for the message (nullptr shows none).
    void DrawThumbs(const clsMessage* message);
    // One slide's thumbnail anew (1-based).
    void DrawThumb(int slide);
    void ScrollToEnd();
    // Shows slide (1-based) as the chosen one, without raising slideSelected.
    void SelectSlide(int slide);
    int selectedSlide() const;
    // False while the preview plays: every item of the slide menu is disabled.
    void setRightClickMenuEnabled(bool enabled) { m_menuEnabled = enabled; }
    bool RightClickMenuEnabled() const { return m_menuEnabled; }
    // The slide menu; its slide items are disabled unless it is for a slide.
    QString menuDescriptor(bool forSlide) const;
    SlideListModel* slideModel() const { return m_model; }

signals:
    // The user chose slide (1-based).
    void slideSelected(int slide);
    // A command of the strip for slide (1-based).
    void menuCommand(int command, int slide);
    void moveRequested(int from, int to);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    void onCurrentChanged(const QModelIndex& current);

    SlideListModel* m_model;
    bool m_selecting = false;
    bool m_menuEnabled = true;
};
