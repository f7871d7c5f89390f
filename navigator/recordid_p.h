// navigator/recordid_p.h: the odometer that advances a record ID's key.
#pragma once

#include <QString>

#include <functional>

namespace plx {

// Advances `key` by one step: its last character moves to the next Windows-1252 code,
// skipping the blank (32); past 255 it wraps to 1 and carries into the character before,
// like an odometer. A carry that reaches the first three characters (the "PLE" prefix) is
// reported through `log` ("Error in PLXIDIncrement; k=3") and carried on regardless.
QString PLXIDIncrement(const QString &key, const std::function<void(const QString &)> &log);

} // namespace plx
