// services/recordsource/dbf/dbfcreate.cpp: creating an empty FoxPro 2.x table.
//
// Used by tests, the benchmark generator and hosts that make scratch tables. The header is
// what FoxPro 2.6 writes: 32 + 32 x fields + 1 bytes, field displacements filled in, the
// code page mark, then the end-of-file mark 0x1A right after the header.
#include "services/recordsource/dbf/internal/dbftable.h"

#include "services/codepages.h"
#include "services/recordsource/dbf/dbfio_p.h"
#include "services/recordsource/dbf/dbfmemo_p.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <cstring>

namespace plx {

namespace {

Status badField(const DbfField &f, const QString &problem)
{
    return Status(Status::Code::InvalidArgument,
                  QStringLiteral("field %1: %2").arg(f.name, problem));
}

bool validName(const QString &name)
{
    if (name.isEmpty() || name.size() > 10 || !name.at(0).isLetter() || name.at(0).unicode() > 0x7F)
        return false;
    for (QChar c : name) {
        const char16_t u = c.unicode();
        if (!((u >= 'A' && u <= 'Z') || (u >= '0' && u <= '9') || u == '_'))
            return false;
    }
    return true;
}

// Checks one field and fixes the widths FoxPro fixes (D 8, L 1, M/G/P 10).
Status normaliseField(DbfField &f)
{
    f.name = f.name.toUpper();
    if (!validName(f.name))
        return badField(f,
                        QStringLiteral("the name must be 1 to 10 letters, digits or _, "
                                       "starting with a letter"));
    switch (f.type) {
    case 'C':
        if (f.length < 1 || f.length > 254)
            return badField(f, QStringLiteral("a character field holds 1 to 254 bytes"));
        f.decimals = 0;
        break;
    case 'N':
    case 'F':
        if (f.length < 1 || f.length > 20 || f.decimals < 0
            || (f.decimals > 0 && f.decimals > f.length - 2))
            return badField(f,
                            QStringLiteral("a numeric field is 1 to 20 wide with room for "
                                           "the point and its decimals"));
        break;
    case 'D': f.length = 8, f.decimals = 0; break;
    case 'L': f.length = 1, f.decimals = 0; break;
    case 'M':
    case 'G':
    case 'P': f.length = 10, f.decimals = 0; break;
    default: return badField(f, QStringLiteral("the type cannot be created"));
    }
    f.flags = 0;
    return Status::ok();
}

QByteArray headerBytes(const QList<DbfField> &fields, quint8 version, quint8 mark, int recLen)
{
    const int headerLength = 32 + 32 * int(fields.size()) + 1;
    QByteArray h(headerLength + 1, '\0');
    const QDate today = QDate::currentDate();
    h[0] = char(version);
    h[1] = char(today.year() % 100);
    h[2] = char(today.month());
    h[3] = char(today.day());
    h[8] = char(headerLength & 0xFF);
    h[9] = char(headerLength >> 8);
    h[10] = char(recLen & 0xFF);
    h[11] = char(recLen >> 8);
    h[29] = char(mark);
    for (int i = 0; i < fields.size(); ++i) {
        const DbfField &f = fields[i];
        char *d = h.data() + 32 + 32 * qsizetype(i);
        const QByteArray name = f.name.toLatin1();
        std::memcpy(d, name.constData(), size_t(name.size()));
        d[11] = f.type;
        dbfio::putLe32(d + 12, quint32(f.offset));
        d[16] = char(f.length);
        d[17] = char(f.decimals);
    }
    h[headerLength - 1] = 0x0D;
    h[headerLength] = 0x1A;
    return h;
}

} // namespace

Result<std::unique_ptr<DbfTable>> DbfTable::create(const QString &path,
                                                   const QList<DbfField> &fieldList, quint8 version,
                                                   int codePage)
{
    if (QFileInfo::exists(path))
        return dbfio::fileError(Status::Code::InvalidArgument, path,
                                QStringLiteral("the file already exists"));
    const quint8 mark = codepages::markForCodePage(codePage);
    if (mark == 0 || !codepages::isSupported(codePage))
        return Status(Status::Code::InvalidArgument,
                      QStringLiteral("code page %1 has no FoxPro mark").arg(codePage));
    if (fieldList.isEmpty() || fieldList.size() > 255)
        return Status(Status::Code::InvalidArgument, QStringLiteral("a table has 1 to 255 fields"));
    QList<DbfField> fields = fieldList;
    QSet<QString> names;
    int offset = 1;
    bool hasMemo = false;
    for (DbfField &f : fields) {
        Status s = normaliseField(f);
        if (!s.isOk())
            return s;
        if (names.contains(f.name))
            return badField(f, QStringLiteral("the name is used twice"));
        names.insert(f.name);
        f.offset = offset;
        offset += f.length;
        hasMemo = hasMemo || f.type == 'M' || f.type == 'G' || f.type == 'P';
    }
    if (offset > 65535)
        return Status(Status::Code::InvalidArgument, QStringLiteral("the record is too long"));
    if (version == 0)
        version = hasMemo ? 0xF5 : 0x03;
    if (version != 0x03 && version != 0xF5 && version != 0x83)
        return Status(Status::Code::InvalidArgument,
                      QStringLiteral("tables are created as version 0x03, 0xF5 or 0x83"));
    if (version == 0x03 && hasMemo)
        return Status(Status::Code::InvalidArgument,
                      QStringLiteral("version 0x03 tables have no memo fields"));
    if (hasMemo) {
        const bool upper = QFileInfo(path).suffix().isUpper();
        const QString ext = version == 0x83 ? QStringLiteral(".dbt") : QStringLiteral(".fpt");
        const QFileInfo info(path);
        const QString memoPath =
            info.dir().filePath(info.completeBaseName() + (upper ? ext.toUpper() : ext));
        Status s =
            DbfMemoFile::create(memoPath, version == 0x83 ? DbfMemoKind::Dbt3 : DbfMemoKind::Fpt);
        if (!s.isOk())
            return s;
    }
    QFile file(path);
    const QByteArray header = headerBytes(fields, version, mark, offset);
    if (!file.open(QIODevice::NewOnly | QIODevice::WriteOnly)
        || file.write(header) != header.size())
        return dbfio::fileError(
            Status::Code::IoError, path,
            QStringLiteral("cannot create the table: %1").arg(file.errorString()));
    file.close();
    return open(path, OpenMode::ReadWrite, codePage);
}

} // namespace plx
