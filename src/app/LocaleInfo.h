#pragma once

#include <QLocale>
#include <QString>
#include <cstdint>
#include <optional>

// Locale facts in the terms the settings and language files use: Windows
// language ids (LCIDs) and ANSI code pages. Here the locale comes from the
// environment; the tables translate it.
class LocaleInfo {
public:
    // The locale the program runs in; tests may replace it.
    static QLocale systemLocale();
    static void setSystemLocale(const std::optional<QLocale>& locale);

    // The LCID of a locale: exact language and territory, else the language's
    // main territory, else US English (0x0409).
    static std::uint32_t lcidOf(const QLocale& locale);
    static std::uint32_t userLcid() { return lcidOf(systemLocale()); }
    // Only the low 16 bits of an LCID are its language id.
    static std::uint16_t systemLanguageId() { return userLcid() & 0xFFFF; }
    // The default ANSI code page of an LCID; 1252 when it is not in the table.
    static int codePageOf(std::uint32_t lcid);
    // True for the English LCIDs (1033, 2057, ... 13321).
    static bool isEnglish(std::uint32_t lcid);
    // The locale's decimal separator as text (item 14), at most 3 characters.
    static QString decimalSeparator(const QLocale& locale);
    // "0407" for 0x0407: four upper-case hexadecimal digits.
    static QString languageIdHex(std::uint32_t id);
};
