#include "ConvertImageCommand.h"

#include "AppError.h"
#include "CliOutput.h"
#include "ImageWriter.h"
#include "PictureFile.h"

#include <QFileInfo>
#include <optional>

namespace {
struct Request {
    QStringList files;
    QString format;
    ImageWriter::Settings settings;
};

std::optional<int> number(const QString& text, int low, int high) {
    bool ok = false;
    const int value = text.toInt(&ok);
    return ok && value >= low && value <= high ? std::optional<int>(value) : std::nullopt;
}

std::optional<QRgb> colour(const QString& text) {
    bool ok = false;
    const uint value = text.toUInt(&ok, 16);
    return ok && text.size() == 6 ? std::optional<QRgb>(qRgb(value >> 16, value >> 8, value))
                                  : std::nullopt;
}

// Fills the request from the command line; false on anything it does not know.
bool parse(const QStringList& arguments, Request& request) {
    for (int i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        const bool hasValue = i + 1 < arguments.size();
        if (argument == "--format" && hasValue) {
            request.format = arguments[++i];
        } else if (argument == "--quality" && hasValue) {
            const auto quality = number(arguments[++i], 0, 100);
            if (!quality)
                return false;
            request.settings.jpgQuality = *quality;
        } else if (argument == "--raster" && hasValue) {
            const auto raster = number(arguments[++i], 1, 3);
            if (!raster)
                return false;
            request.settings.wbmpRaster = static_cast<WbmpWriter::Raster>(*raster);
        } else if (argument == "--transparent" && hasValue) {
            request.settings.gif.transparentColour = colour(arguments[++i]);
            if (!request.settings.gif.transparentColour)
                return false;
        } else if (argument == "--no-dither") {
            request.settings.gif.errorDiffusion = false;
        } else if (argument == "--no-optimize") {
            request.settings.gif.optimizedPalette = false;
        } else if (argument == "--interlace") {
            request.settings.gif.interlaced = true;
        } else if (argument.startsWith("--")) {
            return false;
        } else {
            request.files.append(argument);
        }
    }
    return request.files.size() == 2;
}
} // namespace

int ConvertImageCommand::run(const QStringList& arguments) {
    Request request;
    if (!parse(arguments, request))
        return CliOutput::usageError(usage());
    const QString& output = request.files[1];
    const QString formatName =
        request.format.isEmpty() ? QFileInfo(output).suffix() : request.format;
    const int format = ImageWriter::formatIndex(formatName);
    if (format < 0)
        return CliOutput::error("convert-image: unknown picture format \"" + formatName +
                                "\" (bmp, jpg, gif, png or wbmp)");
    try {
        const QImage picture = PictureFile::load(request.files[0]);
        ImageWriter::write(picture, format, output, request.settings);
        return 0;
    } catch (const AppError& error) {
        return CliOutput::error("convert-image: " + error.description());
    }
}

QString ConvertImageCommand::usage() {
    return QStringLiteral(
        "vellumo-cli convert-image IN OUT [--format bmp|jpg|gif|png|wbmp] [--quality N]\n"
        "    [--no-dither] [--no-optimize] [--raster N] [--interlace] [--transparent RRGGBB]");
}
