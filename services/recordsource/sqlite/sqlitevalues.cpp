// services/recordsource/sqlite/sqlitevalues.cpp: declared types, reading and binding values.
#include "services/recordsource/sqlite/internal/sqlitevalues.h"

#include <QDate>
#include <QDateTime>
#include <QRegularExpression>

#include <sqlite3.h>

#include <cmath>

namespace plx::sqlite {

namespace {

const QString IsoDate = QStringLiteral("yyyy-MM-dd");
const QString IsoDateTime = QStringLiteral("yyyy-MM-dd hh:mm:ss");

// Jet's widest Text field; a TEXT column without a width can hold this much in Jet terms.
constexpr int UnsizedTextWidth = 255;

FieldInfo typedField(const QString &name, FieldType type, int size, int decimals = 0)
{
    return FieldInfo{ name, type, size, decimals };
}

QString textOf(sqlite3_stmt *stmt, int column)
{
    const auto *text = reinterpret_cast<const char *>(sqlite3_column_text(stmt, column));
    return QString::fromUtf8(text, sqlite3_column_bytes(stmt, column));
}

QVariant byStorageClass(sqlite3_stmt *stmt, int column)
{
    switch (sqlite3_column_type(stmt, column)) {
    case SQLITE_INTEGER: return QVariant(qlonglong(sqlite3_column_int64(stmt, column)));
    case SQLITE_FLOAT: return QVariant(sqlite3_column_double(stmt, column));
    case SQLITE_BLOB:
        return QVariant(QByteArray(static_cast<const char *>(sqlite3_column_blob(stmt, column)),
                                   sqlite3_column_bytes(stmt, column)));
    default: return QVariant(textOf(stmt, column));
    }
}

int digitsAt(const QString &text, int from, int count)
{
    int value = 0;
    for (int i = from; i < from + count; ++i) {
        const char16_t c = text.at(i).unicode();
        if (c < u'0' || c > u'9')
            return -1;
        value = value * 10 + (c - u'0');
    }
    return value;
}

// Every record read parses its dates, so the stored ISO form is read by hand; QDate's
// format parser is several times slower.
QDate parseIsoDate(const QString &text)
{
    if (text.size() < 10 || text.at(4) != QLatin1Char('-') || text.at(7) != QLatin1Char('-'))
        return {};
    const int y = digitsAt(text, 0, 4), m = digitsAt(text, 5, 2), d = digitsAt(text, 8, 2);
    return y < 0 || m < 0 || d < 0 ? QDate() : QDate(y, m, d);
}

QDate parseDate(const QString &text)
{
    QDate d = parseIsoDate(text);
    if (d.isValid())
        return d;
    d = QDate::fromString(text.left(10), IsoDate);
    if (!d.isValid())
        d = QDate::fromString(text.trimmed(), QStringLiteral("M/d/yyyy"));
    return d;
}

QDateTime parseDateTime(const QString &text)
{
    const QDate day = parseIsoDate(text);
    if (day.isValid() && text.size() == 19 && text.at(13) == QLatin1Char(':')
        && text.at(16) == QLatin1Char(':')) {
        const QTime time(digitsAt(text, 11, 2), digitsAt(text, 14, 2), digitsAt(text, 17, 2));
        if (time.isValid())
            return QDateTime(day, time);
    }
    QString t = text.trimmed();
    t.replace(QLatin1Char('T'), QLatin1Char(' '));
    QDateTime dt = QDateTime::fromString(t.left(19), IsoDateTime);
    if (!dt.isValid()) {
        const QDate d = parseDate(t);
        if (d.isValid())
            dt = d.startOfDay();
    }
    if (!dt.isValid())
        dt = QDateTime::fromString(t, QStringLiteral("M/d/yyyy h:mm:ss"));
    return dt;
}

Status mismatch(const QVariant &value, const FieldInfo &field)
{
    return Status(
        Status::Code::TypeMismatch,
        QStringLiteral("the value %1 does not fit field %2").arg(value.toString(), field.name));
}

Result<QVariant> toBoolean(const QVariant &value, const FieldInfo &field)
{
    if (value.typeId() == QMetaType::Bool)
        return value;
    if (value.typeId() == QMetaType::QString) {
        const QString t = value.toString().trimmed();
        if (t.compare(QLatin1String("True"), Qt::CaseInsensitive) == 0)
            return QVariant(true);
        if (t.compare(QLatin1String("False"), Qt::CaseInsensitive) == 0)
            return QVariant(false);
    }
    bool ok = false;
    const double d = value.toDouble(&ok);
    if (!ok)
        return mismatch(value, field);
    return QVariant(d != 0.0);
}

Result<QVariant> toDateValue(const QVariant &value, const FieldInfo &field)
{
    const int id = value.typeId();
    if (field.type == FieldType::Date) {
        const QDate d = id == QMetaType::QDate ? value.toDate()
            : id == QMetaType::QDateTime       ? value.toDateTime().date()
                                               : parseDate(value.toString());
        return d.isValid() ? Result<QVariant>(QVariant(d)) : mismatch(value, field);
    }
    const QDateTime dt = id == QMetaType::QDateTime ? value.toDateTime()
        : id == QMetaType::QDate                    ? value.toDate().startOfDay()
                                                    : parseDateTime(value.toString());
    return dt.isValid() ? Result<QVariant>(QVariant(dt)) : mismatch(value, field);
}

Result<QVariant> toNumber(const QVariant &value, const FieldInfo &field)
{
    bool ok = false;
    if (field.type == FieldType::Integer) {
        const double d = value.toDouble(&ok);
        if (!ok || std::isnan(d))
            return mismatch(value, field);
        return QVariant(qlonglong(std::llround(d)));
    }
    double d = value.toDouble(&ok);
    if (!ok)
        return mismatch(value, field);
    if (field.type == FieldType::Numeric) {
        const double scale = std::pow(10.0, field.decimals);
        d = std::round(d * scale) / scale;
    }
    return QVariant(d);
}

} // namespace

QString declaredTypeFor(const FieldInfo &field)
{
    switch (field.type) {
    case FieldType::Text:
        return field.size > 0 ? QStringLiteral("CHAR(%1)").arg(field.size) : QStringLiteral("TEXT");
    case FieldType::Memo: return QStringLiteral("MEMO");
    case FieldType::Integer: return QStringLiteral("INTEGER");
    case FieldType::Numeric:
        return QStringLiteral("NUMERIC(%1,%2)").arg(field.size).arg(field.decimals);
    case FieldType::Double: return QStringLiteral("DOUBLE");
    case FieldType::Boolean: return QStringLiteral("BOOLEAN");
    case FieldType::Date: return QStringLiteral("DATE");
    case FieldType::DateTime: return QStringLiteral("DATETIME");
    case FieldType::Binary: return QStringLiteral("BLOB");
    }
    return QStringLiteral("TEXT");
}

FieldInfo fieldInfoFromDeclaredType(const QString &name, const QString &declaredType)
{
    static const QRegularExpression shape(
        QStringLiteral("^\\s*([A-Z ]*?)\\s*(?:\\(\\s*(\\d+)\\s*(?:,\\s*(\\d+)\\s*)?\\))?\\s*$"));
    const QRegularExpressionMatch m = shape.match(declaredType.toUpper());
    const QString word = m.hasMatch() ? m.captured(1) : declaredType.toUpper();
    const int width = m.captured(2).toInt();
    const int scale = m.captured(3).toInt();
    auto is = [&word](std::initializer_list<const char *> names) {
        for (const char *n : names) {
            if (word == QLatin1String(n))
                return true;
        }
        return false;
    };
    if (is({ "MEMO", "LONGTEXT", "CLOB", "NOTE", "MEDIUMTEXT" }))
        return typedField(name, FieldType::Memo, 0);
    if (word.contains(QLatin1String("CHAR")) || is({ "TEXT", "STRING", "CHARACTER" }))
        return typedField(name, FieldType::Text, width > 0 ? width : UnsizedTextWidth);
    if (is({ "BOOLEAN", "BOOL", "LOGICAL", "BIT", "YESNO" }))
        return typedField(name, FieldType::Boolean, 1);
    if (is({ "TINYINT", "BYTE" }))
        return typedField(name, FieldType::Integer, 1);
    if (is({ "SMALLINT", "SHORT" }))
        return typedField(name, FieldType::Integer, 2);
    if (is({ "BIGINT", "INT8" }))
        return typedField(name, FieldType::Integer, 8);
    if (word.contains(QLatin1String("INT")) || is({ "LONG", "COUNTER", "AUTOINCREMENT" }))
        return typedField(name, FieldType::Integer, 4);
    if (is({ "CURRENCY", "MONEY" }))
        return typedField(name, FieldType::Numeric, 19, 4);
    if (is({ "NUMERIC", "DECIMAL", "NUMBER" }))
        return typedField(name, FieldType::Numeric, width > 0 ? width : 18, scale);
    if (is({ "REAL", "DOUBLE", "DOUBLE PRECISION", "FLOAT", "SINGLE" }))
        return typedField(name, FieldType::Double, 8);
    if (is({ "DATE" }))
        return typedField(name, FieldType::Date, 8);
    if (is({ "DATETIME", "TIMESTAMP", "TIME" }))
        return typedField(name, FieldType::DateTime, 8);
    if (is({ "BLOB", "BINARY", "VARBINARY", "LONGBINARY", "IMAGE" }))
        return typedField(name, FieldType::Binary, 0);
    return typedField(name, FieldType::Text, 0);
}

QVariant readColumn(sqlite3_stmt *stmt, int column, const FieldInfo &field, bool typed)
{
    const int storage = sqlite3_column_type(stmt, column);
    if (storage == SQLITE_NULL)
        return {};
    if (!typed)
        return byStorageClass(stmt, column);
    switch (field.type) {
    case FieldType::Text:
    case FieldType::Memo: return QVariant(textOf(stmt, column));
    case FieldType::Integer:
        if (storage == SQLITE_INTEGER)
            return QVariant(qlonglong(sqlite3_column_int64(stmt, column)));
        return byStorageClass(stmt, column);
    case FieldType::Numeric:
    case FieldType::Double:
        if (storage == SQLITE_INTEGER || storage == SQLITE_FLOAT)
            return QVariant(sqlite3_column_double(stmt, column));
        return byStorageClass(stmt, column);
    case FieldType::Boolean:
        if (storage == SQLITE_INTEGER || storage == SQLITE_FLOAT)
            return QVariant(sqlite3_column_double(stmt, column) != 0.0);
        return byStorageClass(stmt, column);
    case FieldType::Date: {
        const QDate d = parseDate(textOf(stmt, column));
        return d.isValid() ? QVariant(d) : byStorageClass(stmt, column);
    }
    case FieldType::DateTime: {
        const QDateTime dt = parseDateTime(textOf(stmt, column));
        return dt.isValid() ? QVariant(dt) : byStorageClass(stmt, column);
    }
    case FieldType::Binary: return byStorageClass(stmt, column);
    }
    return byStorageClass(stmt, column);
}

Result<QVariant> normalizeValue(const QVariant &value, const FieldInfo &field)
{
    if (!value.isValid() || value.isNull())
        return QVariant();
    switch (field.type) {
    case FieldType::Text:
    case FieldType::Memo: {
        const QString text = value.toString();
        if (field.type == FieldType::Text && field.size > 0 && text.size() > field.size)
            return Status(Status::Code::InvalidArgument,
                          QStringLiteral("the text is longer than field %1 (%2 characters)")
                              .arg(field.name)
                              .arg(field.size));
        return QVariant(text);
    }
    case FieldType::Integer:
    case FieldType::Numeric:
    case FieldType::Double: return toNumber(value, field);
    case FieldType::Boolean: return toBoolean(value, field);
    case FieldType::Date:
    case FieldType::DateTime: return toDateValue(value, field);
    case FieldType::Binary: return QVariant(value.toByteArray());
    }
    return value;
}

void bindValue(sqlite3_stmt *stmt, int parameter, const QVariant &value, const FieldInfo &field)
{
    if (!value.isValid() || value.isNull()) {
        sqlite3_bind_null(stmt, parameter);
        return;
    }
    QByteArray bytes;
    switch (field.type) {
    case FieldType::Integer: sqlite3_bind_int64(stmt, parameter, value.toLongLong()); return;
    case FieldType::Numeric:
    case FieldType::Double: sqlite3_bind_double(stmt, parameter, value.toDouble()); return;
    case FieldType::Boolean: sqlite3_bind_int(stmt, parameter, value.toBool() ? -1 : 0); return;
    case FieldType::Binary:
        bytes = value.toByteArray();
        sqlite3_bind_blob(stmt, parameter, bytes.constData(), int(bytes.size()), SQLITE_TRANSIENT);
        return;
    case FieldType::Date: bytes = value.toDate().toString(IsoDate).toUtf8(); break;
    case FieldType::DateTime: bytes = value.toDateTime().toString(IsoDateTime).toUtf8(); break;
    default: bytes = value.toString().toUtf8(); break;
    }
    sqlite3_bind_text(stmt, parameter, bytes.constData(), int(bytes.size()), SQLITE_TRANSIENT);
}

} // namespace plx::sqlite
