#include "MciOptions.h"

#include "MciError.h"

int MciOptions::parse(const QStringList& words, const QStringList& keywords) {
    for (qsizetype i = 0; i < words.size();) {
        QString keyword = words[i].toLower();
        ++i;
        if (keyword == QLatin1String("time") && i < words.size() &&
            words[i].compare(QLatin1String("format"), Qt::CaseInsensitive) == 0) {
            keyword = QStringLiteral("time format");
            ++i;
        }
        if (!keywords.contains(keyword))
            return MciError::UnrecognizedKeyword;
        if (m_values.contains(keyword))
            return MciError::DuplicateFlags;
        if (i >= words.size())
            return MciError::MissingParameter;
        add(keyword, words[i++]);
    }
    return MciError::None;
}

void MciOptions::add(const QString& keyword, const QString& value) {
    m_values.insert(keyword, value);
    m_order.append(keyword);
}

std::optional<std::int64_t> MciOptions::number(const QString& keyword, int* error) const {
    if (!has(keyword))
        return std::nullopt;
    bool ok = false;
    const qint64 value = m_values.value(keyword).toLongLong(&ok);
    if (!ok || value < 0 || value > 0xFFFFFFFFLL) {
        *error = MciError::BadInteger;
        return std::nullopt;
    }
    return value;
}
