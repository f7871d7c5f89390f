// services/recordsource/dbf/dbfvalue_p.h: the text forms FoxPro stores field values in.
//
// Shared by the reader (value()) and the writer (writeRecord(), appendRecord()), so that a
// value written is exactly the value read back.
#pragma once

#include "services/recordsource/dbf/internal/dbftable.h"

#include <QByteArrayView>
#include <QVariant>

namespace plx::dbfvalue {

// Decodes the stored bytes of a field that lives entirely in the record (every type but
// the memo types). Null for blanks.
QVariant decodeInline(const DbfField &field, const char *bytes, int codePage);

// Writes `value` into the field's `field.length` bytes at `dst` (non-memo FoxPro 2.x types
// C N F D L). Null writes the field's blank form. InvalidArgument / TypeMismatch, naming the
// field, for a value the field cannot hold; `dst` is then untouched.
Status encodeInline(const DbfField &field, const QVariant &value, int codePage, char *dst);

// The memo block number stored in a memo field (10 ASCII digits, or 4 bytes LE in Visual
// FoxPro); 0 when blank.
quint32 memoBlock(const DbfField &field, const char *bytes);
// Writes a memo block number (0 = blank) in FoxPro 2.x's 10-digit form.
void putMemoBlock(const DbfField &field, quint32 block, char *dst);
// The bytes a memo value is stored as, in the table's code page; InvalidArgument for text
// that the code page cannot hold.
Result<QByteArray> memoBytes(const DbfField &field, const QVariant &value, int codePage);
// FPT block type of a memo field: 1 text (M), 2 object (G), 0 picture (P).
quint32 memoType(const DbfField &field);
bool isMemo(const DbfField &field);

} // namespace plx::dbfvalue
