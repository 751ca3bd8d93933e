#pragma once

#include <QByteArray>
#include <QImage>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <functional>

struct ToolRun {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

// Runs an outside program (a reader we check our files with) and waits for it.
ToolRun runTool(const QString& program, const QStringList& arguments,
                const QProcessEnvironment& env = QProcessEnvironment::systemEnvironment());

// A picture of palette indices drawn from a fixed random sequence: noise
// defeats LZW, so it fills the string table quickly.
QImage noisePicture(int width, int height, int colours, unsigned seed);
// The colours of an indexed picture as red, green, blue bytes, top row first.
QByteArray rgbBytes(const QImage& picture);
// The photographic test picture from tests/data/picture.
QImage plasmaPicture();

QByteArray readAll(const QString& path);
// The description of the AppError the action throws; empty when it throws none.
QString appErrorOf(const std::function<void()>& action);
