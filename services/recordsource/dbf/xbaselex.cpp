// services/recordsource/dbf/xbaselex.cpp: splitting an index expression into words.
#include "services/recordsource/dbf/xbaselex_p.h"

#include <QByteArrayView>

namespace plx::xbase {

namespace {

bool isLetter(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

} // namespace

Token Lexer::next(QString *problem)
{
    while (m_pos < m_text.size() && (m_text[m_pos] == ' ' || m_text[m_pos] == '\t'))
        ++m_pos;
    if (m_pos >= m_text.size())
        return {};
    const char c = m_text[m_pos];
    const qsizetype start = m_pos;
    if (c == '"' || c == '\'' || c == '[') {
        const qsizetype end = m_text.indexOf(c == '[' ? ']' : c, m_pos + 1);
        if (end < 0) {
            *problem = QStringLiteral("a text without its closing quote");
            return {};
        }
        m_pos = end + 1;
        return { Token::Kind::Text, m_text.mid(start + 1, end - start - 1) };
    }
    if (isDigit(c) || (c == '.' && m_pos + 1 < m_text.size() && isDigit(m_text[m_pos + 1]))) {
        while (m_pos < m_text.size() && (isDigit(m_text[m_pos]) || m_text[m_pos] == '.'))
            ++m_pos;
        return { Token::Kind::Number, m_text.mid(start, m_pos - start) };
    }
    if (isLetter(c)) {
        while (m_pos < m_text.size() && (isLetter(m_text[m_pos]) || isDigit(m_text[m_pos])))
            ++m_pos;
        return { Token::Kind::Name, m_text.mid(start, m_pos - start).toUpper() };
    }
    if (c == '.')
        return dotted(problem);
    return symbol();
}

Token Lexer::symbol()
{
    static const char *const kTwoChar[] = { "==", "<=", ">=", "<>", "!=", "->" };
    const qsizetype start = m_pos;
    m_pos += 1;
    for (const char *two : kTwoChar) {
        if (m_text.mid(start, 2) == QByteArrayView(two)) {
            m_pos = start + 2;
            break;
        }
    }
    Token token{ Token::Kind::Symbol, m_text.mid(start, m_pos - start) };
    if (token.text == "<>" || token.text == "!=")
        token.text = "#";
    else if (token.text == "!")
        token.text = ".NOT.";
    return token;
}

// .T. .F. .Y. .N. .AND. .OR. .NOT.
Token Lexer::dotted(QString *problem)
{
    const qsizetype end = m_text.indexOf('.', m_pos + 1);
    const QByteArray word = end < 0 ? QByteArray() : m_text.mid(m_pos, end - m_pos + 1).toUpper();
    if (word == ".T." || word == ".F." || word == ".Y." || word == ".N." || word == ".AND."
        || word == ".OR." || word == ".NOT.") {
        m_pos = end + 1;
        return { Token::Kind::Symbol, word };
    }
    *problem = QStringLiteral("unexpected \".\"");
    return {};
}

} // namespace plx::xbase
