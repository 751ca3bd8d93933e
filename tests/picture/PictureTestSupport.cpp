#include "PictureTestSupport.h"

#include "AppError.h"

#include <QFile>
#include <QProcess>
#include <random>

ToolRun runTool(const QString& program, const QStringList& arguments,
                const QProcessEnvironment& env) {
    QProcess process;
    process.setProcessEnvironment(env);
    process.start(program, arguments);
    ToolRun run;
    if (!process.waitForFinished(120000)) {
        run.err = process.errorString().toUtf8();
        return run;
    }
    run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.out = process.readAllStandardOutput();
    run.err = process.readAllStandardError();
    return run;
}

QImage noisePicture(int width, int height, int colours, unsigned seed) {
    QImage picture(width, height, QImage::Format_Indexed8);
    QList<QRgb> table;
    for (int i = 0; i < colours; ++i)
        table.append(qRgb(i * 37 % 256, 255 - i, i * 101 % 256));
    picture.setColorTable(table);
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> index(0, colours - 1);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            picture.scanLine(y)[x] = static_cast<uchar>(index(random));
    return picture;
}

QByteArray rgbBytes(const QImage& picture) {
    QByteArray bytes;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb colour = picture.pixel(x, y);
            bytes.append(static_cast<char>(qRed(colour)));
            bytes.append(static_cast<char>(qGreen(colour)));
            bytes.append(static_cast<char>(qBlue(colour)));
        }
    return bytes;
}

QImage plasmaPicture() {
    return QImage(QStringLiteral(VELLUMO_SOURCE_DIR) + "/tests/data/picture/plasma.png");
}

QByteArray readAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString appErrorOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const AppError& error) {
        return error.description();
    }
    return QString();
}
