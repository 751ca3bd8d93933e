#pragma once

#include <QString>

class clsMMSManager;
class clsMessage;

// The form a message takes on its way to a phone: an installation package
// for a phone that installs them, a template for any other. The program's
// own message file is never sent: no phone reads it.
class PhoneFormat {
public:
    // Whether a phone that calls itself device gets the installation package:
    // when the device text lies within the devices the settings name
    // ("SisDownloadDeviceId", any case; a phone-suite model followed by its
    // number counts as the model). A phone that gives no name gets the template.
    static bool wantsPackage(const QString& device, const QString& packageDevices);
    static bool wantsPackage(const QString& device);

    // Exports the message in that form into folder (a private one, with a
    // trailing "/"). The made file's path, or "" with the manager's export
    // status saying why.
    static QString make(clsMMSManager& manager, clsMessage& message, bool package,
                        const QString& folder);
};
