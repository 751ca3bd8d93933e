#include "SettingsCatalogue.h"

#include "AppGlobals.h"
#include "ContentClass.h"
#include "PhoneSkin.h"
#include "TransferOptions.h"
#include "clsXMLocalizer.h"

namespace {
using Kind = SettingField::Kind;
using Choice = SettingField::Choice;
using Description = SettingField::Description;

QString text(const char* key, const char* fallback) {
    return AppGlobals::text(key, fallback);
}

Description check(const char* key, const char* fallback, const char* labelKey, const char* label) {
    Description field;
    field.key = QString::fromLatin1(key);
    field.fallback = QString::fromLatin1(fallback);
    field.labelKey = labelKey;
    field.labelFallback = label;
    return field;
}

Description of(Kind kind, const char* key, const char* fallback, const char* labelKey,
               const char* label) {
    Description field = check(key, fallback, labelKey, label);
    field.kind = kind;
    return field;
}

Description number(const char* key, const char* fallback, const char* labelKey, const char* label,
                   std::pair<int, int> range, int scale) {
    Description field = of(Kind::Number, key, fallback, labelKey, label);
    field.minimum = range.first;
    field.maximum = range.second;
    field.scale = scale;
    return field;
}

Description choice(const char* key, const char* fallback, const char* labelKey, const char* label,
                   std::function<QList<Choice>()> choices) {
    Description field = of(Kind::Choice, key, fallback, labelKey, label);
    field.choices = std::move(choices);
    return field;
}

Description textField(const char* key, const char* fallback, const char* labelKey,
                      const char* label, const QString& pattern,
                      std::pair<const char*, const char*> problem) {
    Description field = of(Kind::Text, key, fallback, labelKey, label);
    field.pattern = pattern;
    field.problemKey = problem.first;
    field.problemFallback = problem.second;
    return field;
}

// The languages the settings list and have not switched off.
QList<Choice> languages() {
    QList<Choice> offered;
    if (const clsXMLocalizer* localizer = AppGlobals::localizer())
        for (const auto& [code, name] : localizer->GetAvaliableLanguage())
            offered << Choice{code, name};
    return offered;
}

QList<Choice> pictureSizes() {
    QList<Choice> offered{{"Auto", text("STR_AUTO_SIZE", "Auto")}};
    const QStringList sizes =
        AppGlobals::setting("preferences", "MmsImageSizes", "Auto").split(u';', Qt::SkipEmptyParts);
    for (const QString& size : sizes)
        if (size != QLatin1String("Auto"))
            offered << Choice{size, size};
    return offered;
}

QList<Choice> contentClasses() {
    QList<Choice> offered;
    for (const ContentClass::Limits& limits : ContentClass::table())
        offered << Choice{QString::fromLatin1(limits.name), QString::fromLatin1(limits.name)};
    return offered;
}

QList<Choice> creationModes() {
    return {{"Restricted", text("STR_MODE_RESTRICTED", "Restricted: refuse what breaks the class")},
            {"Warning", text("STR_MODE_WARNING", "Warning: warn before the message leaves")},
            {"Free", text("STR_MODE_FREE", "Free: never ask")}};
}

QList<Choice> skins() {
    QList<Choice> offered{{"", text("STR_SKIN_NONE", "None")}};
    for (const QString& skin : PhoneSkin::installed())
        offered << Choice{skin, skin};
    return offered;
}

QList<Choice> transferKinds() {
    const QList<Choice> all{
        {"0", text("STR_COM_TYPE_NONE", "Sending switched off")},
        {"1", text("STR_COM_TYPE_COMMAND", "Send command (infrared or Bluetooth)")},
        {"2", text("STR_COM_TYPE_OBEX", "OBEX Object Push")},
        {"3", text("STR_COM_TYPE_SUITE", "Phone suite")}};
    const QStringList supported =
        AppGlobals::setting("preferences", "CommunicationTypesSupported", "0;1;2").split(u';');
    QList<Choice> offered;
    for (const Choice& kind : all)
        if (supported.contains(kind.value))
            offered << kind;
    return offered;
}

Description withSuffix(Description field, const char* key, const char* fallback) {
    field.suffixKey = key;
    field.suffixFallback = fallback;
    return field;
}

Description folder(const char* key, const char* labelKey, const char* label) {
    Description field = of(Kind::Folder, key, "", labelKey, label);
    field.section = QStringLiteral("browserPaths");
    return field;
}
} // namespace

QList<SettingsCatalogue::Tab> SettingsCatalogue::tabs() {
    return {general(), pictures(), sounds(), preview(), browsers(), phone()};
}

SettingsCatalogue::Tab SettingsCatalogue::general() {
    return {
        "pageGeneral",
        "STR_SETTINGS_GENERAL",
        "General",
        {choice("Language", "en-us", "STR_SETTINGS_LANGUAGE", "&Language", languages),
         check("ShowSplash", "1", "STR_SETTINGS_SPLASH", "Show the &splash screen at start"),
         check("AskNewSlide", "1", "STR_SETTINGS_ASK_NEW", "Ask before &adding a slide"),
         check("AskDeleteSlide", "1", "STR_SETTINGS_ASK_DELETE", "Ask before &deleting a slide"),
         choice("ContentClass", "Image Rich", "STR_SETTINGS_CONTENT_CLASS",
                "Content &class of messages", contentClasses),
         choice("CreationMode", "Warning", "STR_SETTINGS_CREATION_MODE", "Creation &mode",
                creationModes),
         check("ExportImport", "0", "STR_SETTINGS_EXPORT_IMPORT",
               "Offer &import and export in the File menu"),
         check("AutoShowExportImportFileDlg", "1", "STR_SETTINGS_AUTO_FILE_DIALOG",
               "Open the &file dialog at once when importing or exporting")}};
}

SettingsCatalogue::Tab SettingsCatalogue::pictures() {
    const auto formats = [] {
        return QList<Choice>{
            {"jpg", "JPEG"}, {"gif", "GIF"}, {"png", "PNG"}, {"bmp", "BMP"}, {"wbmp", "WBMP"}};
    };
    const auto rasters = [] {
        return QList<Choice>{{"1", text("STR_WBMP_THRESHOLD", "Threshold (line art)")},
                             {"2", text("STR_WBMP_ORDERED", "Ordered dither (even areas)")},
                             {"3", text("STR_WBMP_DIFFUSION", "Error diffusion (photographs)")}};
    };
    const auto units = [] {
        return QList<Choice>{{"ms", text("STR_TIME_MS", "Milliseconds")},
                             {"s", text("STR_TIME_S", "Seconds")}};
    };
    Description unit =
        choice("MMSTimeFormat", "ms", "STR_SETTINGS_TIME_UNIT", "&Time unit of slides", units);
    unit.allowedBy = "AllowMMSTimeFormat";
    return {"pagePictures",
            "STR_SETTINGS_PICTURES",
            "Pictures",
            {choice("ImageFormat", "jpg", "STR_SETTINGS_IMAGE_FORMAT", "Picture &format", formats),
             number("JpgQuality", "90", "STR_SETTINGS_JPG_QUALITY", "&JPEG quality", {1, 100}, 1),
             check("GifOptimizedPalette", "1", "STR_SETTINGS_GIF_PALETTE",
                   "GIF: build an &optimised palette"),
             check("GifErrorDiffusion", "1", "STR_SETTINGS_GIF_DIFFUSION",
                   "GIF: &dither with error diffusion"),
             choice("WbmpRaster", "3", "STR_SETTINGS_WBMP_RASTER", "&WBMP raster", rasters),
             choice("MmsImageSize", "Auto", "STR_SETTINGS_IMAGE_SIZE", "Slide picture &size",
                    pictureSizes),
             textField("MmsImageSizes", "Auto", "STR_SETTINGS_IMAGE_SIZES", "Sizes &offered",
                       "(Auto|[1-9]\\d{0,3}x[1-9]\\d{0,3})(;(Auto|[1-9]\\d{0,3}x[1-9]\\d{0,3}))*",
                       {"STR_SETTINGS_BAD_SIZES",
                        "Write the sizes offered as width x height, separated by \";\", for "
                        "example \"Auto;160x120;640x480\"."}),
             unit}};
}

SettingsCatalogue::Tab SettingsCatalogue::sounds() {
    return {"pageSounds",
            "STR_SETTINGS_SOUNDS",
            "Sounds",
            {withSuffix(number("MaxRecordTime", "300000", "STR_SETTINGS_MAX_RECORD",
                               "&Longest recording", {1, 3600}, 1000),
                        "STR_SECONDS_SUFFIX", " s"),
             withSuffix(number("SlideDuration", "3000", "STR_SETTINGS_SLIDE_DURATION",
                               "&New slides last", {1, 600000}, 1),
                        "STR_MS_SUFFIX", " ms"),
             check("ConvertWavToAmr", "1", "STR_SETTINGS_WAV_TO_AMR", "&Convert recordings to AMR"),
             check("AskOverWriteRecording", "0", "STR_SETTINGS_ASK_OVERWRITE",
                   "Ask before recording &over a sound")}};
}

SettingsCatalogue::Tab SettingsCatalogue::preview() {
    const auto types = [] {
        return QList<Choice>{{"Default", text("STR_PREVIEW_TYPE_SKIN", "The skin's phone")},
                             {"Automatic", text("STR_PREVIEW_TYPE_AUTO",
                                                "The phone that suits the slide size best")}};
    };
    Description type =
        choice("PreviewType", "Default", "STR_SETTINGS_PREVIEW_TYPE", "&Phone shown", types);
    type.allowedBy = "PreviewTypeEnabled";
    return {"pagePreview",
            "STR_SETTINGS_PREVIEW",
            "Preview",
            {choice("Skin", "", "STR_SETTINGS_SKIN", "S&kin", skins), type,
             check("ShowPreview", "1", "STR_SETTINGS_SHOW_PREVIEW", "&Show the preview"),
             check("PreviewLoop", "0", "STR_SETTINGS_PREVIEW_LOOP", "Play in a &loop"),
             of(Kind::Colour, "BackgroundColor", "16777215", "STR_SETTINGS_BACK_COLOUR",
                "&Background colour of new slides")}};
}

SettingsCatalogue::Tab SettingsCatalogue::browsers() {
    return {"pageBrowsers",
            "STR_SETTINGS_BROWSERS",
            "Browsers",
            {check("ExtendedBrowser", "0", "STR_SETTINGS_EXTENDED_BROWSER",
                   "&Extended browsers (any folder)"),
             folder("Backgrounds", "STR_SETTINGS_FOLDER_BACKGROUNDS", "&Backgrounds folder"),
             folder("Pictures", "STR_SETTINGS_FOLDER_PICTURES", "&Pictures folder"),
             folder("Animations", "STR_SETTINGS_FOLDER_ANIMATIONS", "&Animations folder"),
             folder("Sounds", "STR_SETTINGS_FOLDER_SOUNDS", "&Sounds folder")}};
}

SettingsCatalogue::Tab SettingsCatalogue::phone() {
    Description command = textField(
        "", "", "STR_SETTINGS_SEND_COMMAND", "Send &command", ".*%f%.*",
        {"STR_SETTINGS_BAD_COMMAND", "The send command must name the file to send as %f%."});
    command.section = QStringLiteral("IrDaCommand");
    command.key = irDaFamily();
    command.fallback = irDaDefaultCommand();
    Description target =
        textField("ObexTarget", "tcp:127.0.0.1:650", "STR_SETTINGS_OBEX_TARGET", "&OBEX target",
                  "tcp:[^:\\s]+:\\d{1,5}|bt:([0-9A-Fa-f]{2}:){5}[0-9A-Fa-f]{2}:\\d{1,2}",
                  {"STR_SETTINGS_BAD_OBEX",
                   "Write the OBEX target as tcp:HOST:PORT or bt:AA:BB:CC:DD:EE:FF:CHANNEL."});
    target.section = QStringLiteral("PhoneTransfer");
    return {"pagePhone",
            "STR_SETTINGS_PHONE",
            "Phone",
            {choice("CommunicationType", "1", "STR_SETTINGS_COM_TYPE", "&Send to the phone by",
                    transferKinds),
             command, target,
             textField("SisDownloadDeviceId", "Zentor", "STR_SETTINGS_DEVICE_ID",
                       "&Device id for packages", "\\S.*",
                       {"STR_SETTINGS_BAD_DEVICE_ID", "The device id must not be empty."}),
             check("BlinkLed", "1", "STR_SETTINGS_BLINK", "&Blink the phone indicator")}};
}
