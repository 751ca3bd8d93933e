#pragma once

#include <QString>
#include <map>

// Every entry under folder, hidden ones too: its mode, size, time and content
// hash, so a test can tell that nothing there changed, appeared or went.
std::map<QString, QString> folderFingerprint(const QString& folder);
