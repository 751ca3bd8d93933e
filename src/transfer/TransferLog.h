#pragma once

#include <QLoggingCategory>

// Why a transfer or a program start failed goes to this category, so a user's
// log tells more than the one-line status text.
Q_DECLARE_LOGGING_CATEGORY(lcTransfer)
