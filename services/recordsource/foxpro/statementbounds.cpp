// services/recordsource/foxpro/statementbounds.cpp: the bounds' values and message.
#include "services/recordsource/foxpro/statementbounds_p.h"

namespace plx::foxpro {

jet::ParseLimits statementLimits()
{
    jet::ParseLimits limits;
    limits.maxCharacters = kMaxStatementCharacters;
    limits.maxTerms = kMaxStatementTerms;
    return limits;
}

jet::ParseLimits sqliteStatementLimits()
{
    jet::ParseLimits limits = statementLimits();
    limits.maxTerms = kMaxSqliteStatementTerms;
    return limits;
}

Status statementStopped()
{
    return Status(Status::Code::NotSupported,
                  QStringLiteral("the query was stopped after %1 seconds; use a simpler condition")
                      .arg(kStatementTimeLimitMs / 1000));
}

} // namespace plx::foxpro
