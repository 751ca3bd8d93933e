#include "MediaFrame.h"

#include "AppError.h"
#include "AppGlobals.h"
#include "FfmpegDecoder.h"
#include "PictureFile.h"
#include "clsDrawObjects.h"

bool MediaFrame::isVideo(const QString& path) {
    return clsDrawObjects::KindOfFile(path) == clsDrawObjects::BackAnimated &&
           !path.endsWith(QLatin1String(".gif"), Qt::CaseInsensitive);
}

QImage MediaFrame::load(const QString& path, QSize drawnSize) {
    if (!isVideo(path))
        return PictureFile::load(path, drawnSize);
    QImage frame;
    QString error;
    if (!FfmpegDecoder::firstVideoFrame(path, frame, error))
        throw AppError(PictureFile::ErrorSource,
                       AppGlobals::text("ERR_PICTURE_UNDECODABLE",
                                        "The picture %0 cannot be decoded: the file is damaged or "
                                        "not a picture the program reads.",
                                        {path}));
    if (!drawnSize.isEmpty() &&
        (frame.width() > drawnSize.width() || frame.height() > drawnSize.height()))
        frame = frame.scaled(drawnSize, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    return frame;
}
