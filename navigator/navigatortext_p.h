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

// `name` as it can stand in a Jet statement: unchanged when it is a plain identifier that is
// not a reserved word, in brackets otherwise ("my people" -> "[my people]", "ORDER" ->
// "[ORDER]", "91" -> "[91]"). A name already in brackets is left as it is.
QString jetName(const QString &name);

// `table`.`field` for a criterion or sort: "T.NAME" for plain names, "[my people].[NAME]"
// when either needs brackets.
QString jetQualified(const QString &table, const QString &field);

// One entry of a sort field list ("NAME", "NAME DESC", "first name") with its field name
// made safe by jetName and qualified by `table`; the direction word stays.
QString jetSortPiece(const QString &table, const QString &piece);

// What failed, for a box: the library's words and, when the engine or the operating
// system said why ("No space left on device", "database or disk is full"), its reason.
QString statusForUser(const Status &status);

} // namespace plx
