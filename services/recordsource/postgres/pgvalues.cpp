// services/recordsource/postgres/pgvalues.cpp: field types and values.
#include "services/recordsource/postgres/pgvalues_p.h"

#include <QDate>
#include <QDateTime>

namespace plx::postgres {

namespace {

// The built-in type OIDs the engine maps (pg_type.h is not part of libpq's headers).
enum TypeOid : unsigned {
    Bool = 16,
    Bytea = 17,
    Int8 = 20,
    Int2 = 21,
    Int4 = 23,
    Text = 25,
    Float4 = 700,
    Float8 = 701,
    Bpchar = 1042,
    Varchar = 1043,
    Date = 1082,
    Timestamp = 1114,
    TimestampTz = 1184,
    Numeric = 1700,
};

constexpr int kVarHeader = 4; // atttypmod counts the varlena header

Status mismatch(const QVariant &value, const FieldInfo &field)
{
    return Status(
        Status::Code::TypeMismatch,
        QStringLiteral("%1 cannot hold the value '%2'").arg(field.name, value.toString()));
}

} // namespace

FieldInfo fieldInfoForType(const QString &name, unsigned typeOid, int typmod)
{
    FieldInfo f{ name, FieldType::Text, 0, 0 };
    switch (typeOid) {
    case Bool:
        f.type = FieldType::Boolean;
        f.size = 1;
        break;
    case Bytea: f.type = FieldType::Binary; break;
    case Int2:
    case Int4:
    case Int8:
        f.type = FieldType::Integer;
        f.size = typeOid == Int8 ? 8 : 4;
        break;
    case Float4:
    case Float8:
        f.type = FieldType::Double;
        f.size = 8;
        break;
    case Date:
        f.type = FieldType::Date;
        f.size = 8;
        break;
    case Timestamp:
    case TimestampTz:
        f.type = FieldType::DateTime;
        f.size = 8;
        break;
    case Numeric:
        f.type = typmod >= kVarHeader ? FieldType::Numeric : FieldType::Double;
        f.size = typmod >= kVarHeader ? ((typmod - kVarHeader) >> 16) & 0xffff : 8;
        f.decimals = typmod >= kVarHeader ? (typmod - kVarHeader) & 0xffff : 0;
        break;
    case Bpchar:
    case Varchar:
        f.size = typmod >= kVarHeader ? typmod - kVarHeader : 0;
        f.type = f.size > 0 ? FieldType::Text : FieldType::Memo;
        break;
    default: f.type = FieldType::Memo; break; // text and anything else read as its text
    }
    return f;
}

QString declaredTypeFor(const FieldInfo &field)
{
    switch (field.type) {
    case FieldType::Text:
        return QStringLiteral("varchar(%1) COLLATE %2.nocase")
            .arg(qMax(1, field.size))
            .arg(EngineSchema);
    case FieldType::Memo: return QStringLiteral("text COLLATE %1.nocase").arg(EngineSchema);
    case FieldType::Integer: return QStringLiteral("integer");
    case FieldType::Numeric:
        return QStringLiteral("numeric(%1,%2)").arg(qMax(1, field.size)).arg(field.decimals);
    case FieldType::Double: return QStringLiteral("double precision");
    case FieldType::Boolean: return QStringLiteral("boolean");
    case FieldType::Date: return QStringLiteral("date");
    case FieldType::DateTime: return QStringLiteral("timestamp");
    case FieldType::Binary: return QStringLiteral("bytea");
    }
    return QStringLiteral("text");
}

QVariant valueOf(const PgResult &result, int row, int column, const FieldInfo &field)
{
    if (result.isNull(row, column))
        return {};
    const QString text = result.text(row, column);
    switch (field.type) {
    case FieldType::Boolean: return text == QLatin1String("t");
    case FieldType::Integer: return text.toLongLong();
    case FieldType::Numeric:
    case FieldType::Double: return text.toDouble();
    case FieldType::Date: return QDate::fromString(text, Qt::ISODate);
    case FieldType::DateTime: return QDateTime::fromString(text, Qt::ISODate);
    case FieldType::Binary:
        return QByteArray::fromHex(result.bytes(row, column).mid(2)); // "\x..." hex form
    case FieldType::Text:
    case FieldType::Memo: break;
    }
    return text;
}

Result<PgParam> paramFor(const QVariant &value, const FieldInfo &field)
{
    if (!value.isValid() || value.isNull())
        return PgParam();
    bool ok = true;
    switch (field.type) {
    case FieldType::Boolean: {
        if (value.typeId() == QMetaType::QString) {
            const QString t = value.toString().trimmed().toLower();
            if (t == QLatin1String("true") || t == QLatin1String("yes"))
                return PgParam(QByteArrayLiteral("t"));
            if (t == QLatin1String("false") || t == QLatin1String("no"))
                return PgParam(QByteArrayLiteral("f"));
        }
        const double d = value.toDouble(&ok);
        if (!ok)
            return mismatch(value, field);
        return PgParam(d != 0 ? QByteArrayLiteral("t") : QByteArrayLiteral("f"));
    }
    case FieldType::Integer:
    case FieldType::Numeric:
    case FieldType::Double: {
        const double d = value.toDouble(&ok);
        if (!ok)
            return mismatch(value, field);
        return PgParam(QByteArray::number(d, 'g', 17));
    }
    case FieldType::Date:
    case FieldType::DateTime: {
        const QDateTime dt = value.toDateTime();
        if (!dt.isValid())
            return mismatch(value, field);
        return PgParam(field.type == FieldType::Date
                           ? dt.date().toString(Qt::ISODate).toUtf8()
                           : dt.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz")).toUtf8());
    }
    case FieldType::Binary: return PgParam(QByteArrayLiteral("\\x") + value.toByteArray().toHex());
    case FieldType::Text:
    case FieldType::Memo: break;
    }
    return PgParam(value.toString().toUtf8());
}

} // namespace plx::postgres
