#pragma once

#include <QHash>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>
#include <QTranslator>
#include <cstdint>
#include <memory>

class QFont;
class QObject;
class clsPropertiesXML;

// The user-interface language: loads <language folder><code>.xml, translates
// the captions and tool tips of a window in one call and hands out message
// texts by key.
//
// Windows and controls are Qt objects: the window's and each control's name is
// its objectName(), a control of a control array carries the dynamic property
// "index", and the kind of a control follows from its class.
class clsXMLocalizer {
public:
    explicit clsXMLocalizer(clsPropertiesXML& settings);
    // The language the settings name ("preferences"/"Language"), English
    // when they name none that is installed.
    static std::unique_ptr<clsXMLocalizer> forChosenLanguage(clsPropertiesXML& settings);

    QList<QPair<QString, QString>> GetAvaliableLanguage() const;
    QString GetLanguage() const { return m_language; }
    bool SetLanguage(const QString& code);
    bool IsLanguageInstalled(const QString& code) const;
    QString GetLangPath() const { return m_langPath; }

    bool TranslateForm(QObject* window) const;
    QString GetString(const QString& key) const;
    QString GetStringPar(const QString& key, const QStringList& parameters) const;

    int GetDefaultCharSet() const;
    void ChangeCharSetUsrCtrl(QObject* container) const;
    // Returns the character set that goes with the code page; this platform's
    // fonts have no character-set field, the family carries the script.
    static int SetProperFont(QFont& font, int codePage);
    static int GetCodePage(std::uint32_t lcid);

    // The file that was actually loaded, and why the requested one was not.
    QString languageFileName() const { return m_langFileName; }
    QString loadError() const { return m_loadError; }

    // The caption/tool-tip table key of a control.
    static QString controlKey(const QString& window, const QString& control, const QString& index,
                              const QString& element);

private:
    struct Tables {
        QHash<QString, QString> strings;
        QHash<QString, QString> translations;
    };
    static bool readTables(const QString& fileName, Tables& tables, QString& why);
    static void completeFrom(const QHash<QString, QString>& english,
                             QHash<QString, QString>& translated, QStringList& lacking,
                             QStringList& broken);
    static QString someKeys(QStringList keys);
    static void reportGaps(const QString& fileName, const QStringList& lacking,
                           const QStringList& broken);
    void useQtTexts(const QString& language);
    bool loadLanguageFile(const QString& fileName);
    void translateControl(QObject* control, const QString& windowName) const;
    bool hasEnglishThreadLocale() const;

    clsPropertiesXML& m_settings;
    QString m_langPath;
    QString m_language;
    std::unique_ptr<QTranslator> m_qtTexts;
    QString m_langFileName;
    QString m_loadError;
    Tables m_tables;
};
