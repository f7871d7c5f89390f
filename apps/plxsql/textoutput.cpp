// apps/plxsql/textoutput.cpp: printing records as tab-separated lines.
#include "apps/plxsql/textoutput.h"

#include <QDate>
#include <QDateTime>

namespace plx::plxsql {

QString plainText(const QVariant &value, const FieldInfo &field)
{
    if (!value.isValid() || value.isNull())
        return {};
    switch (value.typeId()) {
    case QMetaType::Bool: return value.toBool() ? QStringLiteral("True") : QStringLiteral("False");
    case QMetaType::QDate: return value.toDate().toString(QStringLiteral("yyyy-MM-dd"));
    case QMetaType::QDateTime:
        return value.toDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"));
    case QMetaType::Double:
        if (field.type == FieldType::Numeric)
            return QString::number(value.toDouble(), 'f', field.decimals);
        return QString::number(value.toDouble(), 'g', 17 - 2);
    case QMetaType::QByteArray: return QString::fromLatin1(value.toByteArray().toHex());
    default: break;
    }
    QString text = value.toString();
    for (QChar &c : text) {
        if (c == QLatin1Char('\t') || c == QLatin1Char('\n') || c == QLatin1Char('\r'))
            c = QLatin1Char(' ');
    }
    return text;
}

Status writeRows(RecordSource &source, QTextStream &out)
{
    const QList<FieldInfo> &fields = source.fieldInfos();
    QStringList header;
    for (const FieldInfo &f : fields)
        header << f.name;
    out << header.join(QLatin1Char('\t')) << '\n';
    while (!source.isEOF() && !source.isBOF()) {
        QStringList line;
        for (int i = 0; i < fields.size(); ++i) {
            Result<QVariant> v = source.value(i);
            if (!v.isOk())
                return v.status();
            line << plainText(v.value(), fields.at(i));
        }
        out << line.join(QLatin1Char('\t')) << '\n';
        Status s = source.MoveNext();
        if (!s.isOk())
            return s;
    }
    return Status::ok();
}

QString oneLine(const QString &text)
{
    QString out;
    out.reserve(text.size());
    for (QChar c : text) {
        switch (c.unicode()) {
        case '\n': out += QStringLiteral("\\n"); break;
        case '\r': out += QStringLiteral("\\r"); break;
        case '\v': out += QStringLiteral("\\v"); break;
        case '\f': out += QStringLiteral("\\f"); break;
        case 0x85:
        case 0x2028:
        case 0x2029:
            out += QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
            break;
        default: out += c;
        }
    }
    return out;
}

} // namespace plx::plxsql
