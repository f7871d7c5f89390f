// services/installdir.cpp: the installation-directory search and its support report.
#include "services/installdir.h"

#include "services/cp1252.h"
#include "services/ini.h"
#include "services/paths.h"
#include "services/texthelpers.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QMutex>
#include <QStandardPaths>

#ifdef Q_OS_WIN
#include <windows.h>
#endif

namespace plx {

namespace {

QMutex configMutex;
QStringList configuredNames;
QString configuredComponentDir;

const QString crlf = QStringLiteral("\r\n");

QStringList builtInNames()
{
#ifdef Q_OS_WIN
    return { QStringLiteral("PLX.exe"),        QStringLiteral("HBMain.exe"),
             QStringLiteral("HBAccounts.exe"), QStringLiteral("HBClients.exe"),
             QStringLiteral("HBReports.exe"),  QStringLiteral("HBSetup.exe") };
#else
    return { QStringLiteral("plx"),       QStringLiteral("hbmain"),    QStringLiteral("hbaccounts"),
             QStringLiteral("hbclients"), QStringLiteral("hbreports"), QStringLiteral("hbsetup") };
#endif
}

#ifdef Q_OS_WIN
// App Paths search: three roots, every family name, with a buffer that grows while a value
// may have been cut (the reported size filled the buffer).
bool searchRegistry(const QStringList &names, QString *dir, QString *lastKey)
{
    const HKEY roots[] = { HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER, HKEY_CLASSES_ROOT };
    for (LONG size = 250; size <= 2500; size += 250) {
        bool cut = false;
        for (HKEY root : roots) {
            for (const QString &name : names) {
                *lastKey = QStringLiteral("SOFTWARE\\Microsoft\\Windows\\")
                    + QStringLiteral("CurrentVersion\\App Paths\\") + name;
                const QByteArray subKey = lastKey->toLocal8Bit();
                QByteArray buffer(size, '\0');
                LONG got = size;
                const LONG rc = RegQueryValueA(root, subKey.constData(), buffer.data(), &got);
                // At the largest buffer there is no further round: a value that fills it
                // is taken as it is.
                const bool lastRound = size + 250 > 2500;
                if (!lastRound && (rc == ERROR_MORE_DATA || (rc == ERROR_SUCCESS && got == size))) {
                    cut = true;
                    break;
                }
                if (rc != ERROR_SUCCESS)
                    continue;
                QString value = QString::fromLocal8Bit(buffer.left(got));
                const qsizetype nul = value.indexOf(QChar(0));
                if (nul >= 0)
                    value.truncate(nul);
                *dir = value.left(value.lastIndexOf(QLatin1Char('\\')) + 1);
                return true;
            }
            if (cut)
                break;
        }
        if (!cut)
            return false;
    }
    return false;
}
#else
// Off Windows there is no App Paths registry; the nearest equivalent is the first family
// executable on PATH. Its directory is returned in the library's "\" form.
bool searchExecutables(const QStringList &names, QString *dir, QString *lastKey)
{
    for (const QString &name : names) {
        *lastKey = name;
        const QString found = QStandardPaths::findExecutable(name);
        if (found.isEmpty())
            continue;
        const QString path = fromDiskPath(QFileInfo(found).absoluteFilePath());
        *dir = path.left(path.lastIndexOf(QLatin1Char('\\')) + 1);
        return true;
    }
    return false;
}
#endif

QString componentDirLibraryForm()
{
    return fromDiskPath(componentDir());
}

void appendSupportReport(const QString &firstLine, const QString &diagnostic,
                         const QString &lastKey)
{
    // No runtime error is pending at this point, so the error number is 0 and its
    // description empty, as the report has always shown in that case.
    const QString report = firstLine + crlf + diagnostic + crlf + QStringLiteral("0 ") + crlf
        + QStringLiteral("Registry Key: ") + lastKey + crlf;
    QFile file(
        toDiskPath(setPathName(componentDirLibraryForm(), QStringLiteral("HBTecSup.Txt"), false)));
    if (file.open(QIODevice::WriteOnly | QIODevice::Append))
        file.write(cp1252::encode(report));
}

QString cleanUp(QString dir)
{
    static const QString pairs[] = { QStringLiteral("\\\\"), QStringLiteral("//"),
                                     QStringLiteral("\\/"), QStringLiteral("/\\") };
    auto endsInPair = [&dir]() {
        for (const QString &p : pairs) {
            if (dir.endsWith(p))
                return true;
        }
        return false;
    };
    while (endsInPair())
        dir.chop(1);
    if (!dir.isEmpty() && dir.back().unicode() == 0)
        dir.chop(1);
    return dir;
}

} // namespace

QStringList familyExecutables()
{
    QMutexLocker lock(&configMutex);
    if (!configuredNames.isEmpty())
        return configuredNames;
    const QString env = qEnvironmentVariable("PLX_FAMILY_EXECUTABLES");
    if (!env.trimmed().isEmpty())
        return env.split(QLatin1Char(';'), Qt::SkipEmptyParts);
    return builtInNames();
}

void setFamilyExecutables(const QStringList &names)
{
    QMutexLocker lock(&configMutex);
    configuredNames = names;
}

QString componentDir()
{
    {
        QMutexLocker lock(&configMutex);
        if (!configuredComponentDir.isEmpty())
            return configuredComponentDir;
    }
    QString env = qEnvironmentVariable("PLX_COMPONENT_DIR");
    if (!env.trimmed().isEmpty())
        return env;
    if (QCoreApplication::instance())
        return QDir::toNativeSeparators(QCoreApplication::applicationDirPath());
    return QDir::toNativeSeparators(QDir::currentPath());
}

void setComponentDir(const QString &dir)
{
    QMutexLocker lock(&configMutex);
    configuredComponentDir = dir;
}

QString getHarrowbyDirectoryAny()
{
    const QString overridden = qEnvironmentVariable("PLX_HARROWBY_DIR");
    if (getLenTrim(overridden) > 0)
        return cleanUp(setPathName(fromDiskPath(trimSpaces(overridden)), QString(), false));

    QString dir;
    QString lastKey;
    QString diagnostic;
#ifdef Q_OS_WIN
    const bool found = searchRegistry(familyExecutables(), &dir, &lastKey);
#else
    const bool found = searchExecutables(familyExecutables(), &dir, &lastKey);
#endif
    if (!found) {
        diagnostic = modAddALine(
            diagnostic, QStringLiteral("No Registry Entry found; try INI file"), crlf, false);
        QString iniFile =
            setPathName(componentDirLibraryForm(), QStringLiteral("HBRegistry.INI"), false);
        dir = fromDiskPath(getINIString(QStringLiteral("CONFIG"),
                                        QStringLiteral("HarrowbyDirectory"), QString(), iniFile));
        if (getLenTrim(dir) < 1) {
            diagnostic = modAddALine(
                diagnostic,
                QStringLiteral("Unable to get Harrowby Directory from Windows Registry"), crlf,
                false);
            appendSupportReport(QStringLiteral("Error in getHarrowbyDirectoryAny"), diagnostic,
                                lastKey);
        }
    }
    if (getLenTrim(dir) < 1)
        appendSupportReport(QStringLiteral("Empty return in getHarrowbyDirectoryAny"), diagnostic,
                            lastKey);
    return cleanUp(dir);
}

} // namespace plx
