#include "MidiFile.h"
#include "AudioFixture.h"

namespace {
QByteArray chunk(const char* id, const QByteArray& body) {
    QByteArray out(id, 4);
    const auto n = quint32(body.size());
    out.append(char(n >> 24)).append(char(n >> 16)).append(char(n >> 8)).append(char(n));
    return out + body;
}

QByteArray smf(int format, const QList<QByteArray>& tracks, quint16 division) {
    QByteArray header;
    header.append(char(0)).append(char(format)).append(char(0)).append(char(tracks.size()));
    header.append(char(division >> 8)).append(char(division & 0xFF));
    QByteArray out = chunk("MThd", header);
    for (const QByteArray& track : tracks)
        out += chunk("MTrk", track);
    return out;
}

const QByteArray kEnd("\x00\xFF\x2F\x00", 4);
} // namespace

using MidiFileTest = AudioFixture;

TEST_F(MidiFileTest, TempoChangesInTheConductorTrackCount) {
    // 960 ticks at 120 bpm (1000 ms), then 1440 ticks at 240 bpm (750 ms);
    // the note track runs longer than the conductor track.
    MidiFile::Info info;
    QByteArray bytes;
    ASSERT_EQ(MidiFile::read(dataFile("tempo_change.mid"), info, &bytes), MidiFile::Error::None);
    EXPECT_EQ(info.format, 1);
    EXPECT_EQ(info.tracks, 2);
    EXPECT_EQ(info.endTick, 2400);
    EXPECT_EQ(info.lengthMs, 1750);
}

TEST_F(MidiFileTest, DefaultTempoSmpteTimingAndForeignChunks) {
    MidiFile::Info info;
    // One quarter note at the default 120 bpm with 96 ticks per quarter.
    const QByteArray quarter("\x00\x90\x40\x40\x60\x80\x40\x00", 8);
    ASSERT_EQ(MidiFile::parse(smf(0, {quarter + kEnd}, 96), info), MidiFile::Error::None);
    EXPECT_EQ(info.lengthMs, 500);

    // 25 frames per second, 40 ticks per frame: 1000 ticks a second.
    const QByteArray longNote("\x00\x90\x40\x40\x87\x68\x80\x40\x00", 9); // 1000 ticks
    ASSERT_EQ(MidiFile::parse(smf(0, {longNote + kEnd}, quint16(0xE728)), info),
              MidiFile::Error::None);
    EXPECT_EQ(info.lengthMs, 1000);

    QByteArray withForeign = smf(0, {quarter + kEnd}, 96);
    withForeign.insert(14, chunk("XFIH", "junk"));
    ASSERT_EQ(MidiFile::parse(withForeign, info), MidiFile::Error::None);
    EXPECT_EQ(info.lengthMs, 500);
}

TEST_F(MidiFileTest, DropFrameTimingAndRiffWrappedFilesMeasureRight) {
    MidiFile::Info info;
    // 29.97 frames per second (-29 in the header), 100 ticks per frame: 5994
    // ticks are 2000 ms, where reading -29 as 29 frames would give 2066 ms.
    const QByteArray note("\x00\x90\x40\x40\xAE\x6A\x80\x40\x00", 9); // 5994 ticks
    ASSERT_EQ(MidiFile::parse(smf(0, {note + kEnd}, quint16(0xE364)), info), MidiFile::Error::None);
    EXPECT_EQ(info.lengthMs, 2000);

    // A RIFF MIDI file (little-endian sizes) holding the standard file in its data chunk.
    const QByteArray standard = readBytes(dataFile("tempo_change.mid"));
    auto riffChunk = [](const char* id, const QByteArray& body) {
        QByteArray out(id, 4);
        const auto n = quint32(body.size());
        out.append(char(n)).append(char(n >> 8)).append(char(n >> 16)).append(char(n >> 24));
        return out + body + (body.size() % 2 ? QByteArray(1, '\0') : QByteArray());
    };
    const QByteArray rmid =
        riffChunk("RIFF", "RMID" + riffChunk("data", standard) + riffChunk("LIST", "INFOjunk"));
    writeBytes(path("song.rmi"), rmid);
    QByteArray played;
    ASSERT_EQ(MidiFile::read(path("song.rmi"), info, &played), MidiFile::Error::None);
    EXPECT_EQ(info.lengthMs, 1750);
    EXPECT_EQ(played, standard); // the synthesizer gets the standard file
    EXPECT_EQ(MidiFile::parse(rmid.left(20), info), MidiFile::Error::NotMidi);
}

TEST_F(MidiFileTest, BrokenFilesAreRefused) {
    MidiFile::Info info;
    const QByteArray good = readBytes(dataFile("tempo_change.mid"));
    ASSERT_FALSE(good.isEmpty());
    for (qsizetype cut : {qsizetype(4), qsizetype(13), qsizetype(20), qsizetype(30), qsizetype(60),
                          good.size() - 1})
        EXPECT_NE(MidiFile::parse(good.left(cut), info), MidiFile::Error::None) << cut;
    EXPECT_EQ(MidiFile::parse("RIFF....", info), MidiFile::Error::NotMidi);
    // Running status with nothing to run on.
    EXPECT_EQ(MidiFile::parse(smf(0, {QByteArray("\x00\x40\x40", 3) + kEnd}, 96), info),
              MidiFile::Error::Corrupt);
    // A delta time longer than four bytes.
    EXPECT_EQ(MidiFile::parse(smf(0, {QByteArray("\x81\x81\x81\x81\x01", 5) + kEnd}, 96), info),
              MidiFile::Error::Truncated);
    EXPECT_EQ(MidiFile::parse(smf(2, {kEnd}, 96), info), MidiFile::Error::Unsupported);
    EXPECT_EQ(MidiFile::parse(smf(0, {kEnd}, 0), info), MidiFile::Error::Corrupt);
}
