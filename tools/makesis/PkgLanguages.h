#pragma once

#include <QString>
#include <optional>

// The numeric language code for a two-letter language word of a languages
// line (EN = 1, FR = 2, ...); nothing for an unknown word.
std::optional<quint16> pkgLanguageCode(const QString& word);
