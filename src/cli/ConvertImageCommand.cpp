#include "ConvertImageCommand.h"

#include "AppError.h"
#include "AppGlobals.h"
#include "CliOutput.h"
#include "CliSettings.h"
#include "ImageWriter.h"
#include "PictureFile.h"

#include <QFileInfo>
#include <functional>
#include <map>
#include <optional>

namespace {
using Settings = ImageWriter::Settings;
// Sets an option's value into the settings; the text for the user when the
// value is not one the option takes.
using Apply = std::function<std::optional<QString>(const QString& value, Settings& settings)>;

struct Option {
    int format; // the only format the option means anything for
    bool takesValue;
    Apply apply;
};

std::optional<QString> number(const char* option, const QString& text, int low, int high,
                              int& value) {
    bool ok = false;
    value = text.toInt(&ok);
    if (ok && value >= low && value <= high)
        return std::nullopt;
    return AppGlobals::text("ERR_CLI_OPTION_RANGE", "%0: %1 is not between %2 and %3",
                            {option, text, QString::number(low), QString::number(high)});
}

std::optional<QString> colour(const QString& text, Settings& settings) {
    bool ok = false;
    const uint value = text.toUInt(&ok, 16);
    if (!ok || text.size() != 6)
        return AppGlobals::text("ERR_CLI_OPTION_COLOUR", "%0: %1 is not a colour as RRGGBB",
                                {"--transparent", text});
    settings.gif.transparentColour = qRgb(value >> 16, value >> 8, value);
    return std::nullopt;
}

Option flag(int format, const std::function<void(Settings&)>& set) {
    return {format, false, [set](const QString&, Settings& settings) {
                set(settings);
                return std::optional<QString>();
            }};
}

const std::map<QString, Option>& options() {
    using W = ImageWriter;
    static const std::map<QString, Option> table{
        {"--quality",
         {W::Jpeg, true,
          [](const QString& value, Settings& settings) {
              return number("--quality", value, 1, 100, settings.jpgQuality);
          }}},
        {"--raster",
         {W::Wbmp, true,
          [](const QString& value, Settings& settings) {
              int raster = 0;
              const auto error = number("--raster", value, 1, 3, raster);
              settings.wbmpRaster = static_cast<WbmpWriter::Raster>(raster);
              return error;
          }}},
        {"--transparent", {W::Gif, true, colour}},
        {"--dither", flag(W::Gif, [](Settings& s) { s.gif.errorDiffusion = true; })},
        {"--no-dither", flag(W::Gif, [](Settings& s) { s.gif.errorDiffusion = false; })},
        {"--optimize", flag(W::Gif, [](Settings& s) { s.gif.optimizedPalette = true; })},
        {"--no-optimize", flag(W::Gif, [](Settings& s) { s.gif.optimizedPalette = false; })},
        {"--interlace", flag(W::Gif, [](Settings& s) { s.gif.interlaced = true; })},
    };
    return table;
}

struct Request {
    QStringList files;
    QString format;
    QStringList given; // the encoder options, in order
    Settings settings;
};

// Fills the request from the command line over the settings' defaults; the
// text for the user on the first option it cannot take.
std::optional<QString> parse(const QStringList& arguments, Request& request) {
    for (int i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        const bool hasValue = i + 1 < arguments.size();
        const auto option = options().find(argument);
        if (argument == "--format" && hasValue) {
            request.format = arguments[++i];
        } else if (option != options().end()) {
            if (option->second.takesValue && !hasValue)
                return AppGlobals::text("ERR_CLI_OPTION_NO_VALUE", "%0 needs a value", {argument});
            request.given << argument;
            const QString value = option->second.takesValue ? arguments[++i] : QString();
            if (const auto error = option->second.apply(value, request.settings))
                return error;
        } else if (argument.startsWith("--")) {
            return AppGlobals::text("ERR_CLI_OPTION_UNKNOWN", "%0 is not an option of %1",
                                    {argument, "convert-image"});
        } else {
            request.files.append(argument);
        }
    }
    return std::nullopt;
}

// The first option given that the format does not use, which the user
// would otherwise believe was applied.
std::optional<QString> misplaced(const Request& request, int format, const QString& formatName) {
    for (const QString& given : request.given)
        if (options().at(given).format != format)
            return AppGlobals::text("ERR_CLI_OPTION_FORMAT", "%0 does not apply to %1 pictures",
                                    {given, formatName});
    return std::nullopt;
}
} // namespace

int ConvertImageCommand::run(const QStringList& arguments) {
    try {
        // Options missing from the command line are saved as the window saves.
        const CliSettings settings;
        Request request{{}, {}, {}, ImageWriter::currentSettings()};
        if (const auto error = parse(arguments, request))
            return CliOutput::optionError("convert-image", *error);
        if (request.files.size() != 2)
            return CliOutput::usageError(usage());
        const QString& output = request.files[1];
        const QString formatName =
            request.format.isEmpty() ? QFileInfo(output).suffix() : request.format;
        const int format = ImageWriter::formatIndex(formatName);
        if (format < 0)
            return CliOutput::error(
                "convert-image: " +
                AppGlobals::text("ERR_CLI_PICTURE_FORMAT",
                                 "unknown picture format \"%0\" (bmp, jpg, gif, png or wbmp)",
                                 {formatName}));
        if (const auto error = misplaced(request, format, formatName))
            return CliOutput::optionError("convert-image", *error);
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
        "    [--[no-]dither] [--[no-]optimize] [--raster N] [--interlace] [--transparent RRGGBB]\n"
        "    (options left out are taken from the settings, as the window saves pictures)");
}
