#pragma once

#include <QStringList>

// vellumo-cli render FILE.mms SLIDE OUT [--size WxH]: one slide's picture,
// painted from its draw objects, in the format of OUT's extension.
class RenderCommand {
public:
    static int run(const QStringList& arguments);
    static QString usage();
};
