#pragma once

#include <QString>
#include <QtGlobal>

// The numbers a binary MMS writes in place of names: the well-known media types
// of WSP and the charsets by their IANA MIBenum.
namespace WspNames {

// "image/jpeg" for 0x1E; "" for a number this program does not know.
QString mediaType(quint64 code);
// "utf-8" for 106, "utf-16" for 1015 ...; "" for a number this program does not know.
QString charset(quint64 mibEnum);
// Whether a part of this type holds parts of its own (multipart/mixed,
// application/vnd.wap.multipart.related ...).
bool isMultipart(const QString& mediaType);

} // namespace WspNames
