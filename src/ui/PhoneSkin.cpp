#include "PhoneSkin.h"

#include "AppGlobals.h"
#include "AppPaths.h"
#include "PlainFileName.h"
#include "SlideRenderer.h"
#include "clsPropertiesXML.h"

#include <QDir>

namespace {
QString setting(const char* key, const char* fallback) {
    return AppGlobals::setting("preferences", key, QString::fromLatin1(fallback));
}

// "l,t,w,h,fill"; a malformed value keeps the default rectangle.
void readScreen(const QString& value, PhoneSkin& skin) {
    const QStringList fields = value.split(u',');
    QList<int> numbers;
    for (const QString& field : fields) {
        bool ok = false;
        numbers << field.trimmed().toInt(&ok);
        if (!ok)
            return;
    }
    if (numbers.size() < 4 || numbers[2] <= 0 || numbers[3] <= 0)
        return;
    skin.screen = QRect(numbers[0], numbers[1], numbers[2], numbers[3]);
    skin.fillMode = numbers.value(4, 1);
}

// A picture the skin names, found in its folder, or noted as missing.
QString picture(const QString& folder, const QString& name, PhoneSkin& skin) {
    if (name.isEmpty() || name.compare(QLatin1String("None"), Qt::CaseInsensitive) == 0)
        return QString();
    const QString path = PlainFileName::existingFile(folder, name);
    if (path.isEmpty())
        skin.missing << QDir(folder).filePath(name);
    return path;
}

// How far a phone's screen is from the slide size, in pixels.
int misfit(const PhoneSkin& skin, QSize slide) {
    const QSize size = skin.slideSize.isEmpty() ? skin.screen.size() : skin.slideSize;
    return std::abs(size.width() - slide.width()) + std::abs(size.height() - slide.height());
}
} // namespace

QString PhoneSkin::skinsFolder() {
    return AppPaths::withSlash(AppPaths::programFolder()) + QStringLiteral("skins/");
}

QStringList PhoneSkin::installed() {
    QStringList names;
    for (const QString& name :
         QDir(skinsFolder()).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name))
        if (QFileInfo::exists(skinsFolder() + name + QStringLiteral("/skin.xml")))
            names << name;
    return names;
}

PhoneSkin PhoneSkin::read(const QString& folder, const QString& preview) {
    PhoneSkin skin;
    clsPropertiesXML file;
    if (!file.Initialize(AppPaths::withSlash(folder) + QStringLiteral("skin.xml"),
                         QStringLiteral("skin")))
        return skin;
    skin.backPicture = picture(folder, file.GetProp("skin", "BackPicture", ""), skin);
    skin.phonePicture = picture(folder, file.GetProp(preview, "PreviewBack", "None"), skin);
    readScreen(file.GetProp(preview, "PreviewSize", "21,67,164,124,1"), skin);
    const QStringList size = file.GetProp(preview, "PhoneImageSize", "").split(u',');
    skin.slideSize = QSize(size.value(0).toInt(), size.value(1).toInt());
    return skin;
}

PhoneSkin PhoneSkin::fromSettings() {
    PhoneSkin skin;
    const QString name = setting("Skin", "");
    if (setting("PreviewType", "Default") == QLatin1String("Automatic")) {
        const QSize slide = SlideRenderer::surfaceFromSettings();
        for (const QString& each : installed()) {
            const PhoneSkin candidate =
                read(skinsFolder() + each, setting("Preview", "Preview_Default"));
            if (skin.phonePicture.isEmpty() || misfit(candidate, slide) < misfit(skin, slide))
                skin = candidate;
        }
        // The slide keeps the size the settings give it.
        skin.slideSize = QSize();
    } else if (!name.isEmpty() && PlainFileName::isPlain(name)) {
        skin = read(skinsFolder() + name, setting("Preview", "Preview_Default"));
    }
    const QString own = setting("PreviewBackPicture", "");
    if (!own.isEmpty()) {
        skin.phonePicture = QFileInfo(own).isFile() ? own : QString();
        if (skin.phonePicture.isEmpty())
            skin.missing << own;
    }
    return skin;
}
