// testing/smalltable.cpp
#include "testing/smalltable.h"

#include "navigator/mvplxrecs.h"

#include <QDir>

#include <gtest/gtest.h>

namespace plx::test {

namespace {

std::string describe(const Status &status)
{
    return status.message().toStdString();
}

} // namespace

QString engineName(Engine engine)
{
    return engine == Engine::SQLite ? QStringLiteral("SQLite") : QStringLiteral("FoxPro");
}

SmallTable::SmallTable(Engine engine, TableContent content)
    : m_engine(engine), m_content(std::move(content))
{
    if (!m_dir.isValid()) {
        ADD_FAILURE() << "no temporary folder for table " << m_content.name.toStdString();
        return;
    }
    // SQLite makes its file on first open; a FoxPro database is the folder itself.
    const QString create =
        engine == Engine::SQLite ? connect() + QStringLiteral(";Create=Yes") : connect();
    Result<std::unique_ptr<Database>> opened = OpenDatabase(databaseName(), false, false, create);
    if (!opened.isOk()) {
        ADD_FAILURE() << "cannot open " << databaseName().toStdString() << ": "
                      << describe(opened.status());
        return;
    }
    std::shared_ptr<Database> db(std::move(opened.value()));
    Status made = db->createTable(m_content.name, m_content.fields);
    if (made.isOk() && !m_content.rows.isEmpty())
        made = db->appendRecords(m_content.name, m_content.rows);
    if (!made.isOk()) {
        ADD_FAILURE() << "cannot make table " << m_content.name.toStdString() << ": "
                      << describe(made);
        return;
    }
    m_database = std::move(db);
}

SmallTable::~SmallTable()
{
    if (m_database)
        m_database->Close();
}

QString SmallTable::databaseName() const
{
    return m_engine == Engine::SQLite ? m_dir.filePath(QStringLiteral("tables.sqlite"))
                                      : m_dir.path();
}

QString SmallTable::connect() const
{
    return m_engine == Engine::SQLite ? QString() : QStringLiteral("FoxPro 2.6");
}

QString SmallTable::tableFile() const
{
    return m_engine == Engine::SQLite ? databaseName()
                                      : m_dir.filePath(m_content.name + QStringLiteral(".DBF"));
}

std::shared_ptr<RecordSource> SmallTable::open(const QString &tableOrSql) const
{
    if (!m_database)
        return nullptr;
    const QString what = tableOrSql.isEmpty() ? m_content.name : tableOrSql;
    Result<std::unique_ptr<RecordSource>> rs = m_database->OpenRecordset(what);
    if (!rs.isOk()) {
        ADD_FAILURE() << "cannot open " << what.toStdString() << ": " << describe(rs.status());
        return nullptr;
    }
    return std::shared_ptr<RecordSource>(std::move(rs.value()));
}

std::unique_ptr<Database> SmallTable::reopen() const
{
    Result<std::unique_ptr<Database>> opened =
        OpenDatabase(databaseName(), false, false, connect());
    if (!opened.isOk()) {
        ADD_FAILURE() << "cannot reopen " << databaseName().toStdString() << ": "
                      << describe(opened.status());
        return nullptr;
    }
    return std::move(opened.value());
}

void SmallTable::attach(mvPLXRecs &nav) const
{
    if (m_engine == Engine::FoxPro) {
        nav.setSDBFPathFileName(tableFile());
        return;
    }
    std::shared_ptr<RecordSource> rs = open(QStringLiteral("SELECT * from ") + m_content.name);
    if (!rs)
        return;
    nav.setDatabase(m_database, m_content.name, tableFile());
    nav.setRs(rs);
}

} // namespace plx::test
