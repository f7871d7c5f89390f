// services/recordsource/postgres/tests/pgserver.cpp: the throwaway server.
#include "services/recordsource/postgres/tests/pgserver.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

#include <unistd.h>

namespace plx::testing {

namespace {

constexpr int kPort = 5432; // names the socket file only: the server listens on no port
constexpr int kTimeoutMs = 60000;
const char *const kHostVariable = "PLX_TEST_PGHOST";
const char *const kUserVariable = "PLX_TEST_PGUSER";

QString serverBinaries()
{
    const QStringList versions = QDir(QStringLiteral("/usr/lib/postgresql"))
                                     .entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    for (qsizetype i = versions.size() - 1; i >= 0; --i) {
        QString bin = QStringLiteral("/usr/lib/postgresql/%1/bin").arg(versions.at(i));
        if (QFile::exists(bin + QStringLiteral("/initdb"))
            && QFile::exists(bin + QStringLiteral("/pg_ctl")))
            return bin;
    }
    return {};
}

} // namespace

PgServer &PgServer::instance()
{
    static PgServer server;
    return server;
}

PgServer::PgServer()
{
    const QString inherited = qEnvironmentVariable(kHostVariable);
    m_bin = serverBinaries();
    if (!inherited.isEmpty()) {
        m_dir = inherited;
        m_user = qEnvironmentVariable(kUserVariable);
        return;
    }
    if (m_bin.isEmpty()) {
        m_unavailable = QStringLiteral("no PostgreSQL server binaries under /usr/lib/postgresql "
                                       "(install the postgresql package: tools/setup.sh)");
        return;
    }
    start();
}

void PgServer::start()
{
    const bool root = geteuid() == 0;
    m_user = root ? QStringLiteral("postgres")
                  : qEnvironmentVariable("USER", QStringLiteral("postgres"));
    QTemporaryDir dir(QDir::tempPath() + QStringLiteral("/plx-pg-XXXXXX"));
    dir.setAutoRemove(false);
    m_dir = dir.path();
    if (root && QProcess::execute(QStringLiteral("chown"), { m_user, m_dir }) != 0) {
        m_unavailable = QStringLiteral("cannot give %1 to the user postgres").arg(m_dir);
        return;
    }
    const QString data = m_dir + QStringLiteral("/data");
    QString out;
    if (!runAsOwner({ m_bin + QStringLiteral("/initdb"), QStringLiteral("-D"), data,
                      QStringLiteral("-U"), m_user, QStringLiteral("--auth=trust"),
                      QStringLiteral("-E"), QStringLiteral("UTF8"), QStringLiteral("--no-sync") },
                    &out)) {
        m_unavailable = QStringLiteral("initdb failed: %1").arg(out);
        return;
    }
    const QString options = QStringLiteral("-c listen_addresses='' -c unix_socket_directories=%1 "
                                           "-c port=%2 -c fsync=off -c full_page_writes=off")
                                .arg(m_dir)
                                .arg(kPort);
    if (!runAsOwner({ m_bin + QStringLiteral("/pg_ctl"), QStringLiteral("-D"), data,
                      QStringLiteral("-w"), QStringLiteral("-l"),
                      m_dir + QStringLiteral("/server.log"), QStringLiteral("-o"), options,
                      QStringLiteral("start") },
                    &out)) {
        m_unavailable = QStringLiteral("pg_ctl start failed: %1").arg(out);
        return;
    }
    m_owned = true;
    qputenv(kHostVariable, m_dir.toUtf8());
    qputenv(kUserVariable, m_user.toUtf8());
}

PgServer::~PgServer()
{
    if (!m_owned)
        return;
    runAsOwner({ m_bin + QStringLiteral("/pg_ctl"), QStringLiteral("-D"),
                 m_dir + QStringLiteral("/data"), QStringLiteral("-m"), QStringLiteral("immediate"),
                 QStringLiteral("-w"), QStringLiteral("stop") });
    QDir(m_dir).removeRecursively();
}

bool PgServer::runAsOwner(const QStringList &command, QString *output) const
{
    QProcess p;
    p.setProcessChannelMode(QProcess::MergedChannels);
    p.setWorkingDirectory(m_dir.isEmpty() ? QDir::tempPath() : m_dir);
    if (geteuid() == 0)
        p.start(QStringLiteral("runuser"),
                QStringList{ QStringLiteral("-u"), m_user, QStringLiteral("--") } + command);
    else
        p.start(command.first(), command.mid(1));
    const bool done = p.waitForFinished(kTimeoutMs);
    if (output)
        *output = QString::fromLocal8Bit(p.readAll()).trimmed();
    return done && p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0;
}

QString PgServer::conninfo(const QString &database) const
{
    return QStringLiteral("host=%1 port=%2 user=%3 dbname=%4 application_name=plx-test")
        .arg(m_dir)
        .arg(kPort)
        .arg(m_user, database);
}

QString PgServer::psql(const QString &database, const QString &sql) const
{
    QProcess p;
    p.setProcessChannelMode(QProcess::MergedChannels);
    const QString psqlPath =
        m_bin.isEmpty() ? QStringLiteral("psql") : m_bin + QStringLiteral("/psql");
    p.start(psqlPath,
            { QStringLiteral("-X"), QStringLiteral("-q"), QStringLiteral("-A"),
              QStringLiteral("-t"), QStringLiteral("-v"), QStringLiteral("ON_ERROR_STOP=1"),
              QStringLiteral("-d"), conninfo(database), QStringLiteral("-c"), sql });
    p.waitForFinished(kTimeoutMs);
    return QString::fromUtf8(p.readAll()).trimmed();
}

QString PgServer::createDatabase(const QString &database) const
{
    if (!m_unavailable.isEmpty())
        return m_unavailable;
    return psql(QStringLiteral("postgres"),
                QStringLiteral("CREATE DATABASE \"%1\" TEMPLATE template0 ENCODING 'UTF8' "
                               "LOCALE 'C.UTF-8'")
                    .arg(database));
}

bool PgServer::restart() const
{
    return runAsOwner({ m_bin + QStringLiteral("/pg_ctl"), QStringLiteral("-D"),
                        m_dir + QStringLiteral("/data"), QStringLiteral("-m"),
                        QStringLiteral("fast"), QStringLiteral("-w"), QStringLiteral("restart") });
}

bool PgServer::skipOrFailUnavailable()
{
    return !instance().unavailable().isEmpty();
}

} // namespace plx::testing
