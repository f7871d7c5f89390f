// services/recordsource/foxpro/foxprodatabase.cpp: the FoxPro directory as a Database.
#include "services/recordsource/foxpro/foxprodatabase.h"

#include "services/recordsource/foxpro/foxprorecordsource.h"

#include <QDir>
#include <QFileInfo>

namespace plx::foxpro {

namespace {

class FoxProDatabase final : public Database
{
public:
    FoxProDatabase(QString directory, bool readOnly)
        : m_dir(std::move(directory)), m_readOnly(readOnly)
    {
    }

    Result<std::unique_ptr<RecordSource>> OpenRecordset(const QString &tableOrSql) override
    {
        if (m_closed)
            return Status(Status::Code::InvalidArgument, QStringLiteral("the database is closed"));
        return FoxProRecordSource::open([this](const QString &name) { return tablePath(name); },
                                        tableOrSql, m_readOnly);
    }

    void Idle() override { }

    QStringList tableNames() const override
    {
        QStringList names;
        const QFileInfoList files = QDir(m_dir).entryInfoList(QDir::Files);
        for (const QFileInfo &f : files) {
            if (f.suffix().compare(QLatin1String("dbf"), Qt::CaseInsensitive) == 0)
                names << f.completeBaseName();
        }
        return names;
    }

    TextCompare textCompare() const override { return TextCompare::Binary; }
    void Close() override { m_closed = true; }

private:
    // The file of a table, its title matched without regard to case; empty when none.
    QString tablePath(const QString &name) const
    {
        const QFileInfoList files = QDir(m_dir).entryInfoList(QDir::Files);
        for (const QFileInfo &f : files) {
            if (f.suffix().compare(QLatin1String("dbf"), Qt::CaseInsensitive) == 0
                && f.completeBaseName().compare(name.trimmed(), Qt::CaseInsensitive) == 0)
                return f.absoluteFilePath();
        }
        return QString();
    }

    QString m_dir;
    bool m_readOnly;
    bool m_closed = false;
};

} // namespace

Result<std::unique_ptr<Database>> openDatabase(const QString &directory, bool readOnly)
{
    const QFileInfo info(directory);
    if (!info.isDir())
        return Status(Status::Code::NotFound,
                      QStringLiteral("%1 is not a directory of FoxPro tables").arg(directory));
    return std::unique_ptr<Database>(new FoxProDatabase(info.absoluteFilePath(), readOnly));
}

} // namespace plx::foxpro
