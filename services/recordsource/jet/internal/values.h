// services/recordsource/jet/internal/values.h: Jet's values and how they convert and compare.
//
// A value is a QVariant: Null (invalid), text (QString), number (double; integers read
// from an engine may arrive as qint64), Boolean (bool; True is -1 in arithmetic), and
// date (QDateTime; a QDate is accepted too). Dates count as day serials from 12/30/1899
// when used as numbers, as in Jet.
#pragma once

#include "services/recordsource/result.h"
#include "services/recordsource/textcompare.h"

#include <QDateTime>
#include <QVariant>

namespace plx::jet {

inline bool isNull(const QVariant &v)
{
    return !v.isValid() || v.isNull();
}
bool isText(const QVariant &v);
bool isDate(const QVariant &v);
bool isBoolean(const QVariant &v);
bool isNumeric(const QVariant &v); // numbers and Booleans

// The number a value stands for: numbers, Booleans (-1/0), dates (serial), and text that
// reads as a number ("25", " 1,025 ", "&H1A"). TypeMismatch naming `pos` otherwise.
Result<double> toNumber(const QVariant &v, int pos);
// Text as CStr gives it: numbers in plain decimal, True/False, dates m/d/yyyy with the time
// only when it is not midnight. Null gives "".
QString toText(const QVariant &v);
// Numbers printed without exponent and without trailing zeros ("37", "2.5", "-0.125").
QString numberText(double d);

double dateToSerial(const QDateTime &dt);
QDateTime serialToDate(double serial);
QDateTime toDateTime(const QVariant &v); // invalid when the value is no date
// Reads dates stored as text by the engines ("2004-01-31", "2004-01-31 07:00:00") or
// written month first ("1/31/2004").
QDateTime parseDateText(const QString &text);

// Compares two texts: in the General order for NoCase (case-insensitive, accented letters
// beside their base letters, internal/generalorder.h), by Windows-1252 byte for Binary.
int compareText(QStringView a, QStringView b, TextCompare mode);
// Compares two non-Null values of compatible kinds; TypeMismatch at `pos` when text meets
// a number that it cannot be read as.
Result<int> compareValues(const QVariant &a, const QVariant &b, TextCompare mode, int pos);

// Banker's rounding, as CInt, CLng, \ and Mod use it.
double roundHalfEven(double d);

} // namespace plx::jet
