// services/texthelpers.h: the flat helpers every control calls: blank tests, null
// replacement, delimited fields, file names, collection look-ups, array growth, SQL/key encoders.
//
// They hold no state and never throw. "Blank" means empty after trimming spaces (only the
// space character, as the hosts' Trim does). A field value is a QVariant; Null is an
// invalid (or null) QVariant. Dynamic arrays are QStringList / QVariantList whose element 0
// is a placeholder where the callers say so. Character codes are Windows-1252 codes.
#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace plx {

// --- Blank, null and number helpers (textbasics.cpp) ---

// The text with leading and trailing spaces removed (spaces only, not tabs or line breaks).
QString trimSpaces(const QString &text);
QString rtrimSpaces(const QString &text);
// Length after trimming spaces at both ends; `getLenTrim(x) < 1` is the blank test.
qint32 getLenTrim(const QString &text);
// Null -> def; with emptyIsNull, a value whose text is exactly "" -> def; else the value.
QVariant chkNulls(const QVariant &value, const QVariant &def, bool emptyIsNull);
// The value as a double; see textbasics.cpp for the fallbacks. Never fails (0 at worst).
double cValP(const QVariant &value);
// The text cValP converts when a plain conversion fails: keeps a leading sign, the digits
// and the first decimal point, and drops everything else ("$1,234.50 net" -> "1234.50").
QString cleanNumberText(const QVariant &value);
// Upper bound (size - 1) of the array; valueIfError when the list is empty (never
// dimensioned) or `dimension` is not 1.
qint32 arrayUBound(const QStringList &array, qint16 valueIfError, qint16 dimension);
qint32 arrayUBound(const QVariantList &array, qint16 valueIfError, qint16 dimension);
// True when the file exists with at least one byte; valueIfEmpty for an empty file; false
// when missing or not examinable. Accepts "\" and "/" separators.
bool getFileExistLEN(const QString &path, bool valueIfEmpty);

// --- Delimited text (textdelim.cpp) ---

// Piece number fieldNumber (1-based) of the text split at every delimiter; def when out of
// range. Pieces are not trimmed.
QString getDelimField(const QString &text, const QString &delimiter, qint16 fieldNumber,
                      const QString &def);
// Delimiter occurrences + 1; 0 for an empty text.
qint16 getDelimCount(const QString &text, const QString &delimiter);
// text & separator & line, except: blank text -> line; blank line without addBlank -> text.
QString modAddALine(const QString &text, const QString &line, const QString &separator,
                    bool addBlank);

// --- File names; the separator is "\" (textfilenames.cpp) ---

QString getFileTitle(const QString &fullPath); // name up to its first "."
QString getFileName(const QString &fullPath); // everything behind the last "\"
QString getFileDir(const QString &fullPath); // up to and including the last "\"
QString getPathNoExt(const QString &fullPath); // directory + title
// `directory` + "\" (unless it ends in one) + `name` without leading separators or
// trailing blanks; every "\" becomes "/" when forwardSlashes.
QString setPathName(const QString &directory, const QString &name, bool forwardSlashes);

// --- Lists, collections and arrays (textlists.cpp) ---

// True when some member's objectName() equals name (trimmed, upper-cased on both sides).
bool keyInCollection(const QString &name, const QObjectList &collection);
// Grows the array by one element and returns the new last index; a never-dimensioned
// (empty) array gets its first element at firstIndex.
qint32 incRedim(QStringList &array, qint16 firstIndex);
qint32 incRedim(QVariantList &array, qint16 firstIndex);
void addToArray(QStringList &array, const QString &value, qint16 firstIndex);
void addToArray(QVariantList &array, const QVariant &value, qint16 firstIndex);

// --- SQL and key text (textsql.cpp) ---

// Every "|" replaced by "' & chr(124) & '" (for use inside a quoted SQL literal).
QString fixPipeInSQL(const QString &text);
// Each lone single quote doubled; pairs and enclosing quotes kept. Idempotent.
QString fixQuoteInSQL(const QString &text);
// "CHR(65) & CHR(66)" for "AB"; counts getLenTrim(text) characters from the untrimmed start.
// A character Windows-1252 cannot hold is written "ChrW(n)" (its UTF-16 code unit; a pair of
// them for a character beyond U+FFFF), which Unicode back ends read back as that character.
QString strToASC(const QString &text);

// The longest text the navigator's find box takes (cboFind's maximum length). A find query
// built from any text this long, quotes and pipes included, runs on every back end within
// the dialect's limits (services/recordsource/jet/internal/ast.h). The find text is upper-cased
// with QString::toUpper(), the full Unicode mapping UCase applies to the fields on every back end
// ("ß" becomes "SS" in both), so that both sides fold case alike.
inline constexpr int kFindTextMaxLength = 65536;
// "065066" for "AB": three-digit Windows-1252 codes.
QString keyToASC(const QString &key);
// Inverse of keyToASC, reading three digits at positions 1, 1+step, ... up to
// getLenTrim(digits). A group that is not a code 0..255 (or step < 1) is a conversion
// failure: *ok is set to false and the text so far is returned.
QString ascToKey(const QString &digits, qint16 step, bool *ok = nullptr);

} // namespace plx
