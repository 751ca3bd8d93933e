#pragma once

#include <QRect>
#include <QSize>
#include <QString>
#include <QStringList>

// How the preview shows a phone: the phone's picture, the screen rectangle
// in it the slide is drawn into and how (fill mode 0 stretches the slide
// over the rectangle, any other value draws it at its own size), the slide
// picture size the phone takes, and the window's background picture.
//
// A skin is a folder of the program's "skins" folder holding "skin.xml":
// section "skin" names the background ("BackPicture"), and each preview
// section ("Preview_Default", or the one the "Preview" setting names) gives
// "PreviewBack" (the phone picture, or "None"), "PreviewSize" ("left,top,
// width,height,fill") and "PhoneImageSize" ("width,height,flag").
struct PhoneSkin {
    QString phonePicture; // "" shows the slide without a phone
    QRect screen{21, 67, 164, 124};
    int fillMode = 1;
    QSize slideSize; // empty when the skin leaves it to the settings
    QString backPicture;
    // Pictures the skin names that are not there, for the user to be told.
    QStringList missing;

    // The skin and preview the settings choose ("Skin", "Preview",
    // "PreviewType", "PreviewBackPicture"); with "PreviewType" "Automatic"
    // the phone is the installed one whose screen suits the slide size best.
    static PhoneSkin fromSettings();
    // The skin in folder, from its preview section.
    static PhoneSkin read(const QString& folder, const QString& preview);
    // The names of the installed skins.
    static QStringList installed();

    static QString skinsFolder();
};
