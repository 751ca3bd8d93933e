#include "MessageDocument.h"

#include "AppGlobals.h"
#include "MessageSnapshot.h"
#include "SnapshotCommand.h"
#include "clsMMSManager.h"
#include "clsMessage.h"

#include <algorithm>

MessageDocument::~MessageDocument() = default;

MessageDocument::MessageDocument(clsMMSManager& manager, QObject* parent)
    : QObject(parent), m_manager(manager) {
    connect(&m_history, &QUndoStack::cleanChanged, this,
            [this](bool clean) { emit modifiedChanged(!clean); });
}

clsMessage* MessageDocument::message() const {
    return m_manager.message();
}

int MessageDocument::slideCount() const {
    return message() ? message()->Slides().Count() : 0;
}

bool MessageDocument::hasSlide(int index) const {
    return index >= 1 && index <= slideCount();
}

void MessageDocument::newMessage() {
    m_manager.CreateMsg()->Slides().Add();
    startHistory();
}

bool MessageDocument::openMessage(const QString& path) {
    int result = 0;
    if (!m_manager.OpenMsg(path, result)) {
        newMessage();
        return false;
    }
    startHistory();
    return true;
}

bool MessageDocument::recoverMessage(const QString& name) {
    if (!m_manager.ReopenWorkFolder(name)) {
        newMessage();
        return false;
    }
    startHistory();
    // Nothing of it is saved: closing asks, as for any edited message.
    m_history.resetClean();
    return true;
}

bool MessageDocument::importMessage(const QString& path, int kind) {
    if (m_manager.ImportMMS(path, kind)) {
        startHistory();
        return true;
    }
    // A copy that failed half-way has emptied the work folder: as after a
    // failed open, a new message takes the old one's place.
    if (!message())
        newMessage();
    return false;
}

bool MessageDocument::saveMessage(const QString& path) {
    if (!message() || !m_manager.SaveMsg(path))
        return false;
    m_history.setClean();
    return true;
}

void MessageDocument::startHistory() {
    const int previous = m_current;
    m_current = std::min(1, slideCount());
    ++m_visit;
    m_liveBefore.reset();
    m_history.clear();
    announce(previous);
}

void MessageDocument::setCurrentSlide(int index) {
    if (!hasSlide(index) || index == m_current)
        return;
    m_current = index;
    endFieldVisit();
    emit currentSlideChanged(m_current);
}

void MessageDocument::announce(int previousSlide) {
    emit slidesChanged();
    if (m_current != previousSlide)
        emit currentSlideChanged(m_current);
}

bool MessageDocument::edit(const char* key, const QString& fallback,
                           const std::function<void()>& change, std::optional<Field> typedInto) {
    if (!message())
        return false;
    if (!typedInto)
        endFieldVisit();
    const int previous = m_current;
    MessageSnapshot before = MessageSnapshot::take(*message(), m_current);
    change();
    record(key, fallback, std::move(before), typedInto);
    announce(previous);
    return true;
}

void MessageDocument::record(const char* key, const QString& fallback, MessageSnapshot before,
                             std::optional<Field> typedInto) {
    MessageSnapshot after = MessageSnapshot::take(*message(), m_current);
    if (after.sameDataAs(before))
        return;
    const int mergeId = typedInto ? int(*typedInto) : SnapshotCommand::kNoMerge;
    m_history.push(new SnapshotCommand(
        AppGlobals::text(key, fallback), std::move(before), std::move(after),
        [this](const MessageSnapshot& state) { restore(state); }, mergeId, m_visit));
}

bool MessageDocument::editCurrent(const char* key, const QString& fallback,
                                  const std::function<void(int index)>& change,
                                  std::optional<Field> typedInto) {
    return hasSlide(m_current) && edit(
                                      key, fallback, [&] { change(m_current); }, typedInto);
}

void MessageDocument::restore(const MessageSnapshot& state) {
    const int previous = m_current;
    // A snapshot was written by the message itself; should it ever be refused,
    // the message stays as it is rather than half restored.
    if (state.restore(*message()))
        m_current = std::min(state.currentSlide(), slideCount());
    endFieldVisit();
    announce(previous);
}

bool MessageDocument::appendSlide() {
    return edit("MNU_SLIDE_ADD", "Add slide", [this] {
        message()->Slides().Add();
        m_current = slideCount();
    });
}

bool MessageDocument::insertSlideBefore(int index) {
    return hasSlide(index) && edit("MNU_SLIDE_INSERT", "Insert slide", [this, index] {
               message()->Slides().AddBefore(index);
               m_current = index;
           });
}

bool MessageDocument::insertSlideAfter(int index) {
    return hasSlide(index) && edit("MNU_SLIDE_INSERT", "Insert slide", [this, index] {
               message()->Slides().AddAfter(index);
               m_current = index + 1;
           });
}

bool MessageDocument::duplicateSlideBefore(int index) {
    return hasSlide(index) && edit("MNU_SLIDE_DUPLICATE", "Duplicate slide", [this, index] {
               clsSlides& slides = message()->Slides();
               clsSlide& copy = slides.AddBefore(index);
               message()->CopySlide(slides.Item(index + 1), copy);
               m_current = index;
           });
}

bool MessageDocument::duplicateSlideAfter(int index) {
    return hasSlide(index) && edit("MNU_SLIDE_DUPLICATE", "Duplicate slide", [this, index] {
               clsSlides& slides = message()->Slides();
               clsSlide& copy = slides.AddAfter(index);
               message()->CopySlide(slides.Item(index), copy);
               m_current = index + 1;
           });
}

bool MessageDocument::deleteSlide(int index) {
    return hasSlide(index) && edit("MNU_SLIDE_DELETE_SLIDE", "Delete slide", [this, index] {
               if (slideCount() == 1) {
                   emptySlide(index);
                   return;
               }
               message()->DeleteSlide(index);
               m_current = std::min(m_current, slideCount());
           });
}

void MessageDocument::emptySlide(int index) {
    clsMessage& opened = *message();
    opened.DeletePicture(index);
    opened.DeleteSound(index);
    opened.DeleteText(index);
    opened.Slides().Item(index).setDuration(opened.DefaultDuration());
}

bool MessageDocument::moveSlide(int from, int to) {
    return hasSlide(from) && hasSlide(to) && edit("STR_MOVE_SLIDE", "Move slide", [=, this] {
               message()->Slides().Move(from, to);
               m_current = to;
           });
}

bool MessageDocument::setSlideText(const QString& text) {
    return editCurrent(
        "STR_TEXT_TITLE", "Text", [&](int index) { message()->Slides().Item(index).setText(text); },
        Field::SlideText);
}

bool MessageDocument::setSlideDuration(qint64 ms) {
    return editCurrent(
        "STR_SLIDE_TIME", "Slide time",
        [&](int index) { message()->Slides().Item(index).setDuration(ms); }, Field::SlideDuration);
}

bool MessageDocument::deleteSlidePicture() {
    return editCurrent("MNU_SLIDE_DELETE_IMAGE", "Remove picture",
                       [this](int index) { message()->DeletePicture(index); });
}

bool MessageDocument::deleteSlideText() {
    return editCurrent("MNU_SLIDE_DELETE_TEXT", "Remove text",
                       [this](int index) { message()->DeleteText(index); });
}

bool MessageDocument::deleteSlideSound() {
    return editCurrent("MNU_SLIDE_DELETE_SOUND", "Remove sound",
                       [this](int index) { message()->DeleteSound(index); });
}

bool MessageDocument::editSlide(const char* key, const QString& fallback,
                                const std::function<void(clsSlide& slide)>& change,
                                std::optional<Field> typedInto) {
    return editCurrent(
        key, fallback, [&](int index) { change(message()->Slides().Item(index)); }, typedInto);
}

void MessageDocument::beginLiveEdit() {
    if (message() && !m_liveBefore)
        m_liveBefore =
            std::make_unique<MessageSnapshot>(MessageSnapshot::take(*message(), m_current));
}

bool MessageDocument::finishLiveEdit(const char* key, const QString& fallback) {
    if (!m_liveBefore)
        return false;
    std::unique_ptr<MessageSnapshot> before = std::move(m_liveBefore);
    endFieldVisit();
    record(key, fallback, std::move(*before), std::nullopt);
    announce(m_current);
    return true;
}

void MessageDocument::cancelLiveEdit() {
    if (std::unique_ptr<MessageSnapshot> before = std::move(m_liveBefore))
        restore(*before);
}
