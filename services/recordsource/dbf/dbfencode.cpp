// services/recordsource/dbf/dbfencode.cpp: values into FoxPro 2.x field bytes.
//
// Writes refuse what would not read back: a text longer than its field, a number wider
// than its field, a character the code page lacks. FoxPro would truncate or fill with '*';
// a shared table is better served by an error than by a silently changed value.
#include "services/recordsource/dbf/dbfvalue_p.h"

#include "services/codepages.h"

#include <QDateTime>

#include <cmath>
#include <cstring>

namespace plx::dbfvalue {

namespace {

Status tooLong(const DbfField &f, qsizetype length)
{
    return Status(Status::Code::InvalidArgument,
                  QStringLiteral("the value for field %1 needs %2 characters; the field holds %3")
                      .arg(f.name)
                      .arg(length)
                      .arg(f.length));
}

Status mismatch(const DbfField &f, const QVariant &v, const char *what)
{
    return Status(Status::Code::TypeMismatch,
                  QStringLiteral("field %1 needs %2, not \"%3\"")
                      .arg(f.name, QString::fromLatin1(what), v.toString()));
}

// Null, an empty text and an invalid date all mean "blank" (Qt 6 no longer calls a
// QVariant holding an invalid QDate null).
bool isBlank(const QVariant &v)
{
    switch (v.typeId()) {
    case QMetaType::QString: return v.toString().trimmed().isEmpty();
    case QMetaType::QDate: return !v.toDate().isValid();
    case QMetaType::QDateTime: return !v.toDateTime().isValid();
    default: return !v.isValid() || v.isNull();
    }
}

Result<QByteArray> encodeText(const DbfField &f, const QVariant &v, int codePage)
{
    QByteArray bytes;
    if (v.typeId() == QMetaType::QByteArray) {
        bytes = v.toByteArray();
    } else {
        auto encoded = codepages::encode(codePage, v.toString());
        if (!encoded)
            return Status(Status::Code::InvalidArgument,
                          QStringLiteral("the text for field %1 has characters that code page %2 "
                                         "cannot hold")
                              .arg(f.name)
                              .arg(codePage));
        bytes = *encoded;
    }
    if (bytes.size() > f.length)
        return tooLong(f, bytes.size());
    return bytes.leftJustified(f.length, ' ');
}

Result<QByteArray> encodeNumber(const DbfField &f, const QVariant &v)
{
    QByteArray text;
    const int type = v.typeId();
    if (f.decimals == 0
        && (type == QMetaType::Int || type == QMetaType::LongLong || type == QMetaType::UInt
            || type == QMetaType::ULongLong || type == QMetaType::Long)) {
        text = QByteArray::number(v.toLongLong());
    } else {
        bool ok = false;
        const double d =
            type == QMetaType::QString ? v.toString().trimmed().toDouble(&ok) : v.toDouble(&ok);
        if (!ok || !std::isfinite(d))
            return mismatch(f, v, "a number");
        text = QByteArray::number(d, 'f', f.decimals);
        if (text == "-0" || (text.startsWith("-0.") && text.count('0') == text.size() - 2))
            text.remove(0, 1); // FoxPro never writes a negative zero
    }
    if (text.size() > f.length)
        return Status(Status::Code::InvalidArgument,
                      QStringLiteral("the number %1 does not fit field %2 (width %3, %4 decimals)")
                          .arg(QString::fromLatin1(text), f.name)
                          .arg(f.length)
                          .arg(f.decimals));
    return text.rightJustified(f.length, ' ');
}

Result<QByteArray> encodeDate(const DbfField &f, const QVariant &v)
{
    QDate d;
    if (v.typeId() == QMetaType::QDate)
        d = v.toDate();
    else if (v.typeId() == QMetaType::QDateTime)
        d = v.toDateTime().date();
    else if (v.typeId() == QMetaType::QString) {
        const QString s = v.toString().trimmed();
        d = QDate::fromString(s, QStringLiteral("yyyyMMdd"));
        if (!d.isValid())
            d = QDate::fromString(s, Qt::ISODate);
    }
    if (!d.isValid() || d.year() < 1 || d.year() > 9999)
        return mismatch(f, v, "a date");
    return d.toString(QStringLiteral("yyyyMMdd")).toLatin1().leftJustified(f.length, ' ', true);
}

Result<QByteArray> encodeLogical(const DbfField &f, const QVariant &v)
{
    if (v.typeId() == QMetaType::QString) {
        const QString s = v.toString().trimmed().toUpper();
        if (s == QLatin1String("T") || s == QLatin1String("Y") || s == QLatin1String("TRUE"))
            return QByteArray("T");
        if (s == QLatin1String("F") || s == QLatin1String("N") || s == QLatin1String("FALSE"))
            return QByteArray("F");
        return mismatch(f, v, "a logical value");
    }
    if (!v.canConvert<bool>())
        return mismatch(f, v, "a logical value");
    return QByteArray(v.toBool() ? "T" : "F");
}

} // namespace

Status encodeInline(const DbfField &f, const QVariant &value, int codePage, char *dst)
{
    Result<QByteArray> bytes = QByteArray();
    if (f.type == 'C' && value.isValid() && !value.isNull()) {
        bytes = encodeText(f, value, codePage);
    } else if (isBlank(value)) {
        bytes = QByteArray(f.length, ' ');
    } else {
        switch (f.type) {
        case 'N':
        case 'F': bytes = encodeNumber(f, value); break;
        case 'D': bytes = encodeDate(f, value); break;
        case 'L': bytes = encodeLogical(f, value); break;
        default:
            return Status(Status::Code::NotSupported,
                          QStringLiteral("field %1 of type %2 cannot be written")
                              .arg(f.name, QChar::fromLatin1(f.type)));
        }
    }
    if (!bytes.isOk())
        return bytes.status();
    std::memcpy(dst, bytes->constData(), size_t(qMin<qsizetype>(bytes->size(), f.length)));
    return Status::ok();
}

} // namespace plx::dbfvalue
