// The .pkg reader and the pieces of the package layout, in process.
#include "QtPrinters.h"

#include "Crc16.h"
#include "PkgParser.h"
#include "SisWriter.h"
#include "SourceLoader.h"

#include <QtEndian>
#include <gtest/gtest.h>

namespace {
PkgDefinition parsed(const QByteArray& text) {
    PkgParser parser;
    EXPECT_TRUE(parser.parse(text))
        << parser.error().line << ": " << parser.error().message.toStdString();
    return parser.definition();
}

PkgError failure(const QByteArray& text) {
    PkgParser parser;
    EXPECT_FALSE(parser.parse(text)) << text.constData();
    return parser.error();
}

const QByteArray header = "#{\"T\"},(0x10E7B29D),1,0,0\n";
} // namespace

TEST(PkgParserTest, LineEndsSpacingAndCommentsDoNotChangeTheDefinition) {
    const PkgDefinition tight = parsed("#{\"T\"},(0x10E7B29D),1,2,3,TYPE=SU\n"
                                       "(0x10C4D6A3),1,0,0,{\"P\"}\n"
                                       "\"a\"-\"!:\\a\"\n");
    const PkgDefinition loose =
        parsed("; made by hand\r\n"
               "\r\n"
               "  # { \"T\" } , ( 0x10e7b29d ) , 1 , 2 , 0x3 , type = sisupgrade\r\n"
               "\t(0x10C4D6A3), 1, 0, 0, {\"P\"}   ; platform\r\n"
               "\"a\" - \"!:\\a\" , FF\r\n");
    for (const PkgDefinition* definition : {&tight, &loose}) {
        EXPECT_EQ(definition->languages, QList<quint16>({1})) << "English when none are listed";
        EXPECT_EQ(definition->names, QStringList({"T"}));
        EXPECT_EQ(definition->uid, 0x10E7B29Du);
        EXPECT_EQ(definition->version.minor, 2);
        EXPECT_EQ(definition->version.variant, 3u);
        EXPECT_EQ(definition->type, SisType::Upgrade);
        ASSERT_EQ(definition->requisites.size(), 1);
        EXPECT_EQ(definition->requisites[0].uid, 0x10C4D6A3u);
        ASSERT_EQ(definition->files.size(), 1);
        EXPECT_EQ(definition->files[0].sources, QStringList({"a"}));
        EXPECT_EQ(definition->files[0].destination, QStringLiteral("!:\\a"));
    }
    EXPECT_EQ(loose.files[0].line, 5);
}

TEST(PkgParserTest, TextIsUtf8Latin1OrUtf16) {
    const QString expected = QString::fromUtf8("Grüße");
    EXPECT_EQ(parsed("#{\"Gr\xC3\xBC\xC3\x9F"
                     "e\"},(1),1,0,0")
                  .names[0],
              expected);
    EXPECT_EQ(parsed("#{\"Gr\xFC\xDF"
                     "e\"},(1),1,0,0")
                  .names[0],
              expected);
    EXPECT_EQ(parsed("\xEF\xBB\xBF#{\"Gr\xC3\xBC\xC3\x9F"
                     "e\"},(1),1,0,0")
                  .names[0],
              expected);
    const QString line = QStringLiteral("#{\"") + expected + QStringLiteral("\"},(1),1,0,0\r\n");
    QByteArray utf16("\xFF\xFE");
    for (const QChar c : line) {
        utf16.append(char(c.unicode() & 0xFF));
        utf16.append(char(c.unicode() >> 8));
    }
    EXPECT_EQ(parsed(utf16).names[0], expected);
}

TEST(PkgParserTest, TypeAndOptionWords) {
    const std::pair<const char*, SisType> types[] = {
        {"SA", SisType::Application}, {"SISAPP", SisType::Application},
        {"SY", SisType::System},      {"SISSYSTEM", SisType::System},
        {"SO", SisType::Option},      {"SISOPTION", SisType::Option},
        {"SC", SisType::Config},      {"SISCONFIG", SisType::Config},
        {"SP", SisType::Patch},       {"SISPATCH", SisType::Patch},
        {"SU", SisType::Upgrade},     {"SISUPGRADE", SisType::Upgrade},
    };
    for (const auto& [word, type] : types)
        EXPECT_EQ(parsed("#{\"T\"},(1),1,0,0,TYPE=" + QByteArray(word)).type, type) << word;
    EXPECT_EQ(parsed("#{\"T\"},(1),1,0,0,SHUTDOWNAPPS,NOCOMPRESS,UNICODE").options, 0x0019);
    EXPECT_EQ(parsed("#{\"T\"},(1),1,0,0,SH,NC").options, 0x0018);
    EXPECT_EQ(parsed("#{\"T\"},(1),1,0,0").options, 0);
    EXPECT_EQ(failure("#{\"T\"},(1),1,0,0,TYPE=").message,
              QStringLiteral("expected a package type at the end of the line"));
    EXPECT_EQ(failure("#{\"T\"},(1),70000,0,0").message,
              QStringLiteral("70000 is too large for the major version"));
}

TEST(PkgParserTest, FileTypesAndTheirOptions) {
    const PkgDefinition definition =
        parsed(header + "\"a\"-\"!:\\a\",FF\n"
                        "\"b.txt\"-\"\",FT,TS\n"
                        "\"c.exe\"-\"!:\\c.exe\",FR,RB\n"
                        "\"\"-\"!:\\later.log\",FN\n"
                        "\"d.txt\"-\"!:\\d.txt\",FM,RI,\"text/plain\"\n");
    const auto& files = definition.files;
    ASSERT_EQ(files.size(), 5);
    EXPECT_EQ(files[0].type, SisFileType::Standard);
    EXPECT_EQ(files[1].type, SisFileType::Text);
    EXPECT_EQ(files[1].details, 1u);
    EXPECT_EQ(files[2].type, SisFileType::Run);
    EXPECT_EQ(files[2].details, 2u);
    EXPECT_EQ(files[3].type, SisFileType::Null);
    EXPECT_EQ(files[4].type, SisFileType::Mime);
    EXPECT_EQ(files[4].mimeType, QStringLiteral("text/plain"));

    EXPECT_EQ(failure(header + "\"a\"-\"!:\\a\",FF,TA").message,
              QStringLiteral("file option TA does not go with file type FF"));
    EXPECT_EQ(failure(header + "\"\"-\"!:\\a\"").message,
              QStringLiteral("the source file name is empty"));
    EXPECT_EQ(failure(header + "\"a\"-\"\"").message, QStringLiteral("the destination is empty"));
    EXPECT_EQ(failure(header + "\"a\"\"!:\\a\"").line, 2);
}

TEST(PkgParserTest, LanguagesComeFirstAndEveryNameListMatchesThem) {
    const PkgDefinition definition =
        parsed("&en,FR,GE\n#{\"E\",\"F\",\"G\"},(1),1,0,0\n(2),1,0,0,{\"e\" \"f\" \"g\"}\n");
    EXPECT_EQ(definition.languages, QList<quint16>({1, 2, 3}));
    EXPECT_EQ(definition.requisites[0].names, QStringList({"e", "f", "g"}));

    EXPECT_EQ(failure("&EN,EN\n").message, QStringLiteral("language EN is listed twice"));
    const PkgError late = failure(header + "&EN\n");
    EXPECT_EQ(late.line, 2);
    EXPECT_TRUE(late.message.contains(QStringLiteral("before the header")));
    EXPECT_EQ(failure("&EN,FR\n#{\"E\",\"F\"},(1),1,0,0\n(2),1,0,0,{\"e\"}\n").message,
              QStringLiteral("the requisite name has 1 entries for 2 languages"));
    EXPECT_EQ(failure(header + header).message, QStringLiteral("a second header line"));
}

TEST(PkgParserTest, SourcesAreFoundFromThePkgFolder) {
    const SourceLoader loader(QStringLiteral("/home/u/out"));
    EXPECT_EQ(loader.localPath(QStringLiteral("F\\a.jpg")), QStringLiteral("/home/u/out/F/a.jpg"));
    EXPECT_EQ(loader.localPath(QStringLiteral("..\\F\\a.jpg")), QStringLiteral("/home/u/F/a.jpg"));
    EXPECT_EQ(loader.localPath(QStringLiteral("\\tmp\\F\\a.jpg")), QStringLiteral("/tmp/F/a.jpg"));
    EXPECT_EQ(loader.localPath(QStringLiteral("/tmp/a.jpg")), QStringLiteral("/tmp/a.jpg"));
    EXPECT_TRUE(loader.localPath(QStringLiteral("C:\\src\\a.jpg")).isEmpty());
    EXPECT_TRUE(loader.localPath(QStringLiteral("d:/src/a.jpg")).isEmpty());
}

TEST(PkgParserTest, ChecksumsFollowTheXmodemCrc) {
    EXPECT_EQ(crc16("123456789"), 0x31C3) << "the published check value";
    EXPECT_EQ(crc16(""), 0);
    EXPECT_EQ(crc16("56789", crc16("1234")), 0x31C3) << "continued over two pieces";

    QByteArray uids(12, '\0');
    qToLittleEndian<quint32>(0x10E7B29D, uids.data());
    qToLittleEndian<quint32>(0x10003A12, uids.data() + 4);
    qToLittleEndian<quint32>(0x10000419, uids.data() + 8);
    QByteArray even;
    QByteArray odd;
    for (int i = 0; i < 12; i += 2) {
        even.append(uids.at(i));
        odd.append(uids.at(i + 1));
    }
    EXPECT_EQ(SisWriter::uid4(uids), quint32(crc16(even)) | (quint32(crc16(odd)) << 16));
}

TEST(PkgParserTest, TheLayoutHoldsFilesWithoutDataAndEmptyFiles) {
    PkgDefinition definition = parsed(header + "\"\"-\"!:\\later.log\",FN\n\"e\"-\"!:\\e\"\n");
    definition.files[1].contents = {QByteArray()};
    SisWriter writer;
    QByteArray package;
    ASSERT_TRUE(writer.build(definition, package));
    // header 100, one language 2, two file records of 48, component name 8
    const qsizetype records = 100 + 2 + 2 * 48 + 8;
    const qsizetype strings = 2 * (QStringLiteral("!:\\later.log").size() +
                                   QStringLiteral("e!:\\e").size() + QStringLiteral("T").size());
    const qsizetype emptyZlibStream = 8;
    EXPECT_EQ(package.size(), records + strings + emptyZlibStream);
    EXPECT_EQ(qFromLittleEndian<quint32>(package.constData() + 0x50), 0u) << "nothing to install";
}
