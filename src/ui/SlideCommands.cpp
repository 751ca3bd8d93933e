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

void SlideCommands::runStripCommand(int command, int slide) {
    switch (command) {
    case ctlSlideThumbs::AddSlide:
        return add();
    case ctlSlideThumbs::InsertBefore:
        return insertBefore(slide);
    case ctlSlideThumbs::InsertAfter:
        return insertAfter(slide);
    case ctlSlideThumbs::DuplicateBefore:
        return duplicateBefore(slide);
    case ctlSlideThumbs::DuplicateAfter:
        return duplicateAfter(slide);
    case ctlSlideThumbs::DeleteSlide:
        return deleteSlide(slide);
    default:
        break;
    }
    // The parts of a slide are removed from the slide the menu was for.
    m_document.setCurrentSlide(slide);
    if (command == ctlSlideThumbs::DeleteImage)
        m_document.deleteSlidePicture();
    else if (command == ctlSlideThumbs::DeleteSound)
        m_document.deleteSlideSound();
    else if (command == ctlSlideThumbs::DeleteText)
        m_document.deleteSlideText();
}

bool SlideCommands::runMenuCommand(int number) {
    const int current = m_document.currentSlide();
    switch (number) {
    case ctlMainMenu::AddSlide:
        add();
        return true;
    case ctlMainMenu::InsertBefore:
        onSlide(current, &SlideCommands::insertBefore);
        return true;
    case ctlMainMenu::InsertAfter:
        onSlide(current, &SlideCommands::insertAfter);
        return true;
    case ctlMainMenu::DuplicateBefore:
        onSlide(current, &SlideCommands::duplicateBefore);
        return true;
    case ctlMainMenu::DuplicateAfter:
        onSlide(current, &SlideCommands::duplicateAfter);
        return true;
    case ctlMainMenu::DeleteSlide:
        onSlide(current, &SlideCommands::deleteSlide);
        return true;
    case ctlMainMenu::DeleteImage:
        m_document.deleteSlidePicture();
        return true;
    case ctlMainMenu::DeleteSound:
        m_document.deleteSlideSound();
        return true;
    case ctlMainMenu::DeleteText:
        m_document.deleteSlideText();
        return true;
    case ctlMainMenu::MoveSlideUp:
        m_document.moveSlide(current, current - 1);
        return true;
    case ctlMainMenu::MoveSlideDown:
        m_document.moveSlide(current, current + 1);
        return true;
    default:
        return false;
    }
}

void SlideCommands::onSlide(int slide, void (SlideCommands::*command)(int)) {
    if (slide > 0)
        (this->*command)(slide);
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
