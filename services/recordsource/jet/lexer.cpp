// services/recordsource/jet/lexer.cpp: the Jet SQL tokenizer.
#include "services/recordsource/jet/internal/lexer.h"

#include <QLocale>
#include <QRegularExpression>

#include <algorithm>

namespace plx::jet {

namespace {

Status syntaxError(const QString &what, int pos)
{
    return Status(Status::Code::Syntax, QStringLiteral("%1 at position %2").arg(what).arg(pos));
}

// "the query is too long to run (more than 100,000 terms); shorten the condition"
Status tooLongToRun(qint64 bound, const char *unit)
{
    return Status(Status::Code::NotSupported,
                  QStringLiteral("the query is too long to run (more than %1 %2); shorten the "
                                 "condition")
                      .arg(QLocale(QLocale::English).toString(bound), QLatin1String(unit)));
}

// Parentheses, commas and the like only group or separate terms.
bool isTerm(const Token &t)
{
    return t.kind != TokenKind::Symbol || !QStringLiteral("(),;.!").contains(t.text);
}

bool isNameStart(QChar c)
{
    return c.isLetter() || c == QLatin1Char('_');
}

bool isNamePart(QChar c)
{
    return c.isLetterOrNumber() || c == QLatin1Char('_') || c == QLatin1Char('$');
}

} // namespace

QDateTime parseJetDate(const QString &inside)
{
    const QString s = inside.trimmed();
    static const QRegularExpression iso(
        QStringLiteral("^(\\d{4})[-/](\\d{1,2})[-/](\\d{1,2})(?:\\s+(.*))?$"));
    static const QRegularExpression us(
        QStringLiteral("^(\\d{1,2})[-/](\\d{1,2})[-/](\\d{2,4})(?:\\s+(.*))?$"));
    static const QRegularExpression time(
        QStringLiteral("^(\\d{1,2}):(\\d{1,2})(?::(\\d{1,2}))?\\s*(AM|PM)?$"),
        QRegularExpression::CaseInsensitiveOption);

    auto readTime = [](const QString &t, QTime *out) {
        if (t.trimmed().isEmpty()) {
            *out = QTime(0, 0);
            return true;
        }
        const QRegularExpressionMatch m = time.match(t.trimmed());
        if (!m.hasMatch())
            return false;
        int h = m.captured(1).toInt();
        const int mi = m.captured(2).toInt();
        const int se = m.captured(3).isEmpty() ? 0 : m.captured(3).toInt();
        const QString ampm = m.captured(4).toUpper();
        if (!ampm.isEmpty()) {
            if (h < 1 || h > 12)
                return false;
            if (ampm == QLatin1String("AM") && h == 12)
                h = 0;
            else if (ampm == QLatin1String("PM") && h != 12)
                h += 12;
        }
        *out = QTime(h, mi, se);
        return out->isValid();
    };

    QTime t;
    if (QRegularExpressionMatch m = iso.match(s); m.hasMatch()) {
        const QDate d(m.captured(1).toInt(), m.captured(2).toInt(), m.captured(3).toInt());
        if (!d.isValid() || !readTime(m.captured(4), &t))
            return {};
        return QDateTime(d, t);
    }
    if (QRegularExpressionMatch m = us.match(s); m.hasMatch()) {
        int month = m.captured(1).toInt();
        int day = m.captured(2).toInt();
        int year = m.captured(3).toInt();
        if (m.captured(3).size() <= 2)
            year += year < 30 ? 2000 : 1900;
        if (month > 12)
            std::swap(month, day); // Jet reads an impossible month-first date day first
        const QDate d(year, month, day);
        if (!d.isValid() || !readTime(m.captured(4), &t))
            return {};
        return QDateTime(d, t);
    }
    if (readTime(s, &t))
        return QDateTime(QDate(1899, 12, 30), t);
    return {};
}

namespace {

// The token readers below start at the token's first character text[i], fill `tok` and,
// once the token is complete, move `i` just past it. An error leaves `i` where it was.

// '...' or "...": the delimiter doubled inside stands for itself.
Status readTextLiteral(const QString &text, qsizetype &i, Token &tok)
{
    const QChar quote = text.at(i);
    const qsizetype n = text.size();
    QString value;
    qsizetype j = i + 1;
    bool closed = false;
    while (j < n) {
        if (text.at(j) == quote) {
            if (j + 1 < n && text.at(j + 1) == quote) {
                value += quote;
                j += 2;
                continue;
            }
            closed = true;
            break;
        }
        value += text.at(j++);
    }
    if (!closed)
        return syntaxError(QStringLiteral("unterminated text literal %1").arg(text.mid(i, 20)),
                           tok.pos);
    tok.kind = TokenKind::Text;
    tok.text = value;
    i = j + 1;
    return Status::ok();
}

// [...] or `...`: a name whatever it holds, but never an empty one.
Status readBracketName(const QString &text, qsizetype &i, Token &tok)
{
    const QChar close = text.at(i) == QLatin1Char('[') ? QLatin1Char(']') : QLatin1Char('`');
    const qsizetype end = text.indexOf(close, i + 1);
    if (end < 0)
        return syntaxError(QStringLiteral("unclosed name %1").arg(text.mid(i, 20)), tok.pos);
    tok.kind = TokenKind::BracketName;
    tok.text = text.mid(i + 1, end - i - 1);
    if (tok.text.trimmed().isEmpty())
        return syntaxError(QStringLiteral("empty name %1").arg(text.mid(i, end - i + 1)), tok.pos);
    i = end + 1;
    return Status::ok();
}

// #...#: the token keeps the literal as written for messages, and the date it means.
Status readDateLiteral(const QString &text, qsizetype &i, Token &tok)
{
    const qsizetype end = text.indexOf(QLatin1Char('#'), i + 1);
    if (end < 0)
        return syntaxError(QStringLiteral("unterminated date literal %1").arg(text.mid(i, 20)),
                           tok.pos);
    tok.kind = TokenKind::Date;
    tok.text = text.mid(i, end - i + 1);
    tok.date = parseJetDate(text.mid(i + 1, end - i - 1));
    if (!tok.date.isValid())
        return syntaxError(QStringLiteral("invalid date %1").arg(tok.text), tok.pos);
    i = end + 1;
    return Status::ok();
}

bool startsNumber(const QString &text, qsizetype i)
{
    const QChar c = text.at(i);
    return c.isDigit()
        || (c == QLatin1Char('.') && i + 1 < text.size() && text.at(i + 1).isDigit());
}

qsizetype skipDigits(const QString &text, qsizetype j)
{
    while (j < text.size() && text.at(j).isDigit())
        ++j;
    return j;
}

// digits [. digits] [e [+|-] digits]; an 'e' without digits after it is not part of the
// number, and a number running into a letter is malformed (12abc).
Status readNumber(const QString &text, qsizetype &i, Token &tok)
{
    const qsizetype n = text.size();
    qsizetype j = skipDigits(text, i);
    if (j < n && text.at(j) == QLatin1Char('.'))
        j = skipDigits(text, j + 1);
    if (j < n && (text.at(j) == QLatin1Char('e') || text.at(j) == QLatin1Char('E'))) {
        qsizetype k = j + 1;
        if (k < n && (text.at(k) == QLatin1Char('+') || text.at(k) == QLatin1Char('-')))
            ++k;
        if (k < n && text.at(k).isDigit())
            j = skipDigits(text, k);
    }
    if (j < n && isNameStart(text.at(j)))
        return syntaxError(QStringLiteral("malformed number %1").arg(text.mid(i, j - i + 1)),
                           tok.pos);
    tok.kind = TokenKind::Number;
    tok.text = text.mid(i, j - i);
    tok.number = tok.text.toDouble();
    i = j;
    return Status::ok();
}

void readName(const QString &text, qsizetype &i, Token &tok)
{
    qsizetype j = i + 1;
    while (j < text.size() && isNamePart(text.at(j)))
        ++j;
    tok.kind = TokenKind::Name;
    tok.text = text.mid(i, j - i);
    i = j;
}

// The two-character operators first, so that <= is not read as < then =.
Status readSymbol(const QString &text, qsizetype &i, Token &tok)
{
    static const QString twoChar[] = { QStringLiteral("<>"), QStringLiteral("<="),
                                       QStringLiteral(">=") };
    tok.kind = TokenKind::Symbol;
    const QString pair = text.mid(i, 2);
    for (const QString &s : twoChar) {
        if (pair == s) {
            tok.text = s;
            i += 2;
            return Status::ok();
        }
    }
    const QChar c = text.at(i);
    if (!QStringLiteral("&+-*/\\^=<>(),.!;").contains(c))
        return syntaxError(QStringLiteral("unexpected character '%1'").arg(c), tok.pos);
    tok.text = QString(c);
    ++i;
    return Status::ok();
}

// The first character decides the kind of token.
Status readToken(const QString &text, qsizetype &i, Token &tok)
{
    const QChar c = text.at(i);
    if (c == QLatin1Char('\'') || c == QLatin1Char('"'))
        return readTextLiteral(text, i, tok);
    if (c == QLatin1Char('[') || c == QLatin1Char('`'))
        return readBracketName(text, i, tok);
    if (c == QLatin1Char('#'))
        return readDateLiteral(text, i, tok);
    if (startsNumber(text, i))
        return readNumber(text, i, tok);
    if (isNameStart(c)) {
        readName(text, i, tok);
        return Status::ok();
    }
    return readSymbol(text, i, tok);
}

} // namespace

int countTerms(const std::vector<Token> &tokens)
{
    return int(std::count_if(tokens.begin(), tokens.end(),
                             [](const Token &t) { return t.kind != TokenKind::End && isTerm(t); }));
}

Status checkTerms(int terms, const ParseLimits &limits)
{
    if (limits.maxTerms > 0 && terms > limits.maxTerms)
        return tooLongToRun(limits.maxTerms, "terms");
    return Status::ok();
}

Result<std::vector<Token>> tokenize(const QString &text, const ParseLimits &limits)
{
    if (limits.maxCharacters > 0 && text.size() > limits.maxCharacters)
        return tooLongToRun(limits.maxCharacters, "characters");
    std::vector<Token> tokens;
    const qsizetype n = text.size();
    qsizetype i = 0;
    int terms = 0;
    while (i < n) {
        if (text.at(i).isSpace()) {
            ++i;
            continue;
        }
        Token tok;
        tok.pos = int(i) + 1;
        if (Status s = readToken(text, i, tok); !s.isOk())
            return s;
        if (limits.maxTerms > 0 && isTerm(tok) && ++terms > limits.maxTerms)
            return tooLongToRun(limits.maxTerms, "terms");
        tokens.push_back(std::move(tok));
    }
    Token end;
    end.kind = TokenKind::End;
    end.pos = int(n) + 1;
    tokens.push_back(end);
    return tokens;
}

} // namespace plx::jet
