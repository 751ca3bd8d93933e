#pragma once

// The user's settings and language, opened for one command as the program
// opens them, so a command saves as the window saves and speaks the user's
// language; given back when the command ends.
class CliSettings {
public:
    // Throws AppError when the settings cannot be opened.
    CliSettings();
    ~CliSettings();
    CliSettings(const CliSettings&) = delete;
    CliSettings& operator=(const CliSettings&) = delete;
};
