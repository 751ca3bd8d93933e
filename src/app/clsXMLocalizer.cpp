#include "clsXMLocalizer.h"

#include "AppPaths.h"
#include "LocaleInfo.h"
#include "clsPropertiesXML.h"

#include <QCoreApplication>
#include <QFont>
#include <QLibraryInfo>
#include <QObject>
#include <QRegularExpression>
#include <QVariant>
#include <array>
#include <pugixml.hpp>

namespace {
QString text(const char* utf8) {
    return QString::fromUtf8(utf8);
}

// The control kinds that carry a translatable caption, with the property that
// holds it. The first class an object inherits decides.
struct CaptionedKind {
    const char* className;
    const char* captionProperty;
};
constexpr std::array<CaptionedKind, 8> kCaptionedKinds{{
    {"QMenu", "title"},       // Menu
    {"QAction", "text"},      // Menu
    {"GrButtonIII", "text"},  // the program's graphic button
    {"QPushButton", "text"},  // CommandButton
    {"QGroupBox", "title"},   // Frame
    {"QLabel", "text"},       // Label
    {"QCheckBox", "text"},    // CheckBox
    {"QRadioButton", "text"}, // OptionButton
}};

const CaptionedKind* captionedKind(const QObject* object) {
    for (const CaptionedKind& kind : kCaptionedKinds)
        if (object->inherits(kind.className))
            return &kind;
    return nullptr;
}

// Unnamed objects and Qt's own helpers are not controls of the window.
bool isNamedControl(const QObject* object) {
    const QString name = object->objectName();
    return !name.isEmpty() && !name.startsWith(QLatin1String("qt_"));
}

struct CodePageFont {
    int codePage;
    int charSet;
    const char* family; // nullptr: the system chooses
    bool atLeastNinePoints;
};
constexpr std::array<CodePageFont, 12> kCodePageFonts{{
    {1252, 0, "Tahoma", false},
    {950, 136, "新細明體", true},
    {936, 134, "宋体", true},
    {949, 129, "굴림", true},
    {932, 128, "ＭＳ Ｐゴシック", true},
    {1250, 238, nullptr, false},
    {1251, 204, nullptr, false},
    {1253, 161, nullptr, false},
    {1254, 162, nullptr, false},
    {1255, 177, nullptr, false},
    {1256, 178, nullptr, false},
    {1257, 186, nullptr, false},
}};

const CodePageFont* codePageFont(int codePage) {
    for (const CodePageFont& row : kCodePageFonts)
        if (row.codePage == codePage)
            return &row;
    return nullptr;
}

void applyProperFont(QObject* object, int codePage) {
    if (!object->isWidgetType())
        return;
    QFont font = object->property("font").value<QFont>();
    clsXMLocalizer::SetProperFont(font, codePage);
    object->setProperty("font", font);
}

// The %0, %1 ... and %n a text takes, which every translation must take alike.
QStringList parametersOf(const QString& text) {
    static const QRegularExpression parameter(QStringLiteral("%(\\d+|n)"));
    QStringList found;
    for (const QRegularExpressionMatch& match : parameter.globalMatch(text))
        found << match.captured();
    found.removeDuplicates();
    found.sort();
    return found;
}
} // namespace

clsXMLocalizer::clsXMLocalizer(clsPropertiesXML& settings) : m_settings(settings) {
    m_langPath = AppPaths::withSlash(
        AppPaths::programRelative(settings.GetProp("paths", "language", "\\language\\")));
}

std::unique_ptr<clsXMLocalizer> clsXMLocalizer::forChosenLanguage(clsPropertiesXML& settings) {
    auto localizer = std::make_unique<clsXMLocalizer>(settings);
    // An unknown language must not leave the program without texts.
    if (!localizer->SetLanguage(settings.GetProp("preferences", "Language", "en-us")))
        localizer->SetLanguage("en-us");
    return localizer;
}

QList<QPair<QString, QString>> clsXMLocalizer::GetAvaliableLanguage() const {
    QList<QPair<QString, QString>> languages;
    QStringList entries;
    m_settings.GetPropList("languages", entries, "=");
    for (const QString& entry : entries) {
        const QString code = entry.section(QLatin1Char('='), 0, 0);
        const QStringList fields = entry.section(QLatin1Char('='), 1).split(QLatin1Char(','));
        if (fields.value(1) != QLatin1String("0"))
            languages.append({code, fields.value(0)});
    }
    return languages;
}

bool clsXMLocalizer::SetLanguage(const QString& code) {
    const QString entry = m_settings.GetProp("languages", code, "<no>");
    if (entry == QLatin1String("<no>"))
        return false;
    QString language = code;
    if (entry.split(QLatin1Char(',')).value(1) == QLatin1String("0"))
        language = QStringLiteral("en-us");
    // A missing or broken file must not leave the program without texts:
    // what it lacks comes from the English one.
    m_loadError.clear();
    loadLanguageFile(m_langPath + language + ".xml");
    m_language = language;
    useQtTexts(language);
    return true;
}

// Qt's own texts (the buttons of message boxes, the file dialogs, key names
// in menus) follow the program's language, not the system's.
void clsXMLocalizer::useQtTexts(const QString& language) {
    if (!QCoreApplication::instance())
        return;
    if (m_qtTexts)
        QCoreApplication::removeTranslator(m_qtTexts.get());
    m_qtTexts = std::make_unique<QTranslator>();
    if (m_qtTexts->load("qtbase_" + language.section(u'-', 0, 0),
                        QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(m_qtTexts.get());
}

bool clsXMLocalizer::IsLanguageInstalled(const QString& code) const {
    const QString entry = m_settings.GetProp("languages", code, "<no>");
    return entry != QLatin1String("<no>") && entry.split(QLatin1Char(',')).value(1) != "0";
}

// Reads both tables of one file; false with why when it is no language file.
bool clsXMLocalizer::readTables(const QString& fileName, Tables& tables, QString& why) {
    pugi::xml_document document;
    const pugi::xml_parse_result result = document.load_file(
        fileName.toLocal8Bit().constData(), pugi::parse_default, pugi::encoding_utf8);
    const pugi::xml_node root = document.child("langtab");
    if (!result || !root) {
        why = fileName + ": " +
              (result ? QStringLiteral("no langtab element") : text(result.description()));
        return false;
    }
    for (pugi::xml_node string : root.child("strings").children("string"))
        tables.strings.insert(text(string.attribute("name").value()),
                              text(string.child("text").text().get()));
    for (pugi::xml_node form : root.child("forms").children("form")) {
        const QString formName = text(form.attribute("name").value());
        tables.translations.insert(formName + "_caption", text(form.attribute("caption").value()));
        for (pugi::xml_node control : form.children()) {
            for (pugi::xml_node element : control.children()) {
                const QString elementName = text(element.name());
                if (elementName != QLatin1String("caption") && elementName != QLatin1String("text"))
                    continue;
                tables.translations.insert(
                    controlKey(formName, text(control.attribute("name").value()),
                               text(control.attribute("index").value()), elementName),
                    text(element.text().get()));
            }
        }
    }
    return true;
}

bool clsXMLocalizer::loadLanguageFile(const QString& fileName) {
    Tables tables;
    QString why;
    const bool read = readTables(fileName, tables, why);
    if (!read)
        m_loadError = why;
    else
        m_langFileName = fileName;
    const QString english = m_langPath + "en-us.xml";
    Tables base;
    QString baseWhy;
    if (fileName != english && readTables(english, base, baseWhy)) {
        QStringList lacking;
        QStringList broken;
        completeFrom(base.strings, tables.strings, lacking, broken);
        completeFrom(base.translations, tables.translations, lacking, broken);
        if (read)
            reportGaps(fileName, lacking, broken);
        else
            m_langFileName = english;
    }
    m_tables = std::move(tables);
    return read;
}

// What a translation lacks, or takes other parameters in, is taken from the
// English texts, so a message never loses the name or number it is about.
void clsXMLocalizer::completeFrom(const QHash<QString, QString>& english,
                                  QHash<QString, QString>& translated, QStringList& lacking,
                                  QStringList& broken) {
    for (auto it = english.cbegin(); it != english.cend(); ++it) {
        const auto found = translated.constFind(it.key());
        if (found == translated.cend())
            lacking << it.key();
        else if (parametersOf(*found) != parametersOf(*it))
            broken << it.key();
        else
            continue;
        translated.insert(it.key(), *it);
    }
}

// A few keys name the kind of gap; the translator's tools find the rest.
QString clsXMLocalizer::someKeys(QStringList keys) {
    constexpr qsizetype kShown = 6;
    keys.sort();
    const qsizetype more = keys.size() - kShown;
    return keys.mid(0, kShown).join(", ") +
           (more > 0 ? QStringLiteral(" and %1 more").arg(more) : "");
}

// Said once, when the file is loaded, where a translator will see it.
void clsXMLocalizer::reportGaps(const QString& fileName, const QStringList& lacking,
                                const QStringList& broken) {
    if (lacking.isEmpty() && broken.isEmpty())
        return;
    QStringList gaps;
    if (!lacking.isEmpty())
        gaps << QStringLiteral("%1 texts are missing (%2)")
                    .arg(lacking.size())
                    .arg(someKeys(lacking));
    if (!broken.isEmpty())
        gaps << QStringLiteral("%1 take other parameters than the English ones (%2)")
                    .arg(broken.size())
                    .arg(someKeys(broken));
    qWarning().noquote() << fileName + ": " + gaps.join("; ") +
                                "; the English texts are used for them";
}

bool clsXMLocalizer::TranslateForm(QObject* window) const {
    if (!window)
        return false;
    const int codePage = LocaleInfo::codePageOf(LocaleInfo::userLcid());
    const QList<QObject*> controls = window->findChildren<QObject*>();
    if (!hasEnglishThreadLocale()) {
        applyProperFont(window, codePage);
        for (QObject* control : controls)
            applyProperFont(control, codePage);
    }
    const QString windowName = window->objectName();
    window->setProperty("windowTitle", m_tables.translations.value(windowName + "_caption"));
    for (QObject* control : controls)
        translateControl(control, windowName);
    return true;
}

void clsXMLocalizer::translateControl(QObject* control, const QString& windowName) const {
    const CaptionedKind* kind = captionedKind(control);
    if (!kind || !isNamedControl(control))
        return;
    const QVariant indexProperty = control->property("index");
    const QString index = indexProperty.isValid() ? indexProperty.toString() : QString();
    const QString name = control->objectName();
    // A missing caption blanks the control: the language files are complete.
    control->setProperty(kind->captionProperty, m_tables.translations.value(controlKey(
                                                    windowName, name, index, "caption")));
    const QString toolTip =
        m_tables.translations.value(controlKey(windowName, name, index, "text"));
    if (!toolTip.isEmpty())
        control->setProperty("toolTip", toolTip);
}

QString clsXMLocalizer::GetString(const QString& key) const {
    return m_tables.strings.value(key);
}

QString clsXMLocalizer::GetStringPar(const QString& key, const QStringList& parameters) const {
    QString result = GetString(key);
    result.replace(QLatin1String("%n"), QLatin1String("\r\n"));
    // In this order, so "%10" is taken by parameter 1 before parameter 10 is reached.
    for (qsizetype i = 0; i < parameters.size(); ++i)
        result.replace(QLatin1Char('%') + QString::number(i), parameters[i]);
    return result;
}

int clsXMLocalizer::GetDefaultCharSet() const {
    if (hasEnglishThreadLocale())
        return 0;
    const CodePageFont* row = codePageFont(GetCodePage(LocaleInfo::userLcid()));
    return row ? row->charSet : 1;
}

void clsXMLocalizer::ChangeCharSetUsrCtrl(QObject* container) const {
    if (!container)
        return;
    const int codePage = GetCodePage(LocaleInfo::userLcid());
    for (QObject* control : container->findChildren<QObject*>())
        applyProperFont(control, codePage);
}

int clsXMLocalizer::SetProperFont(QFont& font, int codePage) {
    const CodePageFont* row = codePageFont(codePage);
    if (!row)
        return 1;
    if (row->family)
        font.setFamily(text(row->family));
    // East-Asian faces are unreadable below nine points.
    if (row->atLeastNinePoints && font.pointSizeF() < 9)
        font.setPointSize(9);
    return row->charSet;
}

int clsXMLocalizer::GetCodePage(std::uint32_t lcid) {
    return LocaleInfo::codePageOf(lcid);
}

QString clsXMLocalizer::controlKey(const QString& window, const QString& control,
                                   const QString& index, const QString& element) {
    return window + "_" + control + "_" + index + "_" + element;
}

bool clsXMLocalizer::hasEnglishThreadLocale() const {
    return LocaleInfo::isEnglish(LocaleInfo::userLcid());
}
