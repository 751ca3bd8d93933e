#pragma once

#include <QString>
#include <stdexcept>

// A failure that carries where it happened and a text for the user, the way the
// program reports errors: a number, a source and a description.
class AppError : public std::runtime_error {
public:
    AppError(QString source, QString description, int number = 0);

    const QString& source() const { return m_source; }
    const QString& description() const { return m_description; }
    int number() const { return m_number; }

private:
    QString m_source;
    QString m_description;
    int m_number;
};
