// services/recordsource/dbf/internal/xbaseexpression.h: the FoxPro expressions of index tags,
// compiled against a table and evaluated on its records.
//
// An index tag's key and FOR clause are xBase expressions that FoxPro evaluates on every
// record it writes; maintaining or trusting an index means evaluating them exactly as FoxPro
// does. This covers what real tags use: field names (an "alias->" prefix is ignored), text,
// number and .T./.F. literals, + of texts, + - * / of numbers, a date plus or minus days,
// comparisons (= compares a text only as far as the right side goes, as under SET EXACT
// OFF; == compares exactly; # != <> $), .AND. .OR. .NOT. !, and the functions UPPER, LOWER,
// LEFT, RIGHT, SUBSTR, ALLTRIM, LTRIM, RTRIM, TRIM, STR, DTOS, DTOC, VAL, IIF and DELETED.
// A function name may be cut to its first four letters, as FoxPro allows (SUBS, ALLT).
// DTOC uses FoxPro's default SET DATE AMERICAN with SET CENTURY OFF (MM/DD/YY).
//
// Types are checked when the expression is compiled, so a tag whose expression this cannot
// evaluate is known before any record is read: UnknownField, UnknownFunction, Syntax or
// TypeMismatch, with a message naming the problem.
//
// Usage:
//     auto key = plx::XbaseExpression::compile(tag.keyExpression, table);
//     if (!key.isOk()) return key.status();   // the tag cannot be evaluated
//     auto bytes = key->key(recno, tag.keyLength);
#pragma once

#include "services/recordsource/dbf/internal/cdxkey.h"
#include "services/recordsource/result.h"

#include <QByteArray>
#include <QDate>

#include <memory>

namespace plx {

class DbfTable;

// A value of an expression. Text is kept in the table's code page, blanks and all, since
// the key is made of those bytes.
struct XbaseValue
{
    cdxkey::KeyType type = cdxkey::KeyType::Character;
    QByteArray text;
    double number = 0; // Numeric
    QDate date; // Date; null for a blank date
    bool logical = false; // Logical
    qint32 integer = 0; // Integer: a Visual FoxPro I field read on its own
};

namespace xbase {
struct Node;
}

class XbaseExpression
{
public:
    ~XbaseExpression();
    XbaseExpression(XbaseExpression &&) noexcept;
    XbaseExpression &operator=(XbaseExpression &&) noexcept;

    // Compiles `text` (in the table's code page) against the fields of `table`, which must
    // outlive the expression.
    static Result<XbaseExpression> compile(const QByteArray &text, const DbfTable &table);

    // The type of every value this expression gives.
    cdxkey::KeyType type() const;
    // The value on record `recno`; InvalidArgument for a record the table does not hold.
    Result<XbaseValue> evaluate(quint32 recno) const;
    // The index key of record `recno`, `keyLength` bytes as FoxPro stores it.
    Result<QByteArray> key(quint32 recno, int keyLength) const;

private:
    XbaseExpression(std::unique_ptr<xbase::Node> root, const DbfTable &table);
    std::unique_ptr<xbase::Node> m_root;
    const DbfTable *m_table = nullptr;
    // UPPER() and LOWER() of each byte in the table's code page.
    QByteArray m_upper;
    QByteArray m_lower;
};

// The key bytes of `value` in a tag of `keyLength` bytes.
QByteArray keyOf(const XbaseValue &value, int keyLength);

} // namespace plx
