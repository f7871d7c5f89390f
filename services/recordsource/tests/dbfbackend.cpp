// services/recordsource/tests/dbfbackend.cpp: writes the contract tables as FoxPro files.
#include "services/recordsource/tests/dbfbackend.h"

#include "services/recordsource/dbf/internal/dbftable.h"
#include "services/recordsource/foxpro/internal/fieldmapping.h"

#include <QDir>

namespace plx::testing {

namespace {

class DbfBackEnd final : public BackEnd
{
public:
    explicit DbfBackEnd(int codePage) : m_codePage(codePage) { }

    QString name() const override { return QStringLiteral("FoxPro"); }

    Status createTables(const QString &dir, const QList<TableDef> &tables) const override
    {
        for (const TableDef &t : tables) {
            QList<DbfField> fields;
            for (const FieldInfo &f : t.fields)
                fields << foxpro::dbfFieldFor(f);
            Result<std::unique_ptr<DbfTable>> table = DbfTable::create(
                QDir(dir).filePath(t.name + QStringLiteral(".DBF")), fields, 0, m_codePage);
            if (!table.isOk())
                return table.status();
            table.value()->setDurable(false); // set-up only; the tests check durability elsewhere
            for (const QVariantList &row : t.rows) {
                Result<quint32> added = table.value()->appendRecord(row);
                if (!added.isOk())
                    return added.status();
            }
        }
        return Status::ok();
    }

    Result<std::unique_ptr<Database>> open(const QString &dir, bool readOnly) const override
    {
        return OpenDatabase(dir, false, readOnly, QStringLiteral("FoxPro 2.6"));
    }

    QString tableFile(const QString &dir, const QString &table) const override
    {
        return QDir(dir).filePath(table + QStringLiteral(".DBF"));
    }

private:
    int m_codePage;
};

} // namespace

std::shared_ptr<BackEnd> makeDbfBackEnd(int codePage)
{
    return std::make_shared<DbfBackEnd>(codePage);
}

} // namespace plx::testing
