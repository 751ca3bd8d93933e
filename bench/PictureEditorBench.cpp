// Dragging an object across a 640x480 slide in the picture editor: the time
// from one mouse move to the repainted surface, against ImageMagick composing
// the same slide (background, two pictures, a text) into a bitmap once.
#include "AppGlobals.h"
#include "GuiBenchMain.h"
#include "MessageDocument.h"
#include "SettingsBootstrap.h"
#include "clsMMSManager.h"
#include "clsPropertiesXML.h"
#include "ctlPictureEditor.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPixmap>
#include <QProcess>
#include <QTemporaryDir>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <memory>

namespace {
const QSize kSlide(640, 480);

QString archived(const QString& name) {
    return QCoreApplication::applicationDirPath() + "/archive/" + name;
}

struct Fixture {
    QTemporaryDir home;
    clsMMSManager manager;
    std::unique_ptr<MessageDocument> document;
    std::unique_ptr<ctlPictureEditor> editor;

    Fixture() {
        qputenv("XDG_DATA_HOME", QFile::encodeName(home.path() + "/xdg"));
        AppGlobals::installSettings(SettingsBootstrap::openAndPrepare());
        manager.InitializeAt(home.path() + "/work", home.path() + "/archive", "message.xml");
        document = std::make_unique<MessageDocument>(manager);
        document->newMessage();
        editor = std::make_unique<ctlPictureEditor>(*document);
        editor->SetSurfaceSize(kSlide);
        editor->resize(kSlide + QSize(20, 20));
        editor->show();
        editor->AddBackgroundPicture(archived("Backgrounds/sky_gradient.jpg"));
        editor->AddImage(archived("Pictures/star.gif"), QPoint(400, 60));
        editor->AddText();
        editor->ChangeText("Happy birthday!");
        editor->SaveDrawObjects();
        editor->AddImage(archived("Pictures/star.gif"), QPoint(40, 200));
    }
    QPointF shown(QPoint slidePoint) const { return editor->pictureRect().topLeft() + slidePoint; }
};

Fixture& fixture() {
    static Fixture instance;
    return instance;
}

void send(QWidget* to, QEvent::Type type, QPointF at, Qt::MouseButtons buttons) {
    QMouseEvent event(type, at, to->mapToGlobal(at), Qt::LeftButton, buttons, Qt::NoModifier);
    QApplication::sendEvent(to, &event);
}

void BM_DragRepaintPerMove(benchmark::State& state) {
    Fixture& f = fixture();
    ctlPictureEditor* editor = f.editor.get();
    const QPoint grab(50, 210);
    QPixmap surface(editor->size());
    send(editor, QEvent::MouseButtonPress, f.shown(grab), Qt::LeftButton);
    const int startX = editor->shownObjects().last().rect.x();
    int step = 0;
    int farthest = 0;
    for (auto _ : state) {
        // Back and forth across the slide, one pixel per move event, each
        // followed by the whole surface painted as the screen would get it.
        const int x = (step++ % 1000);
        const QPoint to(grab.x() + (x < 500 ? x : 1000 - x), grab.y());
        send(editor, QEvent::MouseMove, f.shown(to), Qt::LeftButton);
        editor->render(&surface);
        farthest = std::max(farthest, editor->shownObjects().last().rect.x() - startX);
    }
    send(editor, QEvent::MouseButtonRelease, f.shown(grab), Qt::NoButton);
    // The picture really travelled: a drag that did nothing would be fast too.
    state.counters["moved_px"] = farthest;
    state.counters["repaints_per_s"] =
        benchmark::Counter(double(state.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_DragRepaintPerMove)->Unit(benchmark::kMillisecond)->Iterations(1000);

void BM_ImageMagickComposesTheSameSlide(benchmark::State& state) {
    QTemporaryDir out;
    const QStringList arguments{archived("Backgrounds/sky_gradient.jpg"),
                                "-resize",
                                "640x480!",
                                archived("Pictures/star.gif"),
                                "-geometry",
                                "+400+60",
                                "-composite",
                                archived("Pictures/star.gif"),
                                "-geometry",
                                "+40+200",
                                "-composite",
                                "-pointsize",
                                "13",
                                "-annotate",
                                "+280+240",
                                "Happy birthday!",
                                out.path() + "/slide.bmp"};
    for (auto _ : state)
        QProcess::execute("convert", arguments);
}
BENCHMARK(BM_ImageMagickComposesTheSameSlide)->Unit(benchmark::kMillisecond)->Iterations(20);
} // namespace

int main(int argc, char** argv) {
    return runGuiBenchmarks(argc, argv, [] { fixture().editor.reset(); });
}
