// services/recordsource/jet/internal/parser.h: Jet SQL text to syntax tree.
//
// Accepts one SELECT statement (an optional trailing ';' and nothing after it) or one
// expression (a WHERE condition or a FindFirst criterion). Keywords are case-insensitive.
// Errors are Status::Code::Syntax with the offending token and its 1-based position; an
// unknown function is Status::Code::UnknownFunction, found here so that nothing runs. A text
// beyond the engine's `limits` (internal/lexer.h) is NotSupported, refused before it is parsed.
#pragma once

#include "services/recordsource/jet/internal/ast.h"
#include "services/recordsource/jet/internal/lexer.h"
#include "services/recordsource/result.h"

namespace plx::jet {

Result<SelectStatement> parseSelect(const QString &sql, const ParseLimits &limits = {});
Result<NodePtr> parseExpression(const QString &text, const ParseLimits &limits = {});

// True for the names the evaluator and the translators implement (upper case, '$' kept).
bool isKnownFunction(const QString &upperName);

} // namespace plx::jet
