// services/recordsource/foxpro/foxprorecordsource_query.cpp: WHERE and finds over the mapped
// table, with fast paths for the shapes the controls send on every keystroke and every save.
#include "services/recordsource/foxpro/internal/foxprorecordsource.h"
#include "services/recordsource/foxpro/distinctranker_p.h"
#include "services/recordsource/foxpro/cdxseek_p.h"
#include "services/recordsource/foxpro/idindex_p.h"
#include "services/recordsource/foxpro/prefixscan_p.h"
#include "services/recordsource/foxpro/internal/rankcache.h"
#include "services/recordsource/foxpro/recordrow_p.h"
#include "services/recordsource/foxpro/statementbounds_p.h"

#include "services/recordsource/jet/internal/deadline.h"
#include "services/recordsource/jet/internal/evaluator.h"
#include "services/recordsource/jet/internal/generalorder.h"
#include "services/recordsource/jet/internal/parser.h"
#include "services/recordsource/jet/internal/values.h"

#include <QHash>

#include <algorithm>
#include <array>
#include <cstring>
#include <functional>
#include <optional>

namespace plx::foxpro {

namespace {

using jet::Node;
using jet::NodeKind;
using jet::NodePtr;

constexpr quint32 kScanAhead = 24;

void prefetch(const char *p)
{
#if defined(__GNUC__) || defined(__clang__)
    __builtin_prefetch(p);
#else
    (void)p;
#endif
}

bool isTextField(const DbfTable &table, int column)
{
    const char t = table.fields().at(column).type;
    return t == 'C';
}

using ByteClasses = std::array<quint8, 256>;

// Each byte's class in the General order: bytes whose characters are equal in it (differ in
// case only) share the lowest of them. Nothing when a byte does not read as one character
// that stands alone (none, half a surrogate pair, or an accent that would join the letter
// before it): equal texts could then differ in length, and the evaluator has to judge.
std::optional<ByteClasses> generalByteClasses(const DbfTable &table)
{
    ByteClasses classes{};
    QHash<QString, quint8> classOfKey;
    for (int b = 0; b < 256; ++b) {
        const char c = char(b);
        const QString text = table.decode(QByteArrayView(&c, 1));
        if (text.size() != 1 || text.at(0).isMark() || text.at(0).isSurrogate())
            return std::nullopt;
        const QString key = jet::generalSortKey(text);
        auto known = classOfKey.constFind(key);
        if (known == classOfKey.cend())
            known = classOfKey.insert(key, quint8(b));
        classes[size_t(b)] = known.value();
    }
    return classes;
}

// The General order's equality on a character field: the same length, and byte by byte the
// same class.
std::function<bool(quint32)> generalEquality(const DbfTable &table, int field, const QString &text)
{
    const std::optional<ByteClasses> classes = generalByteClasses(table);
    Result<QByteArray> bytes = table.encode(text);
    if (!classes || !bytes.isOk())
        return nullptr; // a character the code page lacks may still equal one it has
    const QByteArray raw = bytes.value();
    QByteArray folded = raw;
    for (char &c : folded)
        c = char((*classes)[quint8(c)]);
    // Eight bytes at a time while they are the very bytes wanted (an ID is usually stored as
    // it is typed); byte by byte through the classes where they are not.
    return [&table, field, raw, folded, classes = *classes](quint32 recno) {
        const QByteArrayView stored = table.rawText(recno, field);
        const qsizetype n = stored.size();
        if (n != raw.size())
            return false;
        for (qsizetype i = 0; i < n; i += 8) {
            const qsizetype run = std::min<qsizetype>(8, n - i);
            if (std::memcmp(stored.data() + i, raw.constData() + i, size_t(run)) == 0)
                continue;
            for (qsizetype k = i; k < i + run; ++k) {
                if (char(classes[quint8(stored[k])]) != folded[k])
                    return false;
            }
        }
        return true;
    };
}

// field = 'text' on a character field (the ID criterion; binding has already computed the
// CHR(n) & ... chain into one literal): the text's bytes in the table's code page, compared
// with the stored bytes less their padding, in byte order byte for byte.
std::function<bool(quint32)> equalityPredicate(const DbfTable &table, const Node &node,
                                               TextCompare collate)
{
    if (node.kind != NodeKind::Binary || node.op != jet::Op::Eq)
        return nullptr;
    const Node *column = node.args[0].get();
    const Node *constant = node.args[1].get();
    if (column->kind != NodeKind::Column)
        std::swap(column, constant);
    if (column->kind != NodeKind::Column || !isTextField(table, column->column)
        || constant->kind != NodeKind::Literal || !jet::isText(constant->value))
        return nullptr;
    if (collate == TextCompare::NoCase)
        return generalEquality(table, column->column, constant->value.toString());
    Result<QByteArray> bytes = table.encode(constant->value.toString());
    if (!bytes.isOk())
        return [](quint32) { return false; }; // no stored text can hold that character
    const QByteArray wanted = bytes.value();
    const int field = column->column;
    return [&table, wanted, field](quint32 recno) { return table.rawText(recno, field) == wanted; };
}

// The records that hold field = 'text' (a node `equal` was made for), from the kept ID index;
// nothing when the file is to be passed over instead.
std::optional<std::vector<quint32>> indexedMatches(const DbfTable &table, const Node &node,
                                                   TextCompare collate,
                                                   const std::function<bool(quint32)> &equal)
{
    const Node *column = node.args[0].get();
    const Node *constant = node.args[1].get();
    if (column->kind != NodeKind::Column)
        std::swap(column, constant);
    if (collate == TextCompare::Binary) {
        const Result<QByteArray> bytes = table.encode(constant->value.toString());
        std::optional<std::vector<quint32>> viaTag =
            bytes.isOk() ? cdxCandidates(table, column->column, bytes.value()) : std::nullopt;
        if (viaTag) {
            std::erase_if(*viaTag, [&equal](quint32 recno) { return !equal(recno); });
            return viaTag;
        }
    }
    ByteFold fold{};
    if (collate == TextCompare::NoCase) {
        const std::optional<ByteClasses> classes = generalByteClasses(table);
        if (!classes)
            return std::nullopt;
        fold = *classes;
    } else {
        for (size_t b = 0; b < fold.size(); ++b)
            fold[b] = quint8(b);
    }
    const Result<QByteArray> wanted = table.encode(constant->value.toString());
    if (!wanted.isOk())
        return std::nullopt;
    std::optional<std::vector<quint32>> found =
        indexedCandidates(table, column->column, collate, fold, wanted.value());
    if (found)
        std::erase_if(*found, [&equal](quint32 recno) { return !equal(recno); });
    return found;
}

// The ranks of the distinct values a scan numbered: in byte order (FoxPro's own index order),
// or in the General order of their text as the field reads (trailing blanks dropped).
std::vector<quint32> distinctRanks(const DbfTable &table, const ScanRanking &r)
{
    if (r.order == TextCompare::Binary)
        return r.ranker.ranksOfIds();
    return r.ranker.ranksOfIds([&table](QByteArrayView value) {
        qsizetype n = value.size();
        while (n > 0 && (value[n - 1] == ' ' || value[n - 1] == '\0'))
            --n;
        return jet::generalSortKey(table.decode(value.first(n)));
    });
}

} // namespace

Result<NodePtr> FoxProRecordSource::bindExpression(const NodePtr &node) const
{
    const DbfTable &table = *m_table;
    const QString alias = m_alias;
    const QString tableName = m_tableName;
    const jet::ColumnResolver resolve = [&](const Node &col) -> Result<int> {
        QString qualifier = col.table;
        QString name = col.name;
        if (col.wholeBracket) {
            const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
            qualifier = name.left(dot).trimmed();
            name = name.mid(dot + 1).trimmed();
        }
        const QString written = qualifier.isEmpty() ? name : qualifier + QLatin1Char('.') + name;
        const bool ours = qualifier.isEmpty() || qualifier.compare(alias, Qt::CaseInsensitive) == 0
            || qualifier.compare(tableName, Qt::CaseInsensitive) == 0;
        const int index = ours ? table.fieldIndex(name) : -1;
        if (index < 0)
            return Status(
                Status::Code::UnknownField,
                QStringLiteral("unknown field '%1' at position %2").arg(written).arg(col.pos));
        return index;
    };
    // Bound for the source's comparison: constant parts are worked out here, once.
    Status s = jet::bind(node, resolve, m_collate);
    if (!s.isOk())
        return s;
    return node;
}

Result<std::vector<quint32>> FoxProRecordSource::filter(const NodePtr &where,
                                                        std::vector<ScanRanking> &rankings) const
{
    const DbfTable &table = *m_table;
    const quint32 count = table.recordCount();
    std::vector<quint32> keys;
    keys.reserve(count);
    for (ScanRanking &r : rankings) {
        r.ids.reserve(r.everyRecord ? size_t(count) + 1 : count / 4);
        if (r.everyRecord)
            r.ids.push_back(0); // ids indexed by record number, which starts at 1
    }
    // field = 'text' alone, as an ID look-up asks: the kept index, or one pass comparing bytes.
    if (where && rankings.empty()) {
        if (const std::function<bool(quint32)> equal =
                equalityPredicate(table, *where, m_collate)) {
            if (std::optional<std::vector<quint32>> found =
                    indexedMatches(table, *where, m_collate, equal))
                return std::move(*found);
            for (quint32 recno = 1; recno <= count; ++recno) {
                if (!table.isDeleted(recno) && equal(recno))
                    keys.push_back(recno);
            }
            keys.shrink_to_fit();
            return keys;
        }
    }
    const std::optional<PrefixScan> scan =
        where ? PrefixScan::compile(table, *where, m_collate) : std::nullopt;
    RecordRow row(table);
    const qsizetype stride = table.header().recordLength;
    Status failed;
    auto visit = [&](quint32 first, const char *records, quint32 runLength) {
        for (quint32 i = 0; i < runLength; ++i) {
            const quint32 recno = first + i;
            const char *record = records + qsizetype(i) * stride;
            // Ask for a record some way ahead: the hardware's own prefetching stops at every
            // page boundary, and on virtual machines a page's first touch is dear.
            if (i + kScanAhead < runLength)
                prefetch(record + kScanAhead * stride);
            for (ScanRanking &r : rankings) {
                if (r.everyRecord)
                    r.ids.push_back(r.ranker.add(record + r.offset));
            }
            if (record[0] == '*')
                continue;
            if (jet::deadlinePassed()) {
                failed = jet::deadlineError();
                return false;
            }
            if (where) {
                const Verdict verdict = scan ? scan->test(record) : Verdict::Undecided;
                if (verdict == Verdict::Reject)
                    continue;
                if (verdict == Verdict::Undecided) {
                    row.setRecord(recno);
                    Result<QVariant> v = jet::evaluate(*where, &row, m_collate);
                    if (!v.isOk()) {
                        failed = v.status();
                        return false;
                    }
                    if (!jet::isTrue(v.value()))
                        continue;
                }
            }
            for (ScanRanking &r : rankings) {
                if (!r.everyRecord)
                    r.ids.push_back(r.ranker.add(record + r.offset));
            }
            keys.push_back(recno);
        }
        return true;
    };
    if (Status s = table.scanRecords(visit); !s.isOk())
        return s;
    if (!failed.isOk())
        return failed;
    if (keys.capacity() - keys.size() > keys.size() / 4)
        keys.shrink_to_fit(); // a narrow selection; a broad one keeps its few spare slots
    return keys;
}

// Where the ranks of each character, date and logical ORDER BY field come from: ranks kept
// from an earlier sort of the unchanged file, else numbered during the scan. A statement
// without WHERE numbers every record of a settled file and keeps the ranks for the queries
// that follow (the navigator's find runs in the order of its sort query).
// A whole table sorted on one character field in binary comparison, ascending, is the order
// of a tag on that field: read from the tag's leaves instead of ranked and sorted.
std::optional<std::vector<quint32>>
FoxProRecordSource::tagOrder(const jet::SelectStatement &stmt) const
{
    if (stmt.where || stmt.orderBy.size() != 1 || stmt.orderBy[0].descending
        || m_collate != TextCompare::Binary || stmt.orderBy[0].expr->kind != NodeKind::Column)
        return std::nullopt;
    return cdxOrder(*m_table, stmt.orderBy[0].expr->column);
}

Status FoxProRecordSource::build(const jet::SelectStatement &stmt)
{
    if (stmt.where) {
        Result<NodePtr> bound = bindExpression(stmt.where);
        if (!bound.isOk())
            return bound.status();
    }
    for (const jet::OrderItem &item : stmt.orderBy) {
        Result<NodePtr> bound = bindExpression(item.expr);
        if (!bound.isOk())
            return bound.status();
    }
    const DbfTable &table = *m_table;
    const Result<DbfChangeStamp> stamp = table.changeStamp();
    // Taken before the records are read: a write in between is seen as a change.
    if (stamp.isOk())
        m_seenStamp = stamp.value();
    if (std::optional<std::vector<quint32>> inTagOrder = tagOrder(stmt)) {
        m_keys = std::move(*inTagOrder);
        m_recnoOrder = false;
        m_where = stmt.where;
        m_order = stmt.orderBy;
        return Status::ok();
    }
    const bool keep = !stmt.where && stamp.isOk() && stamp->settled;
    std::vector<std::optional<KeyRanks>> byteKeys(stmt.orderBy.size());
    std::vector<ScanRanking> rankings;
    for (size_t k = 0; k < stmt.orderBy.size(); ++k) {
        const jet::Node &expr = *stmt.orderBy[k].expr;
        if (expr.kind != NodeKind::Column)
            continue;
        const DbfField &field = table.fields().at(expr.column);
        if (field.type != 'C' && field.type != 'D' && field.type != 'L')
            continue;
        const TextCompare order = field.type == 'C' ? m_collate : TextCompare::Binary;
        if (stamp.isOk()) {
            if (RankCache::Ranks kept =
                    RankCache::global().find(stamp.value(), expr.column, order)) {
                byteKeys[k].emplace().kept = std::move(kept);
                continue;
            }
        }
        rankings.push_back({ k,
                             expr.column,
                             field.offset,
                             order,
                             keep,
                             DistinctRanker(size_t(field.length)),
                             {} });
    }

    Result<std::vector<quint32>> keys = filter(stmt.where, rankings);
    if (!keys.isOk())
        return keys.status();
    m_keys = std::move(keys).value();
    m_recnoOrder = stmt.orderBy.empty();
    m_where = stmt.where;
    m_order = stmt.orderBy;

    const Result<DbfChangeStamp> after = keep ? table.changeStamp() : stamp;
    const bool unchanged = after.isOk() && after->sameContents(stamp.value());
    for (ScanRanking &r : rankings) {
        const std::vector<quint32> rankOfId = distinctRanks(table, r);
        for (quint32 &id : r.ids)
            id = rankOfId.empty() ? 0 : rankOfId[id];
        KeyRanks &key = byteKeys[r.orderIndex].emplace();
        if (r.everyRecord) {
            const bool whole = r.ids.size() == size_t(table.recordCount()) + 1;
            key.kept = std::make_shared<const std::vector<quint32>>(std::move(r.ids));
            if (unchanged && whole)
                RankCache::global().store(stamp.value(), r.field, r.order, key.kept);
        } else {
            key.own = std::move(r.ids);
        }
    }
    return sort(stmt.orderBy, std::move(byteKeys));
}

// In a sorted keyset the records lie scattered over the file, and reading them in the
// keyset's order costs a cache miss each; the ID criterion matches one record or a few. So
// the matches are found in one pass in file order, then their first position in the keyset
// by a pass over the keys alone.
qint64 FoxProRecordSource::locateInFileOrder(const std::function<bool(quint32)> &matches,
                                             qint64 start) const
{
    const DbfTable &table = *m_table;
    const quint32 count = table.recordCount();
    std::vector<quint32> found;
    for (quint32 recno = 1; recno <= count; ++recno) {
        if (!table.isDeleted(recno) && matches(recno))
            found.push_back(recno);
    }
    if (found.empty())
        return -1;
    std::vector<bool> wanted;
    if (found.size() > 8) {
        wanted.assign(size_t(count) + 1, false);
        for (const quint32 recno : found)
            wanted[recno] = true;
    }
    for (qint64 i = qMax<qint64>(start, 0); i < qint64(m_keys.size()); ++i) {
        const quint32 recno = m_keys[size_t(i)];
        const bool hit = wanted.empty()
            ? std::find(found.begin(), found.end(), recno) != found.end()
            : recno < wanted.size() && wanted[recno];
        if (hit)
            return i;
    }
    return -1;
}

Result<qint64> FoxProRecordSource::locate(const QString &criterion, qint64 start) const
{
    const StatementDeadline deadline;
    Result<NodePtr> tree = jet::parseExpression(criterion, statementLimits());
    if (!tree.isOk())
        return tree.status();
    Result<NodePtr> bound = bindExpression(tree.value());
    if (!bound.isOk())
        return bound.status();
    const Node &node = *bound.value();
    const std::function<bool(quint32)> equal = equalityPredicate(*m_table, node, m_collate);
    const std::optional<PrefixScan> scan =
        equal ? std::nullopt : PrefixScan::compile(*m_table, node, m_collate);
    if (equal) {
        if (std::optional<std::vector<quint32>> found =
                indexedMatches(*m_table, node, m_collate, equal))
            return firstPositionOf(m_keys, m_recnoOrder, *found, start);
    }
    if (equal && !m_recnoOrder)
        return locateInFileOrder(equal, start);
    RecordRow row(*m_table);
    for (qint64 i = start; i < qint64(m_keys.size()); ++i) {
        const quint32 recno = m_keys[size_t(i)];
        const char *record = m_table->recordBytes(recno);
        if (!record || record[0] == '*')
            continue; // deleted by another user since the open
        if (jet::deadlinePassed())
            return jet::deadlineError();
        if (equal) {
            if (equal(recno))
                return i;
            continue;
        }
        const Verdict verdict = scan ? scan->test(record) : Verdict::Undecided;
        if (verdict == Verdict::Accept)
            return i;
        if (verdict == Verdict::Reject)
            continue;
        row.setRecord(recno);
        Result<QVariant> v = jet::evaluate(node, &row, m_collate);
        if (!v.isOk())
            return v.status();
        if (jet::isTrue(v.value()))
            return i;
    }
    return qint64(-1);
}

} // namespace plx::foxpro
