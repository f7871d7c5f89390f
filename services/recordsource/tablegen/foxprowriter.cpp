// services/recordsource/tablegen/foxprowriter.cpp: the benchmark table through the FoxPro
// table file layer.
#include "services/recordsource/tablegen/foxprowriter.h"

#include "services/recordsource/tablegen/benchtable.h"
#include "services/recordsource/dbf/internal/dbftable.h"
#include "services/recordsource/foxpro/internal/fieldmapping.h"

#include <QDir>
#include <QFile>

namespace plx::bench {

bool isDeletedBenchRecord(qint64 recno)
{
    return recno % 33 == 17; // 1 in 33: about 3 %
}

Status writeFoxProBenchTable(const QString &dir, const QString &table, qint64 rows)
{
    if (!QDir().mkpath(dir))
        return Status(Status::Code::IoError, QStringLiteral("cannot create %1").arg(dir));
    const QString path = QDir(dir).filePath(table + QStringLiteral(".DBF"));
    for (const QString &suffix : { QStringLiteral(".DBF"), QStringLiteral(".FPT") })
        QFile::remove(QDir(dir).filePath(table + suffix));
    QList<DbfField> fields;
    for (const FieldInfo &f : benchTableFields())
        fields << foxpro::dbfFieldFor(f);
    Result<std::unique_ptr<DbfTable>> created = DbfTable::create(path, fields, 0xF5, 1252);
    if (!created.isOk())
        return created.status();
    DbfTable &t = *created.value();
    // One sync at the end instead of one per record: nobody else has the file yet.
    t.setDurable(false);
    BenchTableGenerator generator;
    for (qint64 i = 1; i <= rows; ++i) {
        Result<quint32> recno = t.appendRecord(generator.next());
        if (!recno.isOk())
            return recno.status();
        if (isDeletedBenchRecord(i)) {
            if (Status s = t.setDeleted(recno.value(), true); !s.isOk())
                return s;
        }
    }
    t.setDurable(true);
    return Status::ok();
}

} // namespace plx::bench
