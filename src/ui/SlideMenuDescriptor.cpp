#include "SlideMenuDescriptor.h"

#include "AppGlobals.h"
#include "ctlSlideThumbs.h"

QString SlideMenuDescriptor::build(int offset, const std::function<bool(int number)>& offered,
                                   bool separatorBeforeDelete) {
    auto item = [&](const QString& caption, int command) {
        const int number = command + offset;
        return (offered(number) ? QString() : QStringLiteral("!")) + caption + u';' +
               QString::number(number);
    };
    auto text = [](const char* key, const char* fallback) {
        return AppGlobals::text(key, fallback);
    };
    using T = ctlSlideThumbs;
    const QString before = text("MNU_SLIDE_BEFORE", "Before");
    const QString after = text("MNU_SLIDE_AFTER", "After");
    return item(text("MNU_SLIDE_ADD", "Add"), T::AddSlide) + u',' +
           text("MNU_SLIDE_INSERT", "Insert") + ";0|" + item(before, T::InsertBefore) + u'|' +
           item(after, T::InsertAfter) + u',' + text("MNU_SLIDE_DUPLICATE", "Duplicate") + ";0|" +
           item(before, T::DuplicateBefore) + u'|' + item(after, T::DuplicateAfter) + u',' +
           (separatorBeforeDelete ? QStringLiteral("-,") : QString()) +
           text("MNU_SLIDE_DELETE", "Delete") + ";0|" +
           item(text("MNU_SLIDE_DELETE_SLIDE", "Slide"), T::DeleteSlide) + "|-|" +
           item(text("MNU_SLIDE_DELETE_IMAGE", "Image"), T::DeleteImage) + u'|' +
           item(text("MNU_SLIDE_DELETE_SOUND", "Sound"), T::DeleteSound) + u'|' +
           item(text("MNU_SLIDE_DELETE_TEXT", "Text"), T::DeleteText);
}
