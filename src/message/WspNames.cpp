#include "WspNames.h"

#include <QHash>
#include <array>

namespace {
// The assigned numbers 0x00 to 0x33, in order.
constexpr std::array<const char*, 0x34> kMediaTypes = {
    "*/*",
    "text/*",
    "text/html",
    "text/plain",
    "text/x-hdml",
    "text/x-ttml",
    "text/x-vcalendar",
    "text/x-vcard",
    "text/vnd.wap.wml",
    "text/vnd.wap.wmlscript",
    "text/vnd.wap.wta-event",
    "multipart/*",
    "multipart/mixed",
    "multipart/form-data",
    "multipart/byteranges",
    "multipart/alternative",
    "application/*",
    "application/java-vm",
    "application/x-www-form-urlencoded",
    "application/x-hdmlc",
    "application/vnd.wap.wmlc",
    "application/vnd.wap.wmlscriptc",
    "application/vnd.wap.wta-eventc",
    "application/vnd.wap.uaprof",
    "application/vnd.wap.wtls-ca-certificate",
    "application/vnd.wap.wtls-user-certificate",
    "application/x-x509-ca-cert",
    "application/x-x509-user-cert",
    "image/*",
    "image/gif",
    "image/jpeg",
    "image/tiff",
    "image/png",
    "image/vnd.wap.wbmp",
    "application/vnd.wap.multipart.*",
    "application/vnd.wap.multipart.mixed",
    "application/vnd.wap.multipart.form-data",
    "application/vnd.wap.multipart.byteranges",
    "application/vnd.wap.multipart.alternative",
    "application/xml",
    "text/xml",
    "application/vnd.wap.wbxml",
    "application/x-x968-cross-cert",
    "application/x-x968-ca-cert",
    "application/x-x968-user-cert",
    "text/vnd.wap.si",
    "application/vnd.wap.sic",
    "text/vnd.wap.sl",
    "application/vnd.wap.slc",
    "text/vnd.wap.co",
    "application/vnd.wap.coc",
    "application/vnd.wap.multipart.related",
};
constexpr quint64 kMmsMessage = 0x3E;
} // namespace

namespace WspNames {

QString mediaType(quint64 code) {
    if (code < kMediaTypes.size())
        return QString::fromLatin1(kMediaTypes[code]);
    return code == kMmsMessage ? QStringLiteral("application/vnd.wap.mms-message") : QString();
}

QString charset(quint64 mibEnum) {
    static const QHash<quint64, QString> names = {
        {3, "us-ascii"},        {4, "iso-8859-1"},      {5, "iso-8859-2"},
        {6, "iso-8859-3"},      {7, "iso-8859-4"},      {8, "iso-8859-5"},
        {9, "iso-8859-6"},      {10, "iso-8859-7"},     {11, "iso-8859-8"},
        {12, "iso-8859-9"},     {13, "iso-8859-10"},    {17, "shift_jis"},
        {18, "euc-jp"},         {38, "euc-kr"},         {39, "iso-2022-jp"},
        {106, "utf-8"},         {109, "iso-8859-13"},   {111, "iso-8859-15"},
        {113, "gbk"},           {114, "gb18030"},       {1000, "iso-10646-ucs-2"},
        {1013, "utf-16be"},     {1014, "utf-16le"},     {1015, "utf-16"},
        {2025, "gb2312"},       {2026, "big5"},         {2084, "koi8-r"},
        {2250, "windows-1250"}, {2251, "windows-1251"}, {2252, "windows-1252"},
    };
    return names.value(mibEnum);
}

bool isMultipart(const QString& mediaType) {
    return mediaType.startsWith(QLatin1String("multipart/"), Qt::CaseInsensitive) ||
           mediaType.startsWith(QLatin1String("application/vnd.wap.multipart."),
                                Qt::CaseInsensitive);
}

} // namespace WspNames
