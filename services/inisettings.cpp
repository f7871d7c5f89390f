// services/inisettings.cpp: typed settings readers, section listing, and the defaults file
// and work directory of the installation.
#include "services/ini.h"

#include "services/env.h"
#include "services/installdir.h"
#include "services/iniprofile_p.h"
#include "services/paths.h"
#include "services/texthelpers.h"

#include <QFile>
#include <QLocale>
#include <QMutex>

#include <cmath>

namespace plx {

namespace {

QMutex defaultsMutex;
QString defaultsPath;

// The value as a number, when it is one.
bool numericValue(const QString &text, double *out)
{
    if (getLenTrim(text) < 1)
        return false;
    bool ok = false;
    const double d = QLocale::c().toDouble(text.trimmed(), &ok);
    if (ok)
        *out = d;
    return ok;
}

} // namespace

QString getINIString(const QString &section, const QString &key, const QString &def, QString &file)
{
    if (getLenTrim(file) < 1)
        file = getDefaultsINI();
    QString value;
    readINI(section, key, file, value, def);
    return value;
}

QString getINIString(const QString &section, const QString &key, const QString &def,
                     const QString &file)
{
    QString f = file;
    return getINIString(section, key, def, f);
}

bool getINIBool(const QString &section, const QString &key, bool def, const QString &file)
{
    const QString v =
        getINIString(section, key, def ? QStringLiteral("True") : QStringLiteral("False"), file)
            .toUpper()
            .trimmed();
    return v == QStringLiteral("-1") || v == QStringLiteral("TRUE") || v == QStringLiteral("1");
}

double getINIDouble(const QString &section, const QString &key, double def, const QString &file)
{
    const QString v = getINIString(section, key, QString::number(def, 'g', 15), file);
    double d = 0;
    // Deliberate: a blank or non-numeric value gives 0, not the default.
    return numericValue(v, &d) && std::isfinite(d) ? d : 0;
}

qint16 getINIInt(const QString &section, const QString &key, qint16 def, const QString &file)
{
    const QString v = getINIString(section, key, QString::number(def), file);
    double d = 0;
    if (!numericValue(v, &d))
        return 0;
    // Rounds half to even, as the hosts' integer conversion does; out of range is an
    // error, which gives 0.
    const double r = std::nearbyint(d);
    if (!std::isfinite(r) || r < -32768 || r > 32767)
        return 0;
    return qint16(r);
}

QStringList getINISections(const QString &file, QString *error)
{
    QStringList names{ QString() };
    if (error)
        error->clear();
    if (!getFileExistLEN(file, false))
        return names;
    // A runaway file is refused before it is read: it would take its size in memory twice.
    if (const QString tooLarge = settingsFileSizeProblem(file); !tooLarge.isEmpty()) {
        if (error)
            *error = tooLarge;
        return names;
    }
    QFile f(toDiskPath(file));
    QByteArray contents;
    if (f.open(QIODevice::ReadOnly))
        contents = f.read(kMaxSettingsFileBytes);
    // The file is there but unreadable (permissions, a lock, a read error): unlike a missing
    // file this is a fault the caller must hear about.
    if (!f.isOpen() || f.error() != QFileDevice::NoError) {
        if (error)
            *error = QStringLiteral("cannot read %1: %2").arg(file, f.errorString());
        return names;
    }
    const IniProfile profile = IniProfile::parse(contents);
    for (const QString &raw : profile.lines()) {
        const QString line = trimSpaces(raw);
        const qsizetype close = line.indexOf(QLatin1Char(']'));
        if (!line.startsWith(QLatin1Char('[')) || close < 1)
            continue;
        const QString name = line.mid(1, close - 1);
        // Deliberate: duplicate headers are listed as often as they occur.
        if (getLenTrim(name) >= 1)
            addToArray(names, trimSpaces(name), 1);
    }
    return names;
}

QString getDefaultsINI()
{
    QMutexLocker lock(&defaultsMutex);
    if (getLenTrim(defaultsPath) < 1)
        defaultsPath =
            setPathName(getHarrowbyDirectoryAny(), QStringLiteral("HBDEFAULTS.INI"), false);
    return defaultsPath;
}

void resetDefaultsINI()
{
    QMutexLocker lock(&defaultsMutex);
    defaultsPath.clear();
}

QString getWorkDir(Services *services)
{
    QString path = setPathName(getHarrowbyDirectoryAny(), QStringLiteral("WORK-PLX"), false);
    QString checked = path;
    if (!getPathExist(checked, false, true, services))
        prompterOf(services).msgBox(QStringLiteral("Error on path\r\n") + path,
                                    MsgStyle::OKOnly | MsgStyle::Information,
                                    QStringLiteral("Path Error"));
    return path;
}

} // namespace plx
