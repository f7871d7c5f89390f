// mervane/typedtext_p.h: what a text row stores for the text a user typed.
//
// The text row (mvText) shows every field type as text; on validation and on EditUpdate
// it asks here what the field takes for the typed text, or why it takes nothing. The
// reasons are words for the user, put behind the row's caption ("Amount is not a number").
#pragma once

#include "mervane/rowvalidator_p.h"

#include "services/recordsource/recordsource.h"

#include <QString>
#include <QVariant>

#include <optional>

namespace plx {

// The row's settings that decide what typed text becomes.
struct TypedTextRules
{
    InputMode mode = InputMode::Text;
    QString format; // the row's display format; dates are read back in its order
    int maxLength = 0; // the row's own limit, 0: none (a text field's size still holds)
    bool allowNull = false; // an empty value becomes Null instead of "" or a refusal
    int codePage = 0; // the table's code page; 0: any character can be stored
    bool memoCrLf = true; // memo line ends are stored as CR LF (as the loaded memo had them)
};

// The smaller of `maxLength` (0: none) and a text field's size; 0 when neither limits.
int effectiveMaxLength(int maxLength, const FieldInfo &field);

// The value `field` stores for `typed`, or std::nullopt and the reason in `reason`
// (when given) that the field cannot take it.
std::optional<QVariant> storedFromTyped(const QString &typed, const FieldInfo &field,
                                        const TypedTextRules &rules, QString *reason);

} // namespace plx
