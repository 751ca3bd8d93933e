#include "AppError.h"

AppError::AppError(QString source, QString description, int number)
    : std::runtime_error(description.toStdString()), m_source(std::move(source)),
      m_description(std::move(description)), m_number(number) {}
