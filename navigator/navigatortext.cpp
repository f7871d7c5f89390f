// navigator/navigatortext.cpp
#include "navigator/navigatortext_p.h"

#include "services/recordsource/status.h"

namespace plx {

QString formatRecordCount(qint64 count)
{
    // Not QLocale: the separator is part of the control's fixed format, whatever the
    // user's locale says.
    const bool negative = count < 0;
    QString digits = QString::number(negative ? -count : count);
    for (qsizetype at = digits.size() - 3; at > 0; at -= 3)
        digits.insert(at, QLatin1Char(','));
    return negative ? QLatin1Char('-') + digits : digits;
}

QString alreadyConnectedSupportText()
{
    return QStringLiteral("Please contact PLX Controls support (support@plxcontrols.example) "
                          "if this navigator should be connected to another table.");
}

QString statusForUser(const Status &status)
{
    const QString &reason = status.engineMessage();
    if (reason.isEmpty() || status.message().contains(reason, Qt::CaseInsensitive))
        return status.message();
    return status.message() + QStringLiteral(" (") + reason + QStringLiteral(")");
}

} // namespace plx
