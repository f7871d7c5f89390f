// services/recordsource/postgres/tests/pgserver.h: a throwaway PostgreSQL server for tests.
//
// The first test that asks starts one server for the whole test program: initdb in a new
// temporary folder, pg_ctl start listening on a Unix socket in that folder only (no TCP
// port), fsync off. It is stopped and its folder removed when the program ends, also after
// a failed test. initdb refuses to run as root, so as root the server runs as the user
// "postgres" (runuser) in a folder that user owns. Child processes that tests start find
// the same server through the environment (PLX_TEST_PGHOST) instead of starting their own.
//
// Without the server binaries (Debian's postgresql package) the server is unavailable and
// says why; a test then skips, or fails under CI=true, where the set-up installs them.
#pragma once

#include <QString>

namespace plx::testing {

class PgServer
{
public:
    // The program's server, started on first use; unavailable() says why when it is not.
    static PgServer &instance();

    // Why there is no server ("" when there is one).
    const QString &unavailable() const { return m_unavailable; }
    // The libpq connection string of database `database` on it.
    QString conninfo(const QString &database) const;
    // Makes a new, empty database; an error text, "" on success.
    QString createDatabase(const QString &database) const;
    // Runs SQL through psql as the server's superuser on `database`; its output, trimmed.
    QString psql(const QString &database, const QString &sql) const;
    // Stops the server quickly and starts it again (the same folder, the same socket).
    bool restart() const;

    // In a test: GTEST_SKIP with the reason, or fail under CI=true.
    static bool skipOrFailUnavailable();

    ~PgServer();
    PgServer(const PgServer &) = delete;
    PgServer &operator=(const PgServer &) = delete;

private:
    PgServer();
    void start();
    bool runAsOwner(const QStringList &command, QString *output = nullptr) const;

    QString m_bin; // the folder of initdb, pg_ctl, psql
    QString m_dir; // the data folder, also the socket's folder
    QString m_user; // the server's superuser
    QString m_unavailable;
    bool m_owned = false; // started here (rather than found through the environment)
};

} // namespace plx::testing
