// services/textbasics.cpp: blank tests, null replacement, number conversion, array bounds
// and the non-empty-file test.
#include "services/texthelpers.h"

#include "services/paths.h"

#include <QFileInfo>
#include <QLocale>
#include <QRegularExpression>

#include <cmath>

namespace plx {

QString trimSpaces(const QString &text)
{
    qsizetype first = 0;
    qsizetype last = text.size();
    while (first < last && text.at(first) == QLatin1Char(' '))
        ++first;
    while (last > first && text.at(last - 1) == QLatin1Char(' '))
        --last;
    return text.mid(first, last - first);
}

QString rtrimSpaces(const QString &text)
{
    qsizetype last = text.size();
    while (last > 0 && text.at(last - 1) == QLatin1Char(' '))
        --last;
    return text.left(last);
}

qint32 getLenTrim(const QString &text)
{
    return qint32(trimSpaces(text).size());
}

static bool isNullValue(const QVariant &value)
{
    return !value.isValid() || value.isNull();
}

QVariant chkNulls(const QVariant &value, const QVariant &def, bool emptyIsNull)
{
    if (isNullValue(value))
        return def;
    if (emptyIsNull && value.toString().isEmpty())
        return def;
    return value;
}

namespace {

// A number as the hosts' numeric test sees one: sign, digits with optional group commas,
// decimal point, exponent. Used to tell "numeric but not convertible" (overflow) apart.
bool looksNumeric(const QString &text)
{
    static const QRegularExpression re(
        QStringLiteral("^\\s*[-+]?(\\d[\\d,]*\\.?\\d*|\\.\\d+)([eEdD][-+]?\\d+)?\\s*$"));
    return re.match(text).hasMatch();
}

bool convertText(const QString &text, double *out)
{
    bool ok = false;
    // The C locale accepts "1,234.5" (group separators) and ignores surrounding white space.
    // It also takes "inf" and "nan", which are no numbers to the hosts: those fail here.
    const double d = QLocale::c().toDouble(text.trimmed(), &ok);
    if (!ok || !std::isfinite(d))
        return false;
    *out = d;
    return true;
}

} // namespace

double cValP(const QVariant &value)
{
    if (isNullValue(value))
        return 0;
    // Deliberate: True converts to -1, as the hosts' booleans do.
    if (value.typeId() == QMetaType::Bool)
        return value.toBool() ? -1 : 0;
    if (value.typeId() != QMetaType::QString) {
        bool ok = false;
        const double d = value.toDouble(&ok);
        if (ok)
            return d;
    } else {
        double d = 0;
        if (convertText(value.toString(), &d))
            return d;
        if (looksNumeric(value.toString()))
            return 0; // numeric but out of range
    }
    double cleaned = 0;
    return convertText(cleanNumberText(value), &cleaned) ? cleaned : 0;
}

QString cleanNumberText(const QVariant &value)
{
    if (isNullValue(value))
        return QString();
    const QString text = value.toString();
    QString out;
    bool seenDigit = false;
    bool seenPoint = false;
    for (QChar c : text) {
        if (c.isDigit() && c.unicode() < 128) {
            out.append(c);
            seenDigit = true;
        } else if (c == QLatin1Char('.') && !seenPoint) {
            out.append(c);
            seenPoint = true;
        } else if ((c == QLatin1Char('-') || c == QLatin1Char('+')) && !seenDigit && !seenPoint
                   && out.isEmpty()) {
            out.append(c);
        }
    }
    return out;
}

qint32 arrayUBound(const QStringList &array, qint16 valueIfError, qint16 dimension)
{
    if (array.isEmpty() || dimension != 1)
        return valueIfError;
    return qint32(array.size() - 1);
}

qint32 arrayUBound(const QVariantList &array, qint16 valueIfError, qint16 dimension)
{
    if (array.isEmpty() || dimension != 1)
        return valueIfError;
    return qint32(array.size() - 1);
}

bool getFileExistLEN(const QString &path, bool valueIfEmpty)
{
    if (getLenTrim(path) < 1)
        return false;
    const QFileInfo info(toDiskPath(path));
    if (!info.exists() || !info.isFile())
        return false;
    return info.size() >= 1 ? true : valueIfEmpty;
}

} // namespace plx
