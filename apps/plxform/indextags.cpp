// apps/plxform/indextags.cpp
//
// A compound index is a file of 512-byte pages. Its first page heads an index of the
// tags themselves: each key is a tag name (10 characters), and the "record number" beside
// it is the offset of that tag's own header page, which holds the tag's options and is
// followed by a page with its key expression. Leaf pages keep their keys compressed: per
// key a packed (record number, bytes shared with the previous key, trailing blanks) entry
// at the front of the page and the key's remaining bytes stacked from the page's end.
#include "apps/plxform/indextags.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>

namespace plx::form {

namespace {

constexpr qint64 kPage = 512;
constexpr int kTagNameLength = 10;
constexpr quint8 kUnique = 0x01;
constexpr quint8 kCandidate = 0x04; // Visual FoxPro's candidate and primary keys
constexpr int kMaxPagesVisited = 4096; // a broken chain of pages ends here

quint32 le32(const QByteArray &page, int at)
{
    return quint32(quint8(page[at])) | quint32(quint8(page[at + 1])) << 8
        | quint32(quint8(page[at + 2])) << 16 | quint32(quint8(page[at + 3])) << 24;
}

quint32 be32(const QByteArray &page, int at)
{
    return quint32(quint8(page[at])) << 24 | quint32(quint8(page[at + 1])) << 16
        | quint32(quint8(page[at + 2])) << 8 | quint32(quint8(page[at + 3]));
}

quint16 le16(const QByteArray &page, int at)
{
    return quint16(quint8(page[at]) | quint8(page[at + 1]) << 8);
}

QByteArray readPage(QFile &file, qint64 offset, qint64 size = kPage)
{
    if (offset < 0 || offset + size > file.size() || !file.seek(offset))
        return {};
    QByteArray page = file.read(size);
    return page.size() == size ? page : QByteArray();
}

struct TagEntry
{
    QByteArray name;
    quint32 header = 0;
};

// The keys of one compressed leaf page; false when the page does not add up.
bool readLeaf(const QByteArray &page, QList<TagEntry> &entries)
{
    const int keys = le16(page, 2);
    const quint32 recordMask = le32(page, 14);
    const int duplicateMask = quint8(page[18]), trailMask = quint8(page[19]);
    const int recordBits = quint8(page[20]), duplicateBits = quint8(page[21]);
    const int entryBytes = quint8(page[23]);
    if (entryBytes < 1 || entryBytes > 8 || 24 + keys * entryBytes > kPage)
        return false;
    int keyEnd = int(kPage);
    QByteArray previous;
    for (int i = 0; i < keys; ++i) {
        quint64 packed = 0;
        for (int b = entryBytes - 1; b >= 0; --b)
            packed = packed << 8 | quint8(page[24 + i * entryBytes + b]);
        const int duplicates = int(packed >> recordBits) & duplicateMask;
        const int trail = int(packed >> (recordBits + duplicateBits)) & trailMask;
        const int stored = kTagNameLength - duplicates - trail;
        keyEnd -= stored;
        if (stored < 0 || duplicates > previous.size() || keyEnd < 24 + keys * entryBytes)
            return false;
        previous = previous.left(duplicates) + page.mid(keyEnd, stored);
        entries.append({ previous, quint32(packed & recordMask) });
    }
    return true;
}

// Every key of the tag index: down its leftmost branch, then along the leaves.
QList<TagEntry> readTagIndex(QFile &file, qint64 root)
{
    QList<TagEntry> entries;
    QSet<qint64> seen;
    qint64 at = root;
    QByteArray page = readPage(file, at);
    while (!page.isEmpty() && (le16(page, 0) & 2) == 0 && le16(page, 2) > 0) {
        if (seen.contains(at) || seen.size() > kMaxPagesVisited)
            return {};
        seen.insert(at);
        at = be32(page, 12 + kTagNameLength + 4); // the first key's child page
        page = readPage(file, at);
    }
    while (!page.isEmpty() && !seen.contains(at) && seen.size() <= kMaxPagesVisited) {
        seen.insert(at);
        if ((le16(page, 0) & 2) == 0 || !readLeaf(page, entries))
            return {};
        const quint32 right = le32(page, 8);
        if (right == 0xFFFFFFFFu)
            break;
        at = right;
        page = readPage(file, at);
    }
    return entries;
}

QString structuralIndexOf(const QString &tableFile)
{
    const QFileInfo table(tableFile);
    const QString stem = table.completeBaseName();
    const QStringList candidates =
        table.dir().entryList(QStringList{ stem + QStringLiteral(".*") }, QDir::Files);
    for (const QString &name : candidates)
        if (name.compare(stem + QStringLiteral(".cdx"), Qt::CaseInsensitive) == 0)
            return table.dir().filePath(name);
    return {};
}

} // namespace

QList<IndexTag> readIndexTags(const QString &tableFile)
{
    const QString path = structuralIndexOf(tableFile);
    QFile file(path);
    if (path.isEmpty() || !file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray header = readPage(file, 0);
    if (header.isEmpty() || le16(header, 12) != kTagNameLength)
        return {};
    QList<IndexTag> tags;
    for (const TagEntry &entry : readTagIndex(file, le32(header, 0))) {
        const QByteArray tagHeader = readPage(file, entry.header, 2 * kPage);
        if (tagHeader.isEmpty())
            continue;
        const quint8 options = quint8(tagHeader[14]);
        QByteArray expression = tagHeader.mid(int(kPage));
        expression.truncate(expression.indexOf('\0') < 0 ? expression.size()
                                                         : expression.indexOf('\0'));
        tags.append({ QString::fromLatin1(entry.name).trimmed().toUpper(),
                      QString::fromLatin1(expression).trimmed(),
                      (options & (kUnique | kCandidate)) != 0 });
    }
    return tags;
}

QStringList tagFields(const QString &expression, const QList<FieldInfo> &fields)
{
    static const QRegularExpression wrapped(
        QStringLiteral("^(?:UPPER|LOWER|ALLTRIM|TRIM|STR|DTOS)\\s*\\((.*)\\)$"),
        QRegularExpression::CaseInsensitiveOption);
    QStringList named;
    for (QString part : expression.split(QLatin1Char('+'))) {
        part = part.trimmed();
        for (QRegularExpressionMatch m = wrapped.match(part); m.hasMatch(); m = wrapped.match(part))
            part = m.captured(1).trimmed();
        // STR(field, width) keeps only its field.
        part = part.section(QLatin1Char(','), 0, 0).trimmed();
        const auto field = std::find_if(fields.begin(), fields.end(), [&](const FieldInfo &f) {
            return f.name.compare(part, Qt::CaseInsensitive) == 0;
        });
        if (field == fields.end())
            return {};
        named << field->name;
    }
    return named;
}

int codePageMark(const QString &tableFile)
{
    QFile file(tableFile);
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray header = file.read(32);
    return header.size() < 32 ? -1 : quint8(header[29]);
}

} // namespace plx::form
