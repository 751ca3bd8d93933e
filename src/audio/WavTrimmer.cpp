#include "WavTrimmer.h"

#include "AppGlobals.h"
#include "AtomicFile.h"
#include "WavFile.h"

#include <QFile>

namespace {
constexpr qint64 kCopyBlock = 1 << 20;
// What the size fields of a WAV file can count.
constexpr qint64 kLongestData = qint64(0xFFFFFFFF) - 1024;

} // namespace

QString WavTrimmer::trim(const QString& source, const QString& target, std::int64_t fromMs,
                         std::int64_t toMs) {
    QFile in(source);
    WavHeader header;
    const WavHeader::Error error =
        in.open(QIODevice::ReadOnly) ? header.read(in) : WavHeader::Error::Unreadable;
    if (error != WavHeader::Error::None)
        return WavHeader::errorText(error, &header);
    // A block of ADPCM holds many frames in a state of its own: no frame can be cut out of it.
    if (!header.hasWholeFrames())
        return WavHeader::errorText(WavHeader::Error::Compressed, &header);
    // The whole sound is every frame it has, also the ones after its last
    // whole millisecond, and also none at all.
    if (fromMs == -1 || toMs == -1)
        return copyFrames(in, header, 0, header.frames(), target);
    if (fromMs < 0 || fromMs >= toMs || toMs > header.lengthMs())
        return AppGlobals::text(
            "STR_TRIM_RANGE", "the range %0..%1 ms does not lie within the sound's %2 ms",
            {QString::number(fromMs), QString::number(toMs), QString::number(header.lengthMs())});
    const int rate = header.sampleRate();
    return copyFrames(in, header, PcmSound::msToFrame(fromMs, rate),
                      std::min(PcmSound::msToFrame(toMs, rate), header.frames()), target);
}

QString WavTrimmer::copyFrames(QFile& source, const WavHeader& header, std::int64_t first,
                               std::int64_t last, const QString& target) {
    const qint64 bytes = (last - first) * header.blockAlign();
    if (bytes > kLongestData)
        return AppGlobals::text("STR_WAV_TOO_LONG", "the sound is longer than a WAV file can hold");
    AtomicFile out(target);
    const bool written =
        out.open(QIODevice::WriteOnly) && out.write(WavFile::header(header, last - first)) >= 0 &&
        source.seek(header.dataOffset() + first * header.blockAlign()) &&
        copyBytes(source, out, bytes) && (bytes % 2 == 0 || out.write("", 1) == 1) && out.commit();
    if (written)
        return {};
    return AppGlobals::text("STR_FILE_NOT_WRITTEN", "%0 cannot be written: %1",
                            {target, out.errorString()});
}

bool WavTrimmer::copyBytes(QIODevice& from, QIODevice& to, qint64 count) {
    while (count > 0) {
        const QByteArray block = from.read(std::min(count, kCopyBlock));
        if (block.isEmpty())
            return false;
        if (to.write(block) != block.size())
            return false;
        count -= block.size();
    }
    return true;
}
