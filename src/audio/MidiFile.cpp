#include "MidiFile.h"

#include <QFile>
#include <QtEndian>
#include <algorithm>
#include <map>

namespace {
constexpr std::uint32_t kDefaultTempo = 500000; // microseconds per quarter note

struct Cursor {
    const unsigned char* p;
    const unsigned char* end;

    bool has(std::int64_t n) const { return n >= 0 && end - p >= n; }
    bool varLength(std::uint32_t& value) {
        value = 0;
        for (int i = 0; i < 4; ++i) {
            if (!has(1))
                return false;
            const unsigned char b = *p++;
            value = (value << 7) | (b & 0x7F);
            if (!(b & 0x80))
                return true;
        }
        return false; // a quantity longer than four bytes is not allowed
    }
};

using TempoMap = std::map<std::int64_t, std::uint32_t>; // tick -> tempo from there on

// Data bytes that follow a channel status byte.
int channelDataBytes(unsigned char status) {
    const unsigned char kind = status & 0xF0;
    return kind == 0xC0 || kind == 0xD0 ? 1 : 2;
}

MidiFile::Error skipEvent(Cursor& c, unsigned char& runningStatus, TempoMap& tempos,
                          std::int64_t tick, bool& endOfTrack) {
    if (!c.has(1))
        return MidiFile::Error::Truncated;
    unsigned char status = *c.p;
    if (status & 0x80)
        ++c.p;
    else if (runningStatus == 0)
        return MidiFile::Error::Corrupt;
    else
        status = runningStatus;

    if (status == 0xFF) {
        if (!c.has(1))
            return MidiFile::Error::Truncated;
        const unsigned char type = *c.p++;
        std::uint32_t length = 0;
        if (!c.varLength(length) || !c.has(length))
            return MidiFile::Error::Truncated;
        if (type == 0x51 && length == 3)
            tempos[tick] = (std::uint32_t(c.p[0]) << 16) | (std::uint32_t(c.p[1]) << 8) | c.p[2];
        endOfTrack = type == 0x2F;
        c.p += length;
        return MidiFile::Error::None;
    }
    if (status == 0xF0 || status == 0xF7) {
        std::uint32_t length = 0;
        if (!c.varLength(length) || !c.has(length))
            return MidiFile::Error::Truncated;
        c.p += length;
        return MidiFile::Error::None;
    }
    if (status >= 0xF0)
        return MidiFile::Error::Corrupt; // system common and real-time messages do not belong in a
                                         // file
    runningStatus = status;
    const int data = channelDataBytes(status);
    if (!c.has(data))
        return MidiFile::Error::Truncated;
    c.p += data;
    return MidiFile::Error::None;
}

MidiFile::Error walkTrack(Cursor c, TempoMap& tempos, std::int64_t& endTick) {
    std::int64_t tick = 0;
    unsigned char runningStatus = 0;
    bool endOfTrack = false;
    while (!endOfTrack && c.has(1)) {
        std::uint32_t delta = 0;
        if (!c.varLength(delta))
            return MidiFile::Error::Truncated;
        tick += delta;
        if (const auto error = skipEvent(c, runningStatus, tempos, tick, endOfTrack);
            error != MidiFile::Error::None)
            return error;
    }
    endTick = std::max(endTick, tick);
    return MidiFile::Error::None;
}

// Milliseconds at the tick, summing tick x tempo over each tempo segment and
// dividing once at the end, so no rounding error builds up.
std::int64_t ticksToMs(const TempoMap& tempos, std::int64_t endTick, int division) {
    unsigned __int128 total = 0;
    std::int64_t tick = 0;
    std::uint32_t tempo = kDefaultTempo;
    for (const auto& [at, next] : tempos) {
        if (at >= endTick)
            break;
        total += static_cast<unsigned __int128>(at - tick) * tempo;
        tick = at;
        tempo = next;
    }
    total += static_cast<unsigned __int128>(endTick - tick) * tempo;
    const unsigned __int128 ms = total / (static_cast<unsigned __int128>(division) * 1000);
    return ms > INT64_MAX ? INT64_MAX : static_cast<std::int64_t>(ms);
}

// A RIFF MIDI file wraps a Standard MIDI File in its "data" chunk; the
// standard file is what is read and played. Other bytes are returned as they are.
QByteArray unwrapRiff(const QByteArray& bytes) {
    if (bytes.size() < 12 || !bytes.startsWith("RIFF") || bytes.mid(8, 4) != "RMID")
        return bytes;
    for (qsizetype pos = 12; pos + 8 <= bytes.size();) {
        const quint32 size = qFromLittleEndian<quint32>(bytes.constData() + pos + 4);
        if (bytes.mid(pos, 4) == "data")
            return bytes.mid(pos + 8, std::min<qint64>(size, bytes.size() - pos - 8));
        pos += 8 + qint64(size) + (size & 1);
    }
    return {};
}

// SMPTE frames per second, with 29 standing for the 29.97 of drop-frame
// timing, as hundredths.
std::int64_t smpteCentiFps(int fps) {
    return fps == 29 ? 2997 : fps * 100;
}
} // namespace

MidiFile::Error MidiFile::parse(const QByteArray& file, Info& info) {
    const QByteArray bytes = unwrapRiff(file);
    const auto* data = reinterpret_cast<const unsigned char*>(bytes.constData());
    if (bytes.size() < 14 || !bytes.startsWith("MThd"))
        return Error::NotMidi;
    const std::uint32_t headerLength = qFromBigEndian<quint32>(data + 4);
    if (headerLength < 6 || headerLength > static_cast<std::uint32_t>(bytes.size() - 8))
        return Error::Corrupt;
    info.format = qFromBigEndian<quint16>(data + 8);
    info.tracks = qFromBigEndian<quint16>(data + 10);
    const quint16 division = qFromBigEndian<quint16>(data + 12);
    if (info.format > 1)
        return Error::Unsupported;
    if (division == 0 || info.tracks == 0)
        return Error::Corrupt;

    TempoMap tempos;
    info.endTick = 0;
    Cursor c{data + 8 + headerLength, data + bytes.size()};
    for (int track = 0; track < info.tracks; ++track) {
        // Chunks other than tracks are skipped, as readers are told to.
        for (;;) {
            if (!c.has(8))
                return Error::Truncated;
            const std::uint32_t length = qFromBigEndian<quint32>(c.p + 4);
            const bool isTrack = std::equal(c.p, c.p + 4, "MTrk");
            c.p += 8;
            if (!c.has(length))
                return Error::Truncated;
            if (isTrack) {
                if (const auto error = walkTrack({c.p, c.p + length}, tempos, info.endTick);
                    error != Error::None)
                    return error;
            }
            c.p += length;
            if (isTrack)
                break;
        }
    }
    if (division & 0x8000) {
        // SMPTE timing: frames per second and ticks per frame; tempo does not apply.
        const int fps = -static_cast<signed char>(division >> 8);
        const int ticksPerFrame = division & 0xFF;
        if (fps <= 0 || ticksPerFrame == 0)
            return Error::Corrupt;
        const auto ms =
            static_cast<__int128>(info.endTick) * 100000 / (smpteCentiFps(fps) * ticksPerFrame);
        info.lengthMs = ms > INT64_MAX ? INT64_MAX : static_cast<std::int64_t>(ms);
    } else {
        info.lengthMs = ticksToMs(tempos, info.endTick, division);
    }
    return Error::None;
}

MidiFile::Error MidiFile::read(const QString& path, Info& info, QByteArray* bytes) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return Error::Unreadable;
    const QByteArray contents = file.readAll();
    const Error error = parse(contents, info);
    if (bytes)
        *bytes = unwrapRiff(contents);
    return error;
}

QString MidiFile::errorText(Error error) {
    switch (error) {
    case Error::None:
        return {};
    case Error::Unreadable:
        return QStringLiteral("the file cannot be read");
    case Error::NotMidi:
        return QStringLiteral("the file is not a Standard MIDI File");
    case Error::Truncated:
        return QStringLiteral("the MIDI file ends in the middle of its data");
    case Error::Corrupt:
        return QStringLiteral("the MIDI file holds an invalid event or header");
    case Error::Unsupported:
        return QStringLiteral("only MIDI files of format 0 and 1 are supported");
    }
    return {};
}
