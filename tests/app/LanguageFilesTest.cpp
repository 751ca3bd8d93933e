#include "QtPrinters.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QXmlStreamReader>
#include <map>
#include <set>

namespace {
const QString kSource = QStringLiteral(VELLUMO_SOURCE_DIR);

// A shipped language file read strictly, as any XML tool would: its texts by
// key, string keys and window/control keys alike.
struct LanguageFile {
    std::map<QString, QString> texts;
    QString error;
};

QString attribute(const QXmlStreamReader& xml, const char* name) {
    return xml.attributes().value(QLatin1String(name)).toString();
}

LanguageFile readStrictly(const QString& path) {
    LanguageFile file;
    QFile in(path);
    if (!in.open(QIODevice::ReadOnly))
        return {{}, in.errorString()};
    QXmlStreamReader xml(&in);
    QString form;
    QString control; // the control's key while inside one
    QString string;  // the string's key while inside one
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isEndElement()) {
            if (xml.name() == u"control")
                control.clear();
            else if (xml.name() == u"string")
                string.clear();
            continue;
        }
        if (!xml.isStartElement())
            continue;
        const QString name = xml.name().toString();
        if (name == "form") {
            form = attribute(xml, "name");
            file.texts[form + "_caption"] = attribute(xml, "caption");
        } else if (name == "control") {
            control = form + "_" + attribute(xml, "name") + "_" + attribute(xml, "index");
        } else if (name == "string") {
            string = attribute(xml, "name");
        } else if (!control.isEmpty() && (name == "caption" || name == "text")) {
            file.texts[control + "_" + name] = xml.readElementText();
        } else if (!string.isEmpty() && name == "text") {
            file.texts[string] = xml.readElementText();
        }
    }
    if (xml.hasError())
        file.error =
            QStringLiteral("%1 line %2: %3").arg(path).arg(xml.lineNumber()).arg(xml.errorString());
    return file;
}

// The %0, %1 ... and %n of a text, each once, in order.
QStringList parameters(const QString& text) {
    static const QRegularExpression parameter(QStringLiteral("%(\\d+|n)"));
    std::set<QString> found;
    for (const QRegularExpressionMatch& match : parameter.globalMatch(text))
        found.insert(match.captured());
    return QStringList(found.begin(), found.end());
}

// The keys the program's code asks for: every literal that looks like one.
// A literal ending in "_" is the start of keys made by adding a number.
struct UsedKeys {
    std::set<QString> keys;
    QStringList prefixes;
};

UsedKeys keysInCode() {
    static const QRegularExpression literal(
        QStringLiteral("\"((?:APP|ASK|BTN|CHK|ERR|MNU|STR)_[A-Z0-9_]*)\""));
    UsedKeys used;
    QDirIterator it(kSource + "/src", {"*.cpp", "*.h"}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        QFile source(it.next());
        EXPECT_TRUE(source.open(QIODevice::ReadOnly));
        const QString code = QString::fromUtf8(source.readAll());
        for (const QRegularExpressionMatch& match : literal.globalMatch(code)) {
            const QString key = match.captured(1);
            if (key.endsWith(u'_'))
                used.prefixes << key;
            else
                used.keys.insert(key);
        }
    }
    return used;
}

bool isStringKey(const QString& key) {
    return !key.startsWith(QLatin1String("frm"));
}

QStringList shippedLanguages() {
    return QDir(kSource + "/data/language").entryList({"*.xml"}, QDir::Files);
}
} // namespace

TEST(LanguageFilesTest, EveryShippedLanguageHasEveryUsedKeyNoOtherAndTheEnglishParameters) {
    const UsedKeys used = keysInCode();
    ASSERT_GT(used.keys.size(), 300u) << "the scan found the program's keys";
    const LanguageFile english = readStrictly(kSource + "/data/language/en-us.xml");
    ASSERT_EQ(english.error, QString());
    const QStringList languages = shippedLanguages();
    EXPECT_TRUE(languages.contains("de-de.xml") && languages.contains("fr-fr.xml"));
    for (const QString& name : languages) {
        const LanguageFile language = readStrictly(kSource + "/data/language/" + name);
        EXPECT_EQ(language.error, QString()) << name.toStdString();
        for (const QString& key : used.keys)
            EXPECT_TRUE(language.texts.count(key))
                << name.toStdString() << " lacks " << key.toStdString();
        for (const auto& [key, text] : language.texts) {
            const bool usedByCode =
                !isStringKey(key) || used.keys.count(key) ||
                std::any_of(used.prefixes.begin(), used.prefixes.end(),
                            [&](const QString& prefix) { return key.startsWith(prefix); });
            EXPECT_TRUE(usedByCode) << name.toStdString() << ": nothing uses " << key.toStdString();
            EXPECT_TRUE(english.texts.count(key))
                << name.toStdString() << ": " << key.toStdString() << " is not in English";
            EXPECT_FALSE(text.trimmed().isEmpty() && !english.texts.at(key).trimmed().isEmpty())
                << name.toStdString() << ": " << key.toStdString() << " is empty";
            if (english.texts.count(key)) {
                EXPECT_EQ(parameters(text), parameters(english.texts.at(key)))
                    << name.toStdString() << ": " << key.toStdString();
            }
        }
        EXPECT_EQ(language.texts.size(), english.texts.size()) << name.toStdString();
    }
}
