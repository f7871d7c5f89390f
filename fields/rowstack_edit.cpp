// fields/rowstack_edit.cpp: a stack's binding to a record source or a table file, and the
// edit life cycle it forwards to every row in row order.
#include "fields/rowstack.h"
#include "fields/rowstack_p.h"

#include "services/texthelpers.h"

#include <utility>

namespace plx {

namespace {

// The part of a path behind its last separator; hosts write "\", the platform may use "/".
QString fileNameOf(const QString &path)
{
    const qsizetype cut =
        std::max(path.lastIndexOf(QLatin1Char('\\')), path.lastIndexOf(QLatin1Char('/')));
    return cut < 0 ? path : path.mid(cut + 1);
}

} // namespace

void RowStack::setSDBFPathFileName(const QString &path)
{
    Q_D(RowStack);
    if (!d->tableFileFound(path))
        return;
    const QString fileName = fileNameOf(path);
    const qint16 type = DBFType();
    const QString filter = plx::getLenTrim(d->filter) >= 1 ? d->filter : QString();
    d->forEachRow([&](mvRow *r, qint16 i) {
        mvDataBinding *b = r->DataBinding();
        b->setDBFPathFileName(path);
        b->setDBFFileName(fileName);
        b->setDBFType(type);
        if (type == 1) {
            const qsizetype dot = fileName.lastIndexOf(QLatin1Char('.'));
            b->setDBFTableName(dot < 0 ? fileName : fileName.left(dot));
        }
        b->setFilter(filter);
        if (i == 0)
            (void)b->Connect(); // row 0 opens the table; every other row shares its source
        else
            b->setRecordSet(d->rows.at(0)->DataBinding()->RecordSet());
    });
}

QString RowStack::sDBFPathFileName() const
{
    mvRow *r0 = row(0);
    return r0 && r0->hasDataBinding() ? r0->DataBinding()->DBFPathFileName() : QString();
}

std::shared_ptr<plx::RecordSource> RowStack::RecordSet() const
{
    mvRow *r0 = row(0);
    return r0 && r0->hasDataBinding() ? r0->DataBinding()->RecordSet() : nullptr;
}

void RowStack::setRecordSet(std::shared_ptr<plx::RecordSource> source)
{
    d_func()->forEachRow([&source](mvRow *r, qint16) { r->DataBinding()->setRecordSet(source); });
}

void RowStackPrivate::disconnectRows()
{
    forEachRow([](mvRow *r, qint16) {
        if (r->hasDataBinding()) {
            r->DataBinding()->Disconnect();
            r->releaseDataBinding();
        }
    });
}

void RowStack::Edit()
{
    d_func()->forEachRow([](mvRow *r, qint16) { r->Edit(); });
}

void RowStack::Update()
{
    UpdateDBF();
}

void RowStack::UpdateDBF()
{
    d_func()->forEachRow([](mvRow *r, qint16) { (void)r->UpdateDBF(); });
}

bool RowStack::bEdit(bool bSilent, QVariant &vReturn)
{
    bool result = true;
    QString collected;
    d_func()->forEachRow([&](mvRow *r, qint16) {
        QString reason;
        if (!r->bValidate(bSilent, &reason)) {
            collected = plx::modAddALine(collected, r->sCaption() + QLatin1Char(' ') + reason,
                                         QStringLiteral("\r\n"), false);
            result = false;
        }
    });
    vReturn = collected;
    return result;
}

void RowStack::setRule(qint16 n, mvRow::Rule rule)
{
    if (mvRow *r = d_func()->rowAt(n))
        r->setRule(std::move(rule));
}

QString RowStack::sRefusal(qint16 n)
{
    mvRow *r = d_func()->rowAt(n);
    return r ? r->hostRefusal() : QString();
}

void RowStack::EditUpdate()
{
    d_func()->forEachRow([](mvRow *r, qint16) { r->EditUpdate(); });
}

void RowStack::CancelEdit()
{
    d_func()->forEachRow([](mvRow *r, qint16) { r->CancelEdit(); });
}

QString RowStack::SaveDBF()
{
    // Rows tell the user themselves what they could not save; the stack reports nothing.
    d_func()->forEachRow([](mvRow *r, qint16) { (void)r->Save(); });
    return QString();
}

QString RowStack::Save()
{
    const QString result = SaveDBF();
    return plx::getLenTrim(result) >= 1 ? result : QString();
}

} // namespace plx
