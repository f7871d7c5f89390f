// services/recordsource/jet/internal/functionlibrary.h: the dialect's wider function library (Nz,
// StrComp, Format, the date and conversion functions, ...) and the helpers its groups
// share. Shared with the dialect's engine bindings; not installed.
//
// The library extends the table in functions.cpp: findFunction() looks here after its own
// entries, so the parser, the evaluator and every engine's bindings know the same names.
// Every error names the function (in its usual spelling) and the call's position.
#pragma once

#include "services/recordsource/jet/internal/ast.h"
#include "services/recordsource/jet/internal/functions.h"

#include <QDateTime>

#include <optional>
#include <span>

namespace plx::jet {

// The library's functions, by upper-case name ('$' kept); nullptr when not one of them.
const FunctionDef *findLibraryFunction(const QString &upperName);
// All of the library's functions, for registering them with an engine.
std::span<const FunctionDef *const> libraryFunctions();
// Functions whose value depends on the clock (Time, Date$, ...): never computed in advance.
bool isClockFunction(const QString &upperName);

// Runs a function and makes sure its error names it: "... in Left at position 7".
Result<QVariant> callFunction(const FunctionDef &def, const QVariant *args, int count,
                              TextCompare mode, int pos);
// "DATEADD" -> "DateAdd": the spelling the dialect's documentation uses.
QString functionDisplayName(const QString &upperName);

namespace fn {

using R = Result<QVariant>;

// The function groups, each in its own file.
std::span<const FunctionDef> textFunctions();
std::span<const FunctionDef> conversionFunctions();
std::span<const FunctionDef> numberFunctions();
std::span<const FunctionDef> dateFunctions();
std::span<const FunctionDef> formatFunctions();

// "invalid use of Null in Space at position 3" (VBA error 94).
Status invalidNull(const char *fn, int pos);
// "invalid procedure call or argument in Mid at position 3" (VBA error 5).
Status badArgument(const char *fn, int pos, const QString &why = QString());
// "overflow in CByte at position 3" (VBA error 6).
Status overflow(const char *fn, int pos);
// "type mismatch in argument 2 of DateAdd at position 3: 'x' is not a date" (VBA error 13).
Status typeMismatch(const char *fn, int argument, const QVariant &v, const char *wanted, int pos);

// Argument readers; `argument` is 1-based, for the messages. A Null argument is refused
// with invalidNull.
Result<double> numberArg(const char *fn, const QVariant &v, int argument, int pos);
// Whole numbers (lengths, counts, codes) are rounded half to even, as VBA converts them.
Result<qint64> wholeArg(const char *fn, const QVariant &v, int argument, int pos);
Result<QDateTime> dateArg(const char *fn, const QVariant &v, int argument, int pos);
// A compare argument: 0 binary, 1 text, 2 and -1 the source's own rule.
Result<TextCompare> compareArg(const char *fn, const QVariant &v, int argument, TextCompare mode,
                               int pos);

// Reads a date the way CDate and DateValue do: the engines' stored forms, month-first
// dates with or without a time, a time alone (on 12/30/1899), and dates with English month
// names ("January 31, 2003", "31-Jan-03", "Jan 31 2003"). Invalid when it is none of them.
QDateTime readDateText(const QString &text);
// A value as a date: dates, numbers (serials) and date texts; invalid otherwise.
QDateTime valueAsDate(const QVariant &v);
// The same as a calendar date and a time of day, without building a QDateTime: a local
// QDateTime asks the time-zone rules for its offset, which costs more than a filter's
// whole comparison. False when the value is no date.
bool valueAsDateParts(const QVariant &v, QDate *date, QTime *time);

// A date argument as parts; invalidNull or typeMismatch as dateArg.
struct DateParts
{
    QDate date;
    QTime time;
};
Result<DateParts> datePartsArg(const char *fn, const QVariant &v, int argument, int pos);

// The unsigned value of a VBA "&H"/"&O" number as the 16- or 32-bit integer it stands for:
// &HFFFF is -1, &H10000 is 65536, &HFFFFFFFF is -1. Nullopt beyond 32 bits.
std::optional<double> wrapRadixValue(quint64 value);

// The serial-date epoch, 12/30/1899: the date a time alone lies on.
inline QDate epochDate()
{
    return QDate(1899, 12, 30);
}

} // namespace fn

} // namespace plx::jet
