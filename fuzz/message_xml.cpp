// Reads arbitrary bytes as the XML of an opened message, walks every slide,
// draw object and attribute the program reads, and saves it again.
#include "clsMessage.h"

#include <QFile>
#include <QTemporaryDir>
#include <cstddef>
#include <cstdint>

namespace {
void walk(const clsSlide& slide) {
    (void)slide.SlideFileName();
    (void)slide.Text();
    (void)slide.Duration();
    (void)slide.SoundDuration();
    for (const auto& object : slide.DrawObjects())
        (void)object->GetAllPproperties();
    (void)slide.DrawObjects().BackType();
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static QTemporaryDir folder;
    const QString work = folder.path() + "/";
    QFile file(work + "message.xml");
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return 0;
    file.write(reinterpret_cast<const char*>(data), qint64(size));
    file.close();

    clsMessage message;
    message.Initialize(work + "message.xml", "fuzz", work);
    (void)message.version();
    (void)message.MMSFileList();
    for (const auto& slide : message.Slides())
        walk(*slide);
    clsSlides& slides = message.Slides();
    if (slides.Count() > 0) {
        slides.AddBefore(1);
        message.DeleteSlide(slides.Count());
    }
    message.setSlideRenderer([](const clsSlide&, const QString&) { return true; });
    message.SaveMessage(work + "saved.xml");
    return 0;
}
