// navigator/lockholder.cpp
#include "navigator/lockholder_p.h"

#include "services/texthelpers.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QSysInfo>

#ifndef _WIN32
#include <cerrno>
#include <csignal>
#endif

namespace plx {

namespace {

bool processAlive(qint64 pid)
{
#ifdef _WIN32
    Q_UNUSED(pid);
    return true; // not known without more rights: trust the note
#else
    return pid > 0 && (::kill(pid_t(pid), 0) == 0 || errno == EPERM);
#endif
}

} // namespace

QString LockHolders::notePath(const QString &id) const
{
    // Character codes, so any ID (blanks, slashes, any byte) makes a valid file name.
    return m_dir + QLatin1Char('/') + keyToASC(id) + QStringLiteral(".txt");
}

void LockHolders::claim(const QString &id, const QString &user, const QDateTime &since) const
{
    if (m_dir.isEmpty())
        return;
    QDir().mkpath(m_dir);
    QSaveFile note(notePath(id));
    if (!note.open(QIODevice::WriteOnly))
        return;
    const QString line = user + QLatin1Char('\t') + QSysInfo::machineHostName() + QLatin1Char('\t')
        + QString::number(QCoreApplication::applicationPid()) + QLatin1Char('\t')
        + since.toString(QStringLiteral("MM/dd/yyyy hh:mm:ss")) + QLatin1Char('\n');
    note.write(line.toUtf8());
    note.commit();
}

void LockHolders::release(const QString &id) const
{
    if (m_dir.isEmpty())
        return;
    QFile note(notePath(id));
    if (!note.open(QIODevice::ReadOnly))
        return;
    const QStringList parts = QString::fromUtf8(note.readLine()).trimmed().split(QLatin1Char('\t'));
    note.close();
    if (parts.size() >= 3 && parts[1] == QSysInfo::machineHostName()
        && parts[2].toLongLong() == QCoreApplication::applicationPid())
        QFile::remove(notePath(id));
}

QString LockHolders::describe(const QString &id) const
{
    if (m_dir.isEmpty())
        return QString();
    QFile note(notePath(id));
    if (!note.open(QIODevice::ReadOnly))
        return QString();
    const QStringList parts = QString::fromUtf8(note.readLine()).trimmed().split(QLatin1Char('\t'));
    if (parts.size() < 4)
        return QString();
    if (parts[1] == QSysInfo::machineHostName() && !processAlive(parts[2].toLongLong()))
        return QString();
    return QStringLiteral("Held by ") + parts[0] + QStringLiteral(" on ") + parts[1]
        + QStringLiteral(" since ") + parts[3];
}

} // namespace plx
