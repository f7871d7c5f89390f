// apps/plxform/tests/sessionwalk_table.cpp: the walk's own readers of the sample table.
#include "apps/plxform/tests/sessionwalk_table.h"

#include <QDate>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QProcess>

#include <sqlite3.h>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace plx::walk {

namespace {

// Windows-1252 for 0x80..0x9F; the five unassigned bytes stand for the C1 control of the
// same number, as Windows itself maps them.
const char16_t kCp1252High[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

QString decode1252(const char *bytes, qsizetype size)
{
    QString text;
    text.reserve(size);
    for (qsizetype i = 0; i < size; ++i) {
        const auto b = static_cast<unsigned char>(bytes[i]);
        text += b >= 0x80 && b < 0xA0 ? QChar(kCp1252High[b - 0x80]) : QChar(char16_t(b));
    }
    return text;
}

QString rtrim(QString text)
{
    while (text.endsWith(QLatin1Char(' ')))
        text.chop(1);
    return text;
}

quint32 le32(const uchar *p)
{
    return quint32(p[0]) | quint32(p[1]) << 8 | quint32(p[2]) << 16 | quint32(p[3]) << 24;
}
quint32 be32(const uchar *p)
{
    return quint32(p[3]) | quint32(p[2]) << 8 | quint32(p[1]) << 16 | quint32(p[0]) << 24;
}

struct DbfField
{
    QString name;
    char type = 'C';
    int offset = 0;
    int length = 0;
    int decimals = 0;
};

struct MemoFile
{
    QByteArray bytes;
    quint32 blockSize = 64;

    QString text(quint32 block) const
    {
        const qint64 at = qint64(block) * blockSize;
        if (block == 0 || at + 8 > bytes.size())
            return QString();
        const auto *p = reinterpret_cast<const uchar *>(bytes.constData() + at);
        const qint64 length = std::min<qint64>(be32(p + 4), bytes.size() - at - 8);
        return plainMemo(decode1252(bytes.constData() + at + 8, length));
    }

    // The stored bytes of the memo a field's block number points at ("" for none).
    QByteArray raw(quint32 block) const
    {
        const qint64 at = qint64(block) * blockSize;
        if (block == 0 || at + 8 > bytes.size())
            return QByteArray();
        const auto *p = reinterpret_cast<const uchar *>(bytes.constData() + at);
        return bytes.mid(at + 8, std::min<qint64>(be32(p + 4), bytes.size() - at - 8));
    }
};

quint32 memoBlock(const DbfField &field, const char *raw)
{
    if (field.length == 4)
        return le32(reinterpret_cast<const uchar *>(raw));
    return QByteArray(raw, field.length).trimmed().toUInt();
}

QString plainDbfValue(const DbfField &field, const char *raw, const MemoFile &memo)
{
    const QString text = decode1252(raw, field.length);
    switch (field.type) {
    case 'N':
    case 'F': {
        bool ok = false;
        const double v = text.trimmed().toDouble(&ok);
        return ok ? plainNumber(v, field.decimals) : QString();
    }
    case 'D': return text.trimmed().isEmpty() ? QString() : text;
    case 'L':
        return QStringLiteral("TtYy").contains(text.left(1)) && !text.trimmed().isEmpty()
            ? QStringLiteral("T")
            : QStringLiteral("F");
    case 'M': return memo.text(memoBlock(field, raw));
    default: return rtrim(text);
    }
}

QList<DbfField> dbfFields(const QByteArray &file, int headerLength)
{
    QList<DbfField> fields;
    int offset = 1; // the deleted flag
    for (int at = 32; at + 32 <= headerLength && file.at(at) != '\r'; at += 32) {
        const auto *d = reinterpret_cast<const uchar *>(file.constData() + at);
        DbfField f;
        f.name = QString::fromLatin1(reinterpret_cast<const char *>(d), 11);
        f.name.truncate(f.name.indexOf(QChar(0)) < 0 ? 11 : f.name.indexOf(QChar(0)));
        f.type = char(d[11]);
        f.length = d[16];
        f.decimals = d[17];
        f.offset = offset;
        offset += f.length;
        fields << f;
    }
    return fields;
}

void addRecord(Table *table, const Record &record, QStringList *duplicates)
{
    const QString id = record.value(QStringLiteral("ID"));
    if (duplicates && table->contains(id))
        *duplicates << id;
    table->insert(id, record);
}

} // namespace

QString backendName(Backend backend)
{
    return backend == Backend::FoxPro ? QStringLiteral("FoxPro") : QStringLiteral("SQLite");
}

const QString &nullPlain()
{
    // A character no typed text holds, so no value can be mistaken for it.
    static const QString null = QString(QChar(0)) + QStringLiteral("Null");
    return null;
}

const QList<FieldShape> &sampleFieldShapes()
{
    static const QList<FieldShape> fields = {
        { QStringLiteral("ID"), FieldKind::Text, 10 },
        { QStringLiteral("NAME"), FieldKind::Text, 40 },
        { QStringLiteral("CITY"), FieldKind::Text, 24 },
        { QStringLiteral("STATE"), FieldKind::Text, 2 },
        { QStringLiteral("PHONE"), FieldKind::Text, 14 },
        { QStringLiteral("BEDS"), FieldKind::Number, 5, 0 },
        { QStringLiteral("RATE"), FieldKind::Number, 8, 2 },
        { QStringLiteral("OPENED"), FieldKind::Date, 8 },
        { QStringLiteral("ACTIVE"), FieldKind::Logical, 1 },
        { QStringLiteral("MEDICARE"), FieldKind::Logical, 1 },
        { QStringLiteral("MEDNUM"), FieldKind::Text, 10 },
        { QStringLiteral("NOTES"), FieldKind::Memo, 10 },
        { QStringLiteral("PLSTART"), FieldKind::Text, 30 },
        { QStringLiteral("PLLASTREV"), FieldKind::Text, 30 },
        { QStringLiteral("PROGRAMS"), FieldKind::Text, 30 },
    };
    return fields;
}

const FieldShape *fieldShape(const QString &name)
{
    for (const FieldShape &f : sampleFieldShapes())
        if (f.name == name)
            return &f;
    return nullptr;
}

QString plainNumber(double value, int decimals)
{
    if (std::fabs(value) < 0.5 * std::pow(10.0, -decimals))
        value = 0.0; // no "-0.00"
    return QString::number(value, 'f', decimals);
}

QString plainMemo(QString text)
{
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return text;
}

bool fitsCp1252(const QString &text)
{
    for (const QChar c : text) {
        if (c.unicode() < 0x80 || (c.unicode() >= 0xA0 && c.unicode() <= 0xFF))
            continue;
        if (std::find(std::begin(kCp1252High), std::end(kCp1252High), c.unicode())
            == std::end(kCp1252High))
            return false;
    }
    return true;
}

bool readFoxProTable(const QString &dbfPath, Table *table, QString *error, QStringList *duplicates)
{
    QFile dbf(dbfPath);
    if (!dbf.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("cannot open %1").arg(dbfPath);
        return false;
    }
    const QByteArray file = dbf.readAll();
    if (file.size() < 32) {
        *error = QStringLiteral("%1 has no header").arg(dbfPath);
        return false;
    }
    const auto *h = reinterpret_cast<const uchar *>(file.constData());
    const quint32 count = le32(h + 4);
    const int headerLength = h[8] | h[9] << 8;
    const int recordLength = h[10] | h[11] << 8;
    const QList<DbfField> fields = dbfFields(file, headerLength);
    MemoFile memo;
    const QFileInfo info(dbfPath);
    QFile fpt(info.path() + QLatin1Char('/') + info.completeBaseName() + QStringLiteral(".FPT"));
    if (fpt.open(QIODevice::ReadOnly)) {
        memo.bytes = fpt.readAll();
        if (memo.bytes.size() >= 8) {
            const auto *m = reinterpret_cast<const uchar *>(memo.bytes.constData());
            memo.blockSize = quint32(m[6]) << 8 | m[7];
        }
    }
    if (qint64(headerLength) + qint64(count) * recordLength > file.size()) {
        *error = QStringLiteral("%1 is shorter than its header says").arg(dbfPath);
        return false;
    }
    // Records decoded before, by their bytes and their memos' bytes: the walk rereads the
    // table after every write, and nearly all of its records are as they were.
    static QHash<QByteArray, Record> decoded;
    if (decoded.size() > 4 * qsizetype(count) + 1000)
        decoded.clear();
    table->clear();
    for (quint32 r = 0; r < count; ++r) {
        const char *rec = file.constData() + headerLength + qint64(r) * recordLength;
        if (rec[0] == '*')
            continue;
        QByteArray key(rec, recordLength);
        for (const DbfField &f : fields)
            if (f.type == 'M')
                key += memo.raw(memoBlock(f, rec + f.offset)) + '\0';
        auto known = decoded.constFind(key);
        if (known == decoded.cend()) {
            Record record;
            for (const DbfField &f : fields)
                record.insert(f.name, plainDbfValue(f, rec + f.offset, memo));
            known = decoded.insert(key, record);
        }
        addRecord(table, *known, duplicates);
    }
    return true;
}

namespace {

// `type` is the column's type as the row holds it, taken before any other call on the column
// (reading a number's bytes turns it into text).
QString plainSqliteValue(sqlite3_stmt *row, int column, const FieldShape &shape, int type)
{
    if (type == SQLITE_NULL)
        return shape.kind == FieldKind::Logical ? QStringLiteral("F") : nullPlain();
    QString text =
        QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(row, column)),
                          sqlite3_column_bytes(row, column));
    switch (shape.kind) {
    case FieldKind::Number: return plainNumber(sqlite3_column_double(row, column), shape.decimals);
    case FieldKind::Logical:
        if (type == SQLITE_INTEGER || type == SQLITE_FLOAT)
            return sqlite3_column_double(row, column) != 0 ? QStringLiteral("T")
                                                           : QStringLiteral("F");
        return QStringLiteral("TtYy1").contains(text.left(1)) && !text.isEmpty()
            ? QStringLiteral("T")
            : QStringLiteral("F");
    case FieldKind::Date: {
        // "yyyy-MM-dd" to "yyyyMMdd", by hand: QDate's parser costs more than the rest
        // of a table read.
        const bool shaped =
            text.size() >= 10 && text[4] == QLatin1Char('-') && text[7] == QLatin1Char('-');
        const QString digits = text.left(4) + text.mid(5, 2) + text.mid(8, 2);
        const QDate d(digits.left(4).toInt(), digits.mid(4, 2).toInt(), digits.right(2).toInt());
        return shaped && d.isValid() ? digits : text;
    }
    case FieldKind::Memo: return plainMemo(text);
    case FieldKind::Text: return rtrim(text);
    }
    return text;
}

} // namespace

bool readSqliteTable(const QString &dbPath, const QString &tableName, Table *table, QString *error,
                     QStringList *duplicates)
{
    sqlite3 *db = nullptr;
    if (sqlite3_open_v2(dbPath.toUtf8().constData(), &db, SQLITE_OPEN_READONLY, nullptr)
        != SQLITE_OK) {
        *error =
            QStringLiteral("cannot open %1: %2").arg(dbPath, QString::fromUtf8(sqlite3_errmsg(db)));
        sqlite3_close(db);
        return false;
    }
    sqlite3_busy_timeout(db, 2000);
    QStringList columns;
    for (const FieldShape &f : sampleFieldShapes())
        columns << QLatin1Char('"') + f.name + QLatin1Char('"');
    // In ID order, so each record goes in at the table's end without a search (IDs are
    // ASCII, where SQLite's byte order and QString's agree).
    const QByteArray sql = QStringLiteral("SELECT %1 FROM \"%2\" ORDER BY \"ID\"")
                               .arg(columns.join(QLatin1Char(',')), tableName)
                               .toUtf8();
    sqlite3_stmt *row = nullptr;
    bool ok = sqlite3_prepare_v2(db, sql.constData(), -1, &row, nullptr) == SQLITE_OK;
    table->clear();
    int rc = SQLITE_ROW;
    // Rows decoded before, by their columns' types and bytes (see readFoxProTable).
    static QHash<QByteArray, Record> decoded;
    if (decoded.size() > 100000)
        decoded.clear();
    const int columnCount = int(sampleFieldShapes().size());
    while (ok && (rc = sqlite3_step(row)) == SQLITE_ROW) {
        QByteArray key;
        key.reserve(1024);
        int types[32] = {};
        Q_ASSERT(columnCount <= 32);
        for (int i = 0; i < columnCount; ++i) {
            const int type = types[i] = sqlite3_column_type(row, i);
            const auto *blob = static_cast<const char *>(sqlite3_column_blob(row, i));
            const int size = sqlite3_column_bytes(row, i);
            key.append(char('0' + type))
                .append(reinterpret_cast<const char *>(&size), sizeof size)
                .append(blob, size);
        }
        auto known = decoded.constFind(key);
        if (known == decoded.cend()) {
            Record record;
            for (int i = 0; i < columnCount; ++i)
                record.insert(sampleFieldShapes()[i].name,
                              plainSqliteValue(row, i, sampleFieldShapes()[i], types[i]));
            known = decoded.insert(key, record);
        }
        const QString &id = *known->constFind(QStringLiteral("ID"));
        if (!table->isEmpty() && std::prev(table->cend()).key() >= id)
            addRecord(table, *known, duplicates); // out of order: a non-ASCII ID, or a twin
        else
            table->insert(table->cend(), id, *known);
    }
    ok = ok && rc == SQLITE_DONE;
    if (!ok)
        *error =
            QStringLiteral("reading %1: %2").arg(dbPath, QString::fromUtf8(sqlite3_errmsg(db)));
    sqlite3_finalize(row);
    sqlite3_close(db);
    return ok;
}

bool readFoxProWithPythonDbf(const QString &dbfPath, Table *table, QString *error)
{
    // One line per live record: the fields in table order, tab-separated, each written as
    // Python's repr of its plain text so tabs and line ends inside values survive.
    static const char *const script = R"(import dbf, sys, datetime
import codecs
t = dbf.Table(sys.argv[1], codepage='cp1252'); t.open()
# The five codes Windows-1252 leaves undefined (made IDs may hold them) read as the C1
# characters of the same value, as Windows and the table engine read them.
codecs.register_error('c1', lambda e: (''.join(chr(b) for b in e.object[e.start:e.end]), e.end))
t._meta.decoder = lambda d, *a: (codecs.decode(bytes(d), 'cp1252', 'c1'), len(d))
memos = set(sys.argv[2].lower().split(','))
def plain(v, memo):
    if v is None: return ''
    if isinstance(v, bool): return 'T' if v else 'F'
    if isinstance(v, (datetime.date,)): return v.strftime('%Y%m%d')
    if isinstance(v, (int, float)): return repr(float(v))
    v = str(v).rstrip(' ')
    # Line ends are the memo's own business; a made ID may hold a CR byte as it is.
    return v.replace('\r\n', '\n').replace('\r', '\n') if memo else v
for r in t:
    if dbf.is_deleted(r): continue
    sys.stdout.write('\t'.join(ascii(plain(r[f], f.lower() in memos)) for f in t.field_names) + '\n')
)";
    QProcess python;
    QStringList memos;
    for (const FieldShape &f : sampleFieldShapes())
        if (f.kind == FieldKind::Memo)
            memos << f.name;
    python.start(QStringLiteral("/usr/bin/python3"),
                 { QStringLiteral("-c"), QString::fromLatin1(script), dbfPath,
                   memos.join(QLatin1Char(',')) });
    if (!python.waitForFinished(120000) || python.exitCode() != 0) {
        *error = QStringLiteral("python3-dbf failed: ")
            + QString::fromUtf8(python.readAllStandardError()).trimmed();
        return false;
    }
    table->clear();
    const QList<QByteArray> lines = python.readAllStandardOutput().split('\n');
    for (const QByteArray &line : lines) {
        if (line.isEmpty())
            continue;
        const QList<QByteArray> cells = line.split('\t');
        Record record;
        for (int i = 0; i < cells.size() && i < sampleFieldShapes().size(); ++i) {
            // ascii() gives a quoted literal with \xNN, \uNNNN and \n escapes.
            QString cell = QString::fromLatin1(cells[i].mid(1, cells[i].size() - 2));
            QString value;
            for (qsizetype c = 0; c < cell.size(); ++c) {
                if (cell[c] != QLatin1Char('\\') || c + 1 >= cell.size()) {
                    value += cell[c];
                    continue;
                }
                const QChar e = cell[++c];
                const int digits = e == QLatin1Char('x') ? 2 : e == QLatin1Char('u') ? 4 : 0;
                if (digits) {
                    value += QChar(char16_t(cell.mid(c + 1, digits).toUInt(nullptr, 16)));
                    c += digits;
                } else {
                    value += e == QLatin1Char('n') ? QChar(QLatin1Char('\n'))
                        : e == QLatin1Char('t')    ? QChar(QLatin1Char('\t'))
                        : e == QLatin1Char('r')    ? QChar(QLatin1Char('\r'))
                                                   : e;
                }
            }
            const FieldShape &shape = sampleFieldShapes()[i];
            if (shape.kind == FieldKind::Number && !value.isEmpty())
                value = plainNumber(value.toDouble(), shape.decimals);
            record.insert(shape.name, value);
        }
        addRecord(table, record, nullptr);
    }
    return true;
}

QStringList tableDifferences(const Table &expected, const Table &actual, int limit)
{
    QStringList lines;
    auto add = [&lines, limit](const QString &line) {
        if (lines.size() < limit)
            lines << line;
    };
    for (auto it = expected.begin(); it != expected.end(); ++it) {
        if (!actual.contains(it.key())) {
            add(QStringLiteral("record %1 (%2) is missing")
                    .arg(it.key(), textOf(it->value(QStringLiteral("NAME")))));
            continue;
        }
        const Record &got = actual[it.key()];
        if (got == *it)
            continue;
        const auto quoted = [](const QString &plain) {
            return isNullPlain(plain) ? QStringLiteral("Null")
                                      : QLatin1Char('"') + plain + QLatin1Char('"');
        };
        for (auto f = it->begin(); f != it->end(); ++f)
            if (got.value(f.key()) != f.value())
                add(QStringLiteral("record %1 field %2: expected %3, found %4")
                        .arg(it.key(), f.key(), quoted(f.value()), quoted(got.value(f.key()))));
    }
    for (auto it = actual.begin(); it != actual.end(); ++it)
        if (!expected.contains(it.key()))
            add(QStringLiteral("record %1 (%2) should not be there")
                    .arg(it.key(), textOf(it->value(QStringLiteral("NAME")))));
    return lines;
}

} // namespace plx::walk
