#include "PkgLanguages.h"

#include <array>

namespace {
struct LanguageWord {
    const char* word;
    quint16 code;
};

// The words in use on the phones these packages are made for; codes as the
// installer numbers its languages.
constexpr std::array<LanguageWord, 33> languageWords{{
    {"EN", 1},  {"FR", 2},  {"GE", 3},  {"SP", 4},  {"IT", 5},  {"SW", 6},  {"DA", 7},
    {"NO", 8},  {"FI", 9},  {"AM", 10}, {"SF", 11}, {"SG", 12}, {"PO", 13}, {"TU", 14},
    {"IC", 15}, {"RU", 16}, {"HU", 17}, {"DU", 18}, {"BL", 19}, {"AU", 20}, {"BF", 21},
    {"AS", 22}, {"NZ", 23}, {"IF", 24}, {"CS", 25}, {"SK", 26}, {"PL", 27}, {"SL", 28},
    {"TC", 29}, {"HK", 30}, {"ZH", 31}, {"JA", 32}, {"TH", 33},
}};
} // namespace

std::optional<quint16> pkgLanguageCode(const QString& word) {
    for (const LanguageWord& entry : languageWords)
        if (word.compare(QLatin1String(entry.word), Qt::CaseInsensitive) == 0)
            return entry.code;
    return std::nullopt;
}
