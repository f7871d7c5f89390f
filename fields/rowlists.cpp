// fields/rowlists.cpp: the stacks' rows read and written as whole lists, one entry a row,
// so that a form designer edits every row of a stack in one property.
#include "fields/mvchecks.h"
#include "fields/mvchkwithtxt.h"
#include "fields/rowstack.h"
#include "fields/textstack.h"

#include <climits>
#include <functional>

namespace plx {

namespace {

// Rows 0 .. last through `get`.
QStringList collect(qint16 last, const std::function<QString(qint16)> &get)
{
    QStringList out;
    for (qint16 n = 0; n <= last; ++n)
        out << get(n);
    return out;
}

// Adds rows until `list` has one for each entry (through `grow`), then sets them in order.
void distribute(const QStringList &list, qint16 last, const std::function<void(qint16)> &grow,
                const std::function<void(qint16, const QString &)> &set)
{
    const auto wanted = static_cast<qint16>(qMin<qsizetype>(list.size(), SHRT_MAX) - 1);
    if (wanted > last)
        grow(wanted);
    for (qint16 n = 0; n <= wanted; ++n)
        set(n, list.at(n));
}

} // namespace

QStringList RowStack::sFieldNames() const
{
    return collect(nUbound(), [this](qint16 n) { return sFieldName(n); });
}

void RowStack::setSFieldNames(const QStringList &names)
{
    distribute(
        names, nUbound(), [this](qint16 n) { setNUbound(n); },
        [this](qint16 n, const QString &name) { setSFieldName(n, name); });
}

QStringList TextStack::sCaptions() const
{
    return collect(nUbound(), [this](qint16 n) { return sCaption(n); });
}

void TextStack::setSCaptions(const QStringList &captions)
{
    distribute(
        captions, nUbound(), [this](qint16 n) { setNUbound(n); },
        [this](qint16 n, const QString &caption) { setSCaption(n, caption); });
}

QStringList mvChecks::sCaptions() const
{
    return collect(nUbound(), [this](qint16 n) { return checkRow(n)->sCaption(); });
}

void mvChecks::setSCaptions(const QStringList &captions)
{
    distribute(
        captions, nUbound(), [this](qint16 n) { setNUbound(n); },
        [this](qint16 n, const QString &caption) { setSCaption(n, caption); });
}

QStringList mvChkWithTxt::sCaptionsTxt() const
{
    return collect(nUbound(), [this](qint16 n) { return sCaptionTxt(n); });
}

void mvChkWithTxt::setSCaptionsTxt(const QStringList &captions)
{
    distribute(
        captions, nUbound(), [this](qint16 n) { setNUbound(n); },
        [this](qint16 n, const QString &caption) { setSCaptionTxt(n, caption); });
}

QStringList mvChkWithTxt::sFieldNamesTxt() const
{
    return collect(nUbound(), [this](qint16 n) { return sFieldNameTxt(n); });
}

void mvChkWithTxt::setSFieldNamesTxt(const QStringList &names)
{
    distribute(
        names, nUbound(), [this](qint16 n) { setNUbound(n); },
        [this](qint16 n, const QString &name) { setSFieldNameTxt(n, name); });
}

} // namespace plx
