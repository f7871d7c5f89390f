// services/recordsource/foxpro/indextag.cpp: the key expression of an index on fields.
#include "services/recordsource/foxpro/indextag_p.h"

#include <QRegularExpression>

namespace plx::foxpro {

namespace {

constexpr int kTagNameLength = 10;
constexpr int kMaxKeyLength = 240;
constexpr int kNumberKeyLength = 8; // a numeric or date key on its own: FoxPro's 8 bytes

// One field's part of a key of several fields: its text and the bytes it takes.
struct KeyPart
{
    QByteArray text;
    int length = 0;
};

std::optional<KeyPart> textPart(const DbfField &f)
{
    const QByteArray name = f.name.toLatin1();
    switch (f.type) {
    case 'C': return KeyPart{ name, f.length };
    case 'N':
    case 'F':
        return KeyPart{ QByteArrayLiteral("STR(") + name + ',' + QByteArray::number(f.length) + ','
                            + QByteArray::number(f.decimals) + ')',
                        f.length };
    case 'D': return KeyPart{ QByteArrayLiteral("DTOS(") + name + ')', 8 };
    default: return std::nullopt;
    }
}

Status cannotIndex(const DbfField &f)
{
    return Status(Status::Code::InvalidArgument,
                  QStringLiteral("the field %1 cannot be part of a FoxPro index").arg(f.name));
}

} // namespace

Result<CdxTagDefinition> indexTag(const DbfTable &table, const QString &indexName,
                                  const QStringList &fields)
{
    static const QRegularExpression tagName(QStringLiteral("^[A-Za-z_][A-Za-z0-9_]*$"));
    const QString name = indexName.trimmed().left(kTagNameLength).toUpper();
    if (!tagName.match(name).hasMatch())
        return Status(Status::Code::InvalidArgument,
                      QStringLiteral("%1 cannot name a FoxPro index: a name starts with a letter "
                                     "and holds letters, digits and _")
                          .arg(indexName));
    QList<DbfField> used;
    for (const QString &field : fields)
        used << table.fields()[table.fieldIndex(field.trimmed())];
    CdxTagDefinition tag{ name, {}, {}, 0 };
    if (used.size() == 1 && (used[0].type == 'N' || used[0].type == 'F' || used[0].type == 'D')) {
        // A number or a date on its own keeps its own order, negative numbers included.
        tag.key = used[0].name.toLatin1();
        tag.keyLength = kNumberKeyLength;
        return tag;
    }
    QByteArrayList parts;
    for (const DbfField &f : std::as_const(used)) {
        const std::optional<KeyPart> part = textPart(f);
        if (!part)
            return cannotIndex(f);
        parts << part->text;
        tag.keyLength += part->length;
    }
    if (tag.keyLength > kMaxKeyLength)
        return Status(Status::Code::InvalidArgument,
                      QStringLiteral("the key of the index %1 would take %2 bytes; a FoxPro "
                                     "index key takes at most %3")
                          .arg(indexName)
                          .arg(tag.keyLength)
                          .arg(kMaxKeyLength));
    tag.key = parts.join('+');
    return tag;
}

} // namespace plx::foxpro
