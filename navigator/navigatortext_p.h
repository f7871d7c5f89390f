// navigator/navigatortext_p.h: texts the navigator builds in more than one place.
#pragma once

#include <QString>

namespace plx {
class Status;
}

namespace plx {

// A count as "###,###,##0" formats it: thousands separated by commas, no decimals.
QString formatRecordCount(qint64 count);

// The last paragraph of the "Already Connected" box: whom to ask for help.
QString alreadyConnectedSupportText();

// What failed, for a box: the library's words and, when the engine or the operating
// system said why ("No space left on device", "database or disk is full"), its reason.
QString statusForUser(const Status &status);

} // namespace plx
