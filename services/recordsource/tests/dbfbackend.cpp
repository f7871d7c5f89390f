// services/recordsource/tests/dbfbackend.cpp: writes the contract tables as FoxPro files.
#include "services/recordsource/tests/dbfbackend.h"

#include "services/recordsource/dbf/dbftable.h"

#include <QDir>

namespace plx::testing {

namespace {

DbfField dbfField(const FieldInfo &f)
{
    DbfField d;
    d.name = f.name;
    switch (f.type) {
    case FieldType::Text:
        d.type = 'C';
        d.length = f.size > 0 ? f.size : 254;
        break;
    case FieldType::Memo:
    case FieldType::Binary:
        d.type = 'M';
        d.length = 10;
        break;
    case FieldType::Integer:
        d.type = 'N';
        d.length = 11;
        break;
    case FieldType::Numeric:
        d.type = 'N';
        d.length = f.size > 0 ? f.size : 12;
        d.decimals = f.decimals;
        break;
    case FieldType::Double:
        d.type = 'F';
        d.length = 20;
        d.decimals = 6;
        break;
    case FieldType::Boolean:
        d.type = 'L';
        d.length = 1;
        break;
    case FieldType::Date:
    case FieldType::DateTime:
        d.type = 'D';
        d.length = 8;
        break;
    }
    return d;
}

class DbfBackEnd final : public BackEnd
{
public:
    QString name() const override { return QStringLiteral("FoxPro"); }

    Status createTables(const QString &dir, const QList<TableDef> &tables) const override
    {
        for (const TableDef &t : tables) {
            QList<DbfField> fields;
            for (const FieldInfo &f : t.fields)
                fields << dbfField(f);
            Result<std::unique_ptr<DbfTable>> table =
                DbfTable::create(QDir(dir).filePath(t.name + QStringLiteral(".DBF")), fields);
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

    Result<std::unique_ptr<Database>> open(const QString &dir) const override
    {
        return OpenDatabase(dir, false, false, QStringLiteral("FoxPro 2.6"));
    }
};

} // namespace

std::shared_ptr<BackEnd> makeDbfBackEnd()
{
    return std::make_shared<DbfBackEnd>();
}

} // namespace plx::testing
