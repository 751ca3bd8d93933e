#include "AudioBackend.h"

#include "DeferredAudioBackend.h"
#include "NullAudioBackend.h"
#include "QtAudioBackend.h"

std::unique_ptr<AudioBackend> AudioBackend::createDefault() {
    return std::make_unique<DeferredAudioBackend>([]() -> std::unique_ptr<AudioBackend> {
        if (qEnvironmentVariable("VELLUMO_AUDIO") != QLatin1String("null"))
            if (auto device = QtAudioBackend::createIfAvailable())
                return device;
        return std::make_unique<NullAudioBackend>();
    });
}
