#pragma once

#include <QHash>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <optional>

// The keyword/value words that follow a device name in a media command, such
// as "from 1 to 500" or "time format ms channels 1". Keywords are compared in
// lower case; "time format" counts as one keyword.
class MciOptions {
public:
    // Reads the words, accepting only the given keywords; returns an error number.
    int parse(const QStringList& words, const QStringList& keywords);

    // One keyword and its value, read by the caller itself.
    void add(const QString& keyword, const QString& value);

    bool has(const QString& keyword) const { return m_values.contains(keyword); }
    QString value(const QString& keyword) const { return m_values.value(keyword); }
    // A whole number of 32 bits without sign, or an error number in *error
    // when the value is not one.
    std::optional<std::int64_t> number(const QString& keyword, int* error) const;
    QStringList keywords() const { return m_order; }

private:
    QHash<QString, QString> m_values;
    QStringList m_order;
};
