#pragma once

#include <QVector>

class PcmSound;

// A sound's outline for drawing: the loudest and quietest sample of each of
// a number of equal spans, on a scale of -1 to 1, channels mixed. Made once
// from the decoded samples, so a long sound draws as fast as a short one.
class WaveformPeaks {
public:
    struct Span {
        float low = 0;
        float high = 0;
    };

    WaveformPeaks() = default;
    WaveformPeaks(const PcmSound& sound, int spans);

    int count() const { return int(m_spans.size()); }
    const Span& at(int index) const { return m_spans[index]; }
    // The span covering a fraction (0..1) of the sound's length.
    const Span& atFraction(double fraction) const;
    bool isEmpty() const { return m_spans.isEmpty(); }

private:
    QVector<Span> m_spans;
};
