#include "TransferLog.h"

Q_LOGGING_CATEGORY(lcTransfer, "vellumo.transfer")
