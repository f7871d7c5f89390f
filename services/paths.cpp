// services/paths.cpp: directory checks with their user dialogue, path creation, short names.
#include "services/paths.h"

#include "services/env.h"
#include "services/texthelpers.h"

#include <QDir>
#include <QFileInfo>

#ifdef Q_OS_WIN
#include <windows.h>
#endif

namespace plx {

QString toDiskPath(const QString &path)
{
#ifdef Q_OS_WIN
    return path;
#else
    QString p = path;
    return p.replace(QLatin1Char('\\'), QLatin1Char('/'));
#endif
}

QString fromDiskPath(const QString &path)
{
#ifdef Q_OS_WIN
    return path;
#else
    QString p = path;
    return p.replace(QLatin1Char('/'), QLatin1Char('\\'));
#endif
}

namespace {

const QString crlf = QStringLiteral("\r\n");

bool isDirectory(const QString &path)
{
    return QFileInfo(toDiskPath(path)).isDir();
}

} // namespace

bool getPathExist(QString &path, bool useCurrentIfBlank, bool create, Services *services)
{
    Prompter &prompter = prompterOf(services);
    // A blank path without useCurrentIfBlank is checked like any other: it does not exist,
    // so the user gets the same question or report as for a mistyped path.
    if (getLenTrim(path) < 1 && useCurrentIfBlank) {
        path = QDir::toNativeSeparators(QDir::currentPath());
        const MsgAnswer a = prompter.msgBox(
            QStringLiteral("Since no path was specified, the program will use the path:") + crlf
                + crlf + path,
            MsgStyle::OKCancel | MsgStyle::Information | MsgStyle::DefaultButton2,
            QStringLiteral("Path Specification"));
        if (a == MsgAnswer::Cancel)
            return false;
    }
    path = trimSpaces(path);
    if (path.size() > 1 && path.endsWith(QLatin1Char('\\')))
        path.chop(1);
    if (isDirectory(path))
        return true;
    const QString lead = QStringLiteral("The specified path does not exist:") + crlf + path;
    if (create) {
        const MsgAnswer a = prompter.msgBox(
            lead + crlf + crlf + QStringLiteral("Do you want to create the new path?"),
            MsgStyle::YesNo | MsgStyle::Information, QStringLiteral("Path Not Found"));
        if (a == MsgAnswer::Yes) {
            makePath(path);
            return isDirectory(path);
        }
        return false;
    }
    prompter.msgBox(lead + crlf + crlf
                        + QStringLiteral("You must specify an existing path for this function."),
                    MsgStyle::OKOnly | MsgStyle::Information, QStringLiteral("Path Error"));
    return false;
}

void makePath(const QString &path)
{
    if (getLenTrim(path) < 1)
        return;
    const QStringList parts = fromDiskPath(path).split(QLatin1Char('\\'));
    QString level;
    for (qsizetype i = 0; i < parts.size(); ++i) {
        level = i == 0 ? parts.at(0) : level + QLatin1Char('\\') + parts.at(i);
        // Failures are expected (an existing level, a drive such as "C:", the root "").
        if (!level.isEmpty())
            QDir().mkdir(toDiskPath(level));
    }
}

QString getShortName(const QString &longName)
{
#ifdef Q_OS_WIN
    wchar_t buffer[256];
    const DWORD n =
        GetShortPathNameW(reinterpret_cast<const wchar_t *>(longName.utf16()), buffer, 256);
    if (n == 0 || n >= 256)
        return longName;
    const QString shortName = QString::fromWCharArray(buffer, int(n));
    return getLenTrim(shortName) < 1 ? longName : shortName;
#else
    return longName;
#endif
}

} // namespace plx
