#include "MidiRenderer.h"

#include <QFileInfo>
#include <fluidsynth.h>
#include <memory>

namespace {
struct SettingsFree {
    void operator()(fluid_settings_t* s) const { delete_fluid_settings(s); }
};
struct SynthFree {
    void operator()(fluid_synth_t* s) const { delete_fluid_synth(s); }
};
struct PlayerFree {
    void operator()(fluid_player_t* p) const { delete_fluid_player(p); }
};

void silenceLibraryLog() {
    for (int level : {FLUID_PANIC, FLUID_ERR, FLUID_WARN, FLUID_INFO, FLUID_DBG})
        fluid_set_log_function(level, nullptr, nullptr);
}
} // namespace

QString MidiRenderer::soundFontPath() {
    return QStringLiteral("/usr/share/sounds/sf2/TimGM6mb.sf2");
}

bool MidiRenderer::render(const QByteArray& smf, std::int64_t lengthMs, PcmSound& sound,
                          QString& error) {
    silenceLibraryLog();
    if (!QFileInfo::exists(soundFontPath())) {
        error = QStringLiteral("the sound font %1 is not installed").arg(soundFontPath());
        return false;
    }
    std::unique_ptr<fluid_settings_t, SettingsFree> settings(new_fluid_settings());
    fluid_settings_setnum(settings.get(), "synth.sample-rate", kSampleRate);
    // Offline rendering: the player must follow the samples written, not the wall clock.
    fluid_settings_setstr(settings.get(), "player.timing-source", "sample");
    fluid_settings_setint(settings.get(), "synth.lock-memory", 0);
    std::unique_ptr<fluid_synth_t, SynthFree> synth(new_fluid_synth(settings.get()));
    if (!synth ||
        fluid_synth_sfload(synth.get(), soundFontPath().toUtf8().constData(), 1) == FLUID_FAILED) {
        error = QStringLiteral("the synthesizer cannot load its sound font");
        return false;
    }
    std::unique_ptr<fluid_player_t, PlayerFree> player(new_fluid_player(synth.get()));
    if (!player || fluid_player_add_mem(player.get(), smf.constData(), smf.size()) != FLUID_OK ||
        fluid_player_play(player.get()) != FLUID_OK) {
        error = QStringLiteral("the synthesizer cannot play the MIDI file");
        return false;
    }

    PcmFormat format{kSampleRate, 2, 16};
    const std::int64_t frames = std::min(lengthMs, kMaxRenderMs) * kSampleRate / 1000;
    QByteArray data(frames * format.bytesPerFrame(), '\0');
    auto* out = reinterpret_cast<std::int16_t*>(data.data());
    constexpr int kBlock = 1024;
    for (std::int64_t done = 0; done < frames;) {
        if (fluid_player_get_status(player.get()) != FLUID_PLAYER_PLAYING)
            break; // the rest stays silent
        const int block = static_cast<int>(std::min<std::int64_t>(kBlock, frames - done));
        std::int16_t* at = out + done * 2;
        fluid_synth_write_s16(synth.get(), block, at, 0, 2, at, 1, 2);
        done += block;
    }
    fluid_player_stop(player.get());
    sound = PcmSound(format, std::move(data));
    return true;
}
