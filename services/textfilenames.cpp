// services/textfilenames.cpp: splitting and joining file names at "\".
//
// These are pure text functions: they know only "\" as the separator, whatever the
// platform, so that names built on one machine split the same way on another. The disk is
// reached through toDiskPath() (services/paths.h), which maps "\" to "/" off Windows.
#include "services/texthelpers.h"

namespace plx {

QString getFileName(const QString &fullPath)
{
    const qsizetype slash = fullPath.lastIndexOf(QLatin1Char('\\'));
    return slash < 0 ? fullPath : fullPath.mid(slash + 1);
}

QString getFileTitle(const QString &fullPath)
{
    const QString name = getFileName(fullPath);
    const qsizetype dot = name.indexOf(QLatin1Char('.'));
    return dot < 0 ? name : name.left(dot);
}

QString getFileDir(const QString &fullPath)
{
    return fullPath.left(fullPath.size() - getFileName(fullPath).size());
}

QString getPathNoExt(const QString &fullPath)
{
    return setPathName(getFileDir(fullPath), getFileTitle(fullPath), false);
}

QString setPathName(const QString &directory, const QString &name, bool forwardSlashes)
{
    QString n = name;
    while (n.startsWith(QLatin1Char('\\')) || n.startsWith(QLatin1Char('/'))) {
        n[0] = QLatin1Char(' ');
        n = trimSpaces(n);
    }
    QString dir = directory;
    // A terminator left by a fixed-buffer platform call.
    if (!dir.isEmpty() && dir.back().unicode() == 0)
        dir.back() = QLatin1Char(' ');
    dir = rtrimSpaces(dir);
    // Deliberate: only "\" counts as a trailing separator, so "x/" and "" still get one.
    QString result = dir.endsWith(QLatin1Char('\\')) ? dir + rtrimSpaces(n)
                                                     : dir + QLatin1Char('\\') + rtrimSpaces(n);
    if (forwardSlashes)
        result.replace(QLatin1Char('\\'), QLatin1Char('/'));
    return result;
}

} // namespace plx
