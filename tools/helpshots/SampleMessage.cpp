#include "SampleMessage.h"

#include "AppGlobals.h"
#include "MediaFolderModel.h"
#include "MessageDocument.h"
#include "StoredColor.h"
#include "ToolTabs.h"
#include "clsDrawObject.h"
#include "ctlBrowser.h"
#include "ctlPictureEditor.h"
#include "frmMain.h"

#include <QApplication>
#include <QListView>
#include <QPushButton>

SampleMessage::SampleMessage(frmMain& window, const QString& language)
    : m_window(window), m_german(language.startsWith(QLatin1String("de"))) {}

QList<SampleMessage::Slide> SampleMessage::slides() const {
    if (m_german)
        return {{"Backgrounds/party_balloons.jpg", "Pictures/cake.gif", "Alles Gute!",
                 "Alles Gute zum Geburtstag, Anna!", "fanfare.wav"},
                {"Backgrounds/sunset_gradient.jpg", "Pictures/gift.gif", "Für dich",
                 "Dein Geschenk wartet auf dich.", ""},
                {"Backgrounds/night_sky.jpg", "Pictures/moon.gif", "Bis heute Abend",
                 "Wir sehen uns um acht.", "chime.wav"}};
    return {{"Backgrounds/party_balloons.jpg", "Pictures/cake.gif", "Happy birthday!",
             "Happy birthday, Anna!", "fanfare.wav"},
            {"Backgrounds/sunset_gradient.jpg", "Pictures/gift.gif", "For you",
             "Your present is waiting for you.", ""},
            {"Backgrounds/night_sky.jpg", "Pictures/moon.gif", "See you tonight",
             "See you at eight.", "chime.wav"}};
}

void SampleMessage::compose() {
    const QList<Slide> all = slides();
    for (qsizetype i = 0; i < all.size(); ++i) {
        if (i > 0)
            m_window.document().appendSlide();
        m_window.document().setCurrentSlide(int(i) + 1);
        fill(all[i]);
    }
    m_window.document().setCurrentSlide(1);
    QApplication::processEvents();
}

void SampleMessage::fill(const Slide& slide) {
    ctlPictureEditor* editor = m_window.pictureEditor();
    editor->AddBackgroundPicture(archiveFile(QLatin1String(slide.background)));
    editor->AddImage(archiveFile(QLatin1String(slide.picture)), QPoint(6, 6));
    editor->AddText();
    editor->ChangeText(slide.caption);
    // Large and bold across the lower part of the slide, as a greeting is.
    DrawObjectProperties caption = editor->selectedProperties();
    const QSize surface = editor->surfaceSize();
    caption.x = surface.width() / 20;
    caption.y = surface.height() * 3 / 5;
    caption.w = surface.width() * 9 / 10;
    caption.h = surface.height() / 3;
    caption.fontSize = std::max(8, surface.height() / 9);
    caption.bold = true;
    caption.fontAlign = 2;
    caption.fontColor = StoredColor::fromQColor(QColor(150, 20, 40));
    editor->ApplyText(caption);
    editor->ClearPicture();
    editor->SaveDrawObjects();
    m_window.document().setSlideText(slide.text);
    if (*slide.sound)
        attachSound(QLatin1String(slide.sound));
}

// As the user does it: chosen in the Sounds tab and added with its button.
void SampleMessage::attachSound(const QString& file) {
    ctlBrowser* sounds = m_window.toolTabs()->browser(ctlBrowser::Sounds);
    const QModelIndexList found = sounds->model()->match(
        sounds->model()->index(0, 0), Qt::DisplayRole, file, 1, Qt::MatchExactly);
    if (found.isEmpty())
        return;
    sounds->selectIndex(found.first().row() + 1);
    sounds->findChild<QPushButton*>(QStringLiteral("cmdAdd"))->click();
}

QString SampleMessage::archiveFile(const QString& relative) const {
    return AppGlobals::programArchive() + relative;
}
