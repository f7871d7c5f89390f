// navigator/navigatortext_p.h: texts the navigator builds in more than one place.
#pragma once

#include <QString>

namespace plx {

// A count as "###,###,##0" formats it: thousands separated by commas, no decimals.
QString formatRecordCount(qint64 count);

// The last paragraph of the "Already Connected" box: whom to ask for help.
QString alreadyConnectedSupportText();

} // namespace plx
