// services/textdelim.cpp: delimited fields and line joining.
#include "services/texthelpers.h"

namespace plx {

namespace {

QStringList pieces(const QString &text, const QString &delimiter)
{
    if (text.isEmpty())
        return {};
    // An empty delimiter does not split at all (QString::split would split per character).
    if (delimiter.isEmpty())
        return { text };
    return text.split(delimiter, Qt::KeepEmptyParts, Qt::CaseSensitive);
}

} // namespace

QString getDelimField(const QString &text, const QString &delimiter, qint16 fieldNumber,
                      const QString &def)
{
    const QStringList parts = pieces(text, delimiter);
    if (fieldNumber < 1 || fieldNumber > parts.size())
        return def;
    return parts.at(fieldNumber - 1);
}

qint16 getDelimCount(const QString &text, const QString &delimiter)
{
    const qsizetype n = pieces(text, delimiter).size();
    return qint16(qMin<qsizetype>(n, 32767));
}

QString modAddALine(const QString &text, const QString &line, const QString &separator,
                    bool addBlank)
{
    if (getLenTrim(text) < 1)
        return line;
    if (getLenTrim(line) < 1 && !addBlank)
        return text;
    return text + separator + line;
}

} // namespace plx
