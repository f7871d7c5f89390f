// services/recordsource/dbf/dbfvalue.cpp: decoding and encoding field values.
#include "services/recordsource/dbf/dbfvalue_p.h"

#include "services/codepages.h"
#include "services/recordsource/dbf/dbfio_p.h"
#include "services/recordsource/dbf/dbfmemo_p.h"

#include <QDateTime>

#include <cmath>
#include <cstring>

namespace plx {

namespace dbfvalue {

namespace {

QByteArrayView trimmed(const char *p, int length)
{
    int begin = 0;
    while (begin < length && (p[begin] == ' ' || p[begin] == '\0'))
        ++begin;
    int end = length;
    while (end > begin && (p[end - 1] == ' ' || p[end - 1] == '\0'))
        --end;
    return QByteArrayView(p + begin, end - begin);
}

QVariant decodeNumber(const DbfField &f, const char *p)
{
    QByteArray text = trimmed(p, f.length).toByteArray();
    if (text.isEmpty() || text.contains('*'))
        return {}; // blank, or Harbour's overflow mark
    text.replace(',', '.');
    bool ok = false;
    if (f.decimals == 0 && !text.contains('.') && !text.contains('E') && !text.contains('e')) {
        const qint64 v = text.toLongLong(&ok);
        if (ok)
            return v;
    }
    const double d = text.toDouble(&ok);
    return ok ? QVariant(d) : QVariant();
}

QVariant decodeDate(const char *p)
{
    const QByteArrayView t = trimmed(p, 8);
    if (t.isEmpty() || t == QByteArrayView("00000000"))
        return {};
    int parts[3] = { 0, 0, 0 }; // year, month, day from YYYYMMDD
    const int widths[3] = { 4, 2, 2 };
    for (int part = 0, i = 0; part < 3; ++part) {
        for (int w = 0; w < widths[part]; ++w, ++i) {
            if (p[i] < '0' || p[i] > '9')
                return {};
            parts[part] = parts[part] * 10 + (p[i] - '0');
        }
    }
    const QDate d(parts[0], parts[1], parts[2]);
    return d.isValid() ? QVariant(d) : QVariant();
}

QVariant decodeLogical(char c)
{
    switch (c) {
    case 'T':
    case 't':
    case 'Y':
    case 'y': return true;
    case 'F':
    case 'f':
    case 'N':
    case 'n': return false;
    default: return {};
    }
}

QVariant decodeDateTime(const char *p)
{
    const quint32 day = dbfio::le32(p);
    const quint32 ms = dbfio::le32(p + 4);
    if (day == 0 && ms == 0)
        return {};
    const QDate d = QDate::fromJulianDay(day);
    const QTime time = QTime::fromMSecsSinceStartOfDay(int(ms % 86400000u));
    return d.isValid() ? QVariant(QDateTime(d, time)) : QVariant();
}

qint64 le64(const char *p)
{
    quint64 v = 0;
    for (int i = 7; i >= 0; --i)
        v = (v << 8) | static_cast<unsigned char>(p[i]);
    return qint64(v);
}

} // namespace

QVariant decodeInline(const DbfField &field, const char *bytes, int codePage)
{
    switch (field.type) {
    case 'C':
    case 'V': {
        qsizetype n = field.length;
        while (n > 0 && (bytes[n - 1] == ' ' || bytes[n - 1] == '\0'))
            --n;
        return codepages::decode(codePage, QByteArrayView(bytes, n));
    }
    case 'N':
    case 'F': return decodeNumber(field, bytes);
    case 'D': return decodeDate(bytes);
    case 'L': return field.length > 0 ? decodeLogical(bytes[0]) : QVariant();
    case 'I': return int(qint32(dbfio::le32(bytes)));
    case 'B': {
        double d;
        std::memcpy(&d, bytes, 8); // little-endian hosts only, as every platform we build for
        return d;
    }
    case 'Y': return double(le64(bytes)) / 10000.0;
    case 'T': return decodeDateTime(bytes);
    case 'Q': return QByteArray(bytes, field.length);
    default: return {};
    }
}

quint32 memoBlock(const DbfField &field, const char *bytes)
{
    if (field.length == 4)
        return dbfio::le32(bytes);
    const QByteArrayView t = trimmed(bytes, field.length);
    quint64 v = 0;
    for (char c : t) {
        if (c < '0' || c > '9')
            return 0;
        v = v * 10 + quint64(c - '0');
        if (v > 0xFFFFFFFFu)
            return 0;
    }
    return quint32(v);
}

void putMemoBlock(const DbfField &f, quint32 block, char *dst)
{
    std::memset(dst, ' ', size_t(f.length));
    if (block == 0)
        return;
    const QByteArray digits = QByteArray::number(block).rightJustified(f.length, ' ');
    std::memcpy(dst, digits.constData(), size_t(qMin<qsizetype>(digits.size(), f.length)));
}

bool isMemo(const DbfField &f)
{
    return f.type == 'M' || f.type == 'G' || f.type == 'P' || f.type == 'W'
        || (f.type == 'B' && f.length == 10);
}

quint32 memoType(const DbfField &f)
{
    return f.type == 'G' ? 2 : f.type == 'P' ? 0 : 1;
}

Result<QByteArray> memoBytes(const DbfField &f, const QVariant &value, int codePage)
{
    if (value.isNull() || !value.isValid())
        return QByteArray();
    if (value.typeId() == QMetaType::QByteArray)
        return value.toByteArray();
    if (f.type != 'M')
        return Status(Status::Code::TypeMismatch,
                      QStringLiteral("field %1 holds binary data; give it bytes").arg(f.name));
    auto bytes = codepages::encode(codePage, value.toString());
    if (!bytes)
        return Status(Status::Code::InvalidArgument,
                      QStringLiteral("the text for field %1 has characters that code page %2 "
                                     "cannot hold")
                          .arg(f.name)
                          .arg(codePage));
    return *bytes;
}

} // namespace dbfvalue

Result<QVariant> DbfTable::value(quint32 recno, int field) const
{
    const char *rec = recordBytes(recno);
    if (!rec)
        return Status(Status::Code::NotFound,
                      QStringLiteral("record %1 is not in the table").arg(recno));
    if (field < 0 || field >= m_fields.size())
        return Status(Status::Code::NotFound, QStringLiteral("no field %1").arg(field));
    const DbfField &f = m_fields[field];
    if (f.nullBit >= 0 && m_nullFlagsOffset >= 0) {
        const auto flags = static_cast<unsigned char>(rec[m_nullFlagsOffset + f.nullBit / 8]);
        if (flags & (1u << (f.nullBit % 8)))
            return QVariant();
    }
    if (!dbfvalue::isMemo(f))
        return dbfvalue::decodeInline(f, rec + f.offset, m_header.codePage);
    const quint32 block = dbfvalue::memoBlock(f, rec + f.offset);
    const bool text = f.type == 'M' && !(f.flags & 0x04);
    if (block == 0)
        return text ? QVariant(QString()) : QVariant();
    if (!m_memo)
        return dbfio::fileError(
            Status::Code::Corrupt, m_path,
            QStringLiteral("the memo file is missing, field %1 cannot be read").arg(f.name));
    auto data = m_memo->read(block);
    if (!data.isOk())
        return data.status();
    if (!text)
        return QVariant(*data);
    return QVariant(codepages::decode(m_header.codePage, *data));
}

Result<QVariantList> DbfTable::record(quint32 recno) const
{
    QVariantList values;
    values.reserve(m_fields.size());
    for (int i = 0; i < m_fields.size(); ++i) {
        auto v = value(recno, i);
        if (!v.isOk())
            return v.status();
        values.append(*v);
    }
    return values;
}

QString DbfTable::decode(QByteArrayView bytes) const
{
    return codepages::decode(m_header.codePage, bytes);
}

Result<QByteArray> DbfTable::encode(const QString &text) const
{
    auto bytes = codepages::encode(m_header.codePage, text);
    if (!bytes)
        return Status(Status::Code::InvalidArgument,
                      QStringLiteral("the text has characters that code page %1 cannot hold")
                          .arg(m_header.codePage));
    return *bytes;
}

} // namespace plx
