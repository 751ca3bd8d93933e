#pragma once

#include <QString>
#include <cstdint>

// Number patterns in the style the program has always shown numbers: "#0.0",
// "######.00", "0.000s", "000". A '0' is a digit that is always written, a '#'
// one written only when significant, the first '.' is the decimal point and
// every other character is copied as it stands.
class VbFormat {
public:
    // Uses the decimal separator stored at start-up.
    static QString format(double value, const QString& pattern);
    static QString format(double value, const QString& pattern, const QString& decimalSeparator);
    // A length in milliseconds as the program shows lengths: seconds in the
    // pattern, then "s" ("2.5s").
    static QString seconds(std::int64_t milliseconds,
                           const QString& pattern = QStringLiteral("#0.0"));

    // Text to a whole number the way integer conversion of text works: the
    // value is rounded half to even ("2.5" is 2, "3.5" is 4). False in *ok for
    // text that is not a number.
    static std::int64_t toInteger(const QString& text, bool* ok = nullptr);

    // The separator used by format(); start-up stores the locale's.
    static void setDecimalSeparator(const QString& separator);
    static QString decimalSeparator();
};
