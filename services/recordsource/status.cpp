// services/recordsource/status.cpp: text forms of Status for logs and error lines.
#include "services/recordsource/status.h"

namespace plx {

QString codeName(Status::Code code)
{
    switch (code) {
    case Status::Code::Ok: return QStringLiteral("OK");
    case Status::Code::NotFound: return QStringLiteral("Not found");
    case Status::Code::Locked: return QStringLiteral("Locked");
    case Status::Code::InvalidArgument: return QStringLiteral("Invalid argument");
    case Status::Code::IoError: return QStringLiteral("I/O error");
    case Status::Code::Engine: return QStringLiteral("Engine error");
    case Status::Code::NotSupported: return QStringLiteral("Not supported");
    case Status::Code::Syntax: return QStringLiteral("Syntax error");
    case Status::Code::UnknownField: return QStringLiteral("Unknown field");
    case Status::Code::UnknownFunction: return QStringLiteral("Unknown function");
    case Status::Code::TypeMismatch: return QStringLiteral("Type mismatch");
    case Status::Code::Corrupt: return QStringLiteral("Corrupt file");
    case Status::Code::Internal: return QStringLiteral("Internal error");
    }
    return QStringLiteral("Error");
}

QString Status::toString() const
{
    if (isOk())
        return QStringLiteral("OK");
    QString text = codeName(m_code) + QStringLiteral(": ") + m_message;
    if (m_engineCode != 0 || !m_engineMessage.isEmpty())
        text += QStringLiteral(" [%1 %2]").arg(m_engineCode).arg(m_engineMessage);
    return text;
}

} // namespace plx
