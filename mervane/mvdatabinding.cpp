// mervane/mvdatabinding.cpp
#include "mervane/mvdatabinding.h"

#include "services/recordsource/querytext.h"

#include "services/codepages.h"
#include "services/paths.h"

#include <QFile>
#include <QFileInfo>

namespace plx {

namespace {

// Byte 29 of a FoxPro table header names its code page; unmarked tables are read as
// Windows-1252 by the back end, so that is what they can store.
int codePageOfTableFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray header = file.read(32);
    if (header.size() < 32)
        return 0;
    const int cp = plx::codepages::codePageForMark(quint8(header.at(29)));
    return cp != 0 ? cp : 1252;
}

} // namespace

mvDataBinding::mvDataBinding(QObject *parent) : QObject(parent) { }

mvDataBinding::~mvDataBinding()
{
    Disconnect();
}

void mvDataBinding::setRecordSet(std::shared_ptr<plx::RecordSource> source)
{
    if (source == m_rs)
        return;
    if (m_ownsSource && m_rs && m_rs.use_count() == 1)
        m_rs->Close();
    m_rs = std::move(source);
    m_ownsSource = false;
    m_ownDb.reset();
    m_resolvedFor = nullptr;
}

void mvDataBinding::setSFieldName(const QString &name)
{
    m_fieldName = name;
    m_resolvedFor = nullptr;
}

void mvDataBinding::setDBFPathFileName(const QString &path)
{
    m_path = path;
    const QString onDisk = plx::toDiskPath(path);
    m_codePage = QFileInfo::exists(onDisk) ? codePageOfTableFile(onDisk) : 0;
}

QString mvDataBinding::Connect()
{
    if (m_path.trimmed().isEmpty())
        return QStringLiteral("no table file is set");
    const QFileInfo file(plx::toDiskPath(m_path));
    const QString dir = file.absolutePath();
    QString table = m_tableName.trimmed();
    if (table.isEmpty())
        table = file.completeBaseName();
    auto db = plx::OpenDatabase(dir, false, false, QStringLiteral("FoxPro 2.6;"));
    if (!db.isOk())
        return db.status().message();
    const plx::QueryText sql(table);
    auto rs = db.value()->OpenRecordset(m_filter.trimmed().isEmpty() ? sql.selectAll()
                                                                     : sql.selectWhere(m_filter));
    if (!rs.isOk())
        return rs.status().message();
    setRecordSet(std::shared_ptr<plx::RecordSource>(std::move(rs).value()));
    m_ownDb = std::shared_ptr<plx::Database>(std::move(db).value());
    m_ownsSource = true;
    return QString();
}

void mvDataBinding::Disconnect()
{
    // Only a source this binding opened is closed; one handed over by the navigator or
    // shared from row 0 belongs to someone else and is merely let go.
    if (m_ownsSource && m_rs && m_rs.use_count() == 1)
        m_rs->Close();
    m_rs.reset();
    m_ownDb.reset();
    m_ownsSource = false;
    m_resolvedFor = nullptr;
}

void mvDataBinding::resolveField() const
{
    if (m_resolvedFor == m_rs.get() && m_rs)
        return;
    m_resolvedFor = m_rs.get();
    m_index =
        m_rs && !m_fieldName.trimmed().isEmpty() ? m_rs->fieldIndex(m_fieldName.trimmed()) : -1;
    m_info = m_index >= 0 ? m_rs->fieldInfos().at(m_index) : plx::FieldInfo{};
}

int mvDataBinding::fieldIndex() const
{
    resolveField();
    return m_index;
}

const plx::FieldInfo &mvDataBinding::fieldInfo() const
{
    resolveField();
    return m_info;
}

} // namespace plx
