#include "SlideCommands.h"

#include "AppGlobals.h"
#include "DialogService.h"
#include "MessageDocument.h"
#include "ctlMainMenu.h"
#include "ctlSlideThumbs.h"

namespace {
QString text(const char* key, const char* fallback) {
    return AppGlobals::text(key, fallback);
}
} // namespace

SlideCommands::SlideCommands(MessageDocument& document, QWidget* window)
    : QObject(window), m_document(document), m_window(window) {}

bool SlideCommands::runStripCommand(int command, int slide) {
    using T = ctlSlideThumbs;
    if (command != T::AddSlide && slide < 1)
        return command >= T::AddSlide && command <= T::DeleteText;
    switch (command) {
    case T::AddSlide:
        add();
        return true;
    case T::InsertBefore:
        insertBefore(slide);
        return true;
    case T::InsertAfter:
        insertAfter(slide);
        return true;
    case T::DuplicateBefore:
        duplicateBefore(slide);
        return true;
    case T::DuplicateAfter:
        duplicateAfter(slide);
        return true;
    case T::DeleteSlide:
        deleteSlide(slide);
        return true;
    case T::DeleteImage:
    case T::DeleteSound:
    case T::DeleteText:
        deletePart(command, slide);
        return true;
    default:
        return false;
    }
}

// The parts of a slide are removed from the slide the menu was for.
void SlideCommands::deletePart(int command, int slide) {
    m_document.setCurrentSlide(slide);
    if (command == ctlSlideThumbs::DeleteImage)
        m_document.deleteSlidePicture();
    else if (command == ctlSlideThumbs::DeleteSound)
        m_document.deleteSlideSound();
    else
        m_document.deleteSlideText();
}

bool SlideCommands::runMenuCommand(int number) {
    const int current = m_document.currentSlide();
    if (number == ctlMainMenu::MoveSlideUp || number == ctlMainMenu::MoveSlideDown) {
        m_document.moveSlide(current, current + (number == ctlMainMenu::MoveSlideUp ? -1 : 1));
        return true;
    }
    return number > ctlMainMenu::SlideCommandOffset &&
           runStripCommand(number - ctlMainMenu::SlideCommandOffset, current);
}

void SlideCommands::add() {
    if (!m_document.message() ||
        !confirmed("AskNewSlide", text("STR_ADD_NEW_SLIDE", "Add a new slide?"), "STR_APPEND_SLIDE",
                   "Append slide"))
        return;
    if (m_document.appendSlide())
        emit appendedAtEnd();
}

void SlideCommands::insertBefore(int slide) {
    if (confirmed("AskNewSlide",
                  text("STR_ADD_BEFORE", "Insert a new slide before slide ") +
                      QString::number(slide) + u'?',
                  "STR_ADD_SLIDE", "Insert slide"))
        m_document.insertSlideBefore(slide);
}

void SlideCommands::insertAfter(int slide) {
    if (!confirmed("AskNewSlide",
                   text("STR_ADD_AFTER", "Insert a new slide after slide ") +
                       QString::number(slide) + u'?',
                   "STR_ADD_SLIDE", "Insert slide"))
        return;
    if (m_document.insertSlideAfter(slide) && m_document.currentSlide() == m_document.slideCount())
        emit appendedAtEnd();
}

void SlideCommands::duplicateBefore(int slide) {
    if (confirmed("AskNewSlide",
                  text("STR_DUPLICATE_BEFORE", "Duplicate before slide") + u'\n' +
                      QString::number(slide),
                  "STR_ADD_SLIDE", "Insert slide"))
        m_document.duplicateSlideBefore(slide);
}

void SlideCommands::duplicateAfter(int slide) {
    if (confirmed("AskNewSlide",
                  text("STR_DUPLICATE_AFTER", "Duplicate after slide") + u'\n' +
                      QString::number(slide),
                  "STR_ADD_SLIDE", "Insert slide"))
        m_document.duplicateSlideAfter(slide);
}

void SlideCommands::deleteSlide(int slide) {
    if (confirmed("AskDeleteSlide",
                  text("STR_DELETE_SLIDE", "Delete slide") + u'\n' + QString::number(slide),
                  "MNU_SLIDE_DELETE", "Delete"))
        m_document.deleteSlide(slide);
}

bool SlideCommands::confirmed(const char* setting, const QString& question, const char* titleKey,
                              const char* titleFallback) const {
    if (AppGlobals::setting("preferences", setting, "1") != QLatin1String("1"))
        return true;
    return DialogService::messageBox(m_window, question, text(titleKey, titleFallback),
                                     QMessageBox::Yes | QMessageBox::No,
                                     QMessageBox::Question) == QMessageBox::Yes;
}
