// services/recordsource/dbf/dbfinfo.cpp: how a table describes itself: the record-source
// field types of its fields and the header description shown by plxsql --info.
#include "services/recordsource/dbf/internal/dbftable.h"

#include <QFileInfo>

namespace plx {

namespace {

QString versionName(quint8 version)
{
    switch (version) {
    case 0x03: return QStringLiteral("FoxBASE+/FoxPro/dBASE III PLUS, no memo");
    case 0x83: return QStringLiteral("FoxBASE+/dBASE III PLUS with .DBT memo");
    case 0x8B: return QStringLiteral("dBASE IV with .DBT memo");
    case 0xF5: return QStringLiteral("FoxPro 2.x with .FPT memo");
    case 0x30: return QStringLiteral("Visual FoxPro");
    case 0x31: return QStringLiteral("Visual FoxPro with autoincrement");
    case 0x32: return QStringLiteral("Visual FoxPro with varchar/varbinary");
    default: return QStringLiteral("unknown");
    }
}

QString hex2(quint8 v)
{
    return QStringLiteral("0x%1").arg(
        QString::number(v, 16).toUpper().rightJustified(2, QLatin1Char('0')));
}

} // namespace

FieldInfo DbfField::info() const
{
    FieldInfo fi;
    fi.name = name;
    fi.size = length;
    switch (type) {
    case 'C':
    case 'V': fi.type = FieldType::Text; break;
    case 'N':
    case 'F':
        fi.type = FieldType::Numeric;
        fi.decimals = decimals;
        break;
    case 'D': fi.type = FieldType::Date; break;
    case 'L': fi.type = FieldType::Boolean; break;
    case 'M': fi.type = FieldType::Memo; break;
    case 'I': fi.type = FieldType::Integer; break;
    case 'B': fi.type = length == 8 ? FieldType::Double : FieldType::Binary; break;
    case 'Y':
        fi.type = FieldType::Numeric;
        fi.decimals = 4;
        break;
    case 'T': fi.type = FieldType::DateTime; break;
    default: fi.type = FieldType::Binary; break;
    }
    return fi;
}

QString DbfTable::infoText() const
{
    quint32 live = 0;
    for (quint32 r = 1; r <= m_count; ++r)
        live += isDeleted(r) ? 0 : 1;
    QStringList lines;
    lines << QStringLiteral("Table: %1").arg(QFileInfo(m_path).fileName());
    lines << QStringLiteral("Version byte: %1 (%2)")
                 .arg(hex2(m_header.version), versionName(m_header.version));
    lines << QStringLiteral("Code page: %1 (mark %2%3)")
                 .arg(m_header.codePage)
                 .arg(hex2(m_header.codePageMark),
                      m_header.codePageMark ? QString() : QStringLiteral(", unmarked"));
    lines << QStringLiteral("Last update: %1").arg(m_header.lastUpdate.toString(Qt::ISODate));
    lines << QStringLiteral("Records: %1 physical, %2 live, %3 deleted (header count %4)")
                 .arg(m_count)
                 .arg(live)
                 .arg(m_count - live)
                 .arg(m_header.headerCount);
    lines << QStringLiteral("Header length: %1").arg(m_header.headerLength);
    lines << QStringLiteral("Record length: %1").arg(m_header.recordLength);
    if (m_header.structuralIndex)
        lines << (m_index && isWritable()
                      ? QStringLiteral("Structural index: yes (.CDX), kept up to date")
                      : QStringLiteral("Structural index: yes (.CDX), read only"));
    lines << QStringLiteral("Fields: %1").arg(m_fields.size());
    for (const DbfField &f : m_fields) {
        QString shape = QString::number(f.length);
        if (f.decimals > 0)
            shape += QLatin1Char(',') + QString::number(f.decimals);
        lines << QStringLiteral("  %1 %2(%3)")
                     .arg(f.name.leftJustified(10), QChar::fromLatin1(f.type), shape);
    }
    for (const QString &w : m_warnings)
        lines << QStringLiteral("Warning: %1").arg(w);
    return lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

} // namespace plx
