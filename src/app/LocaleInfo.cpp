#include "LocaleInfo.h"

#include <array>
#include <optional>

namespace {
struct LocaleRow {
    const char* name; // language_TERRITORY as QLocale names it
    std::uint16_t lcid;
    int codePage;
};

// The first row of a language is its main territory.
constexpr std::array<LocaleRow, 58> kLocales{{
    {"en_US", 0x0409, 1252}, {"en_GB", 0x0809, 1252}, {"en_AU", 0x0C09, 1252},
    {"en_CA", 0x1009, 1252}, {"en_NZ", 0x1409, 1252}, {"en_IE", 0x1809, 1252},
    {"en_ZA", 0x1C09, 1252}, {"en_JM", 0x2009, 1252}, {"en_BZ", 0x2809, 1252},
    {"en_TT", 0x2C09, 1252}, {"en_ZW", 0x3009, 1252}, {"en_PH", 0x3409, 1252},
    {"de_DE", 0x0407, 1252}, {"de_CH", 0x0807, 1252}, {"de_AT", 0x0C07, 1252},
    {"de_LU", 0x1007, 1252}, {"fr_FR", 0x040C, 1252}, {"fr_BE", 0x080C, 1252},
    {"fr_CA", 0x0C0C, 1252}, {"fr_CH", 0x100C, 1252}, {"it_IT", 0x0410, 1252},
    {"it_CH", 0x0810, 1252}, {"es_ES", 0x0C0A, 1252}, {"es_MX", 0x080A, 1252},
    {"es_AR", 0x2C0A, 1252}, {"nl_NL", 0x0413, 1252}, {"nl_BE", 0x0813, 1252},
    {"sv_SE", 0x041D, 1252}, {"sv_FI", 0x081D, 1252}, {"da_DK", 0x0406, 1252},
    {"nb_NO", 0x0414, 1252}, {"nn_NO", 0x0814, 1252}, {"fi_FI", 0x040B, 1252},
    {"is_IS", 0x040F, 1252}, {"pt_BR", 0x0416, 1252}, {"pt_PT", 0x0816, 1252},
    {"pl_PL", 0x0415, 1250}, {"cs_CZ", 0x0405, 1250}, {"sk_SK", 0x041B, 1250},
    {"hu_HU", 0x040E, 1250}, {"sl_SI", 0x0424, 1250}, {"hr_HR", 0x041A, 1250},
    {"ro_RO", 0x0418, 1250}, {"ru_RU", 0x0419, 1251}, {"uk_UA", 0x0422, 1251},
    {"bg_BG", 0x0402, 1251}, {"el_GR", 0x0408, 1253}, {"tr_TR", 0x041F, 1254},
    {"he_IL", 0x040D, 1255}, {"ar_SA", 0x0401, 1256}, {"et_EE", 0x0425, 1257},
    {"lv_LV", 0x0426, 1257}, {"lt_LT", 0x0427, 1257}, {"ja_JP", 0x0411, 932},
    {"ko_KR", 0x0412, 949},  {"zh_CN", 0x0804, 936},  {"zh_TW", 0x0404, 950},
    {"th_TH", 0x041E, 874},
}};

constexpr std::uint16_t kUsEnglish = 0x0409;

std::optional<QLocale>& localeOverride() {
    static std::optional<QLocale> locale;
    return locale;
}

const LocaleRow* findRow(std::uint32_t lcid) {
    for (const LocaleRow& row : kLocales)
        if (row.lcid == lcid)
            return &row;
    return nullptr;
}
} // namespace

QLocale LocaleInfo::systemLocale() {
    return localeOverride().value_or(QLocale::system());
}

void LocaleInfo::setSystemLocale(const std::optional<QLocale>& locale) {
    localeOverride() = locale;
}

std::uint32_t LocaleInfo::lcidOf(const QLocale& locale) {
    const QString name = locale.name();
    const QString language = name.section(QLatin1Char('_'), 0, 0);
    for (const LocaleRow& row : kLocales)
        if (name == QLatin1String(row.name))
            return row.lcid;
    for (const LocaleRow& row : kLocales)
        if (QLatin1String(row.name).startsWith(language + QLatin1Char('_')))
            return row.lcid;
    return kUsEnglish;
}

int LocaleInfo::codePageOf(std::uint32_t lcid) {
    const LocaleRow* row = findRow(lcid & 0xFFFF);
    return row ? row->codePage : 1252;
}

bool LocaleInfo::isEnglish(std::uint32_t lcid) {
    // Every English sublanguage: primary language 9, sublanguages 1 to 13.
    return (lcid & 0x3FF) == 0x09 && (lcid >> 10) >= 1 && (lcid >> 10) <= 13 && lcid <= 0xFFFF;
}

QString LocaleInfo::decimalSeparator(const QLocale& locale) {
    QString separator = locale.decimalPoint();
    const qsizetype nul = separator.indexOf(QChar(0));
    if (nul >= 0)
        separator.truncate(nul);
    return separator.left(3);
}

QString LocaleInfo::languageIdHex(std::uint32_t id) {
    return QString::number(id, 16).toUpper().rightJustified(4, QLatin1Char('0'));
}
