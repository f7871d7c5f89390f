// fields/rowstack.cpp: the rows of a stack, their layout, the per-row accessors and the
// settings that go to every row.
#include "fields/rowstack.h"
#include "fields/rowstack_p.h"

#include "mervane/twips.h"

#include "services/texthelpers.h"

#include <QEvent>

#include <stdexcept>

namespace plx {

namespace {

// The right margin every row keeps to the control's edge: 60 twips.
constexpr int RightMarginTwips = 60;

QColor fromOleColor(qint32 ole)
{
    return QColor(ole & 0xFF, (ole >> 8) & 0xFF, (ole >> 16) & 0xFF);
}

} // namespace

RowStack::RowStack(std::unique_ptr<RowStackPrivate> dd, QWidget *parent)
    : QWidget(parent), d_ptr(std::move(dd))
{
    Q_D(RowStack);
    d->q_ptr = this;
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    d->addRow();
    d->fitHeight();
}

RowStack::~RowStack()
{
    d_func()->disconnectRows();
}

void RowStack::setServices(plx::Services *services)
{
    Q_D(RowStack);
    d->services = services;
    for (mvRow *r : d->rows)
        r->setServices(services);
}

plx::Services *RowStack::services() const
{
    return d_func()->services;
}

void RowStackPrivate::addRow()
{
    Q_Q(RowStack);
    const qint16 index = qint16(rows.size());
    mvRow *r = createRow(index);
    r->setServices(services);
    const int width = plx::pixelsToTwipsX(q, q->width()) - RightMarginTwips;
    if (index == 0) {
        r->setTwipsGeometry(0, 0, width);
    } else {
        const mvRow *above = rows.at(index - 1);
        r->setTwipsGeometry(above->leftTwips(), above->topTwips() + above->iHeight() + vspacing,
                            width - above->leftTwips());
    }
    r->setText(QString());
    rows << r;
    r->show();
    if (index > 0)
        QWidget::setTabOrder(rows.at(index - 1), r);
    QObject::connect(r, &mvRow::DblClick, q, [this, index] { rowDoubleClicked(index); });
    QObject::connect(r, &mvRow::Validate, q, [q, index](const QString &value, QString &reason) {
        Q_EMIT q->ValidateRow(index, value, reason);
    });
}

qint16 RowStack::nUbound() const
{
    return qint16(d_func()->rows.size() - 1);
}

void RowStack::setNUbound(qint16 n)
{
    Q_D(RowStack);
    if (n < 0)
        n = 0;
    while (d->rows.size() - 1 < n)
        d->addRow();
    while (d->rows.size() - 1 > n) {
        mvRow *last = d->rows.takeLast();
        last->hide();
        delete last;
    }
    d->fitHeight();
    d->yieldOnce();
}

qint16 RowStack::iVspacing() const
{
    return d_func()->vspacing;
}

void RowStack::setIVspacing(qint16 twips)
{
    d_func()->vspacing = twips;
}

void RowStackPrivate::fitHeight()
{
    Q_Q(RowStack);
    const mvRow *last = rows.last();
    const int twips = last->topTwips() + last->iHeight() + vspacing;
    fittedHeight = plx::twipsToPixelsY(q, twips);
    // In a layout the stack keeps the height of its rows and takes the width it is given.
    q->updateGeometry();
    q->resize(q->width(), fittedHeight);
}

QSize RowStack::sizeHint() const
{
    return QSize(qMax(width(), 360), d_func()->fittedHeight);
}

QSize RowStack::minimumSizeHint() const
{
    return QSize(240, d_func()->fittedHeight);
}

void RowStackPrivate::layoutWidths()
{
    Q_Q(RowStack);
    const int inner = plx::pixelsToTwipsX(q, q->contentsRect().width());
    for (mvRow *r : rows)
        r->setTwipsGeometry(r->leftTwips(), r->topTwips(),
                            inner - r->leftTwips() - RightMarginTwips);
}

void RowStack::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    d_func()->layoutWidths();
}

bool RowStack::Enabled() const
{
    return isEnabled();
}

void RowStack::setEnabled(bool enabled)
{
    QWidget::setEnabled(enabled);
    // changeEvent has set the rows when the stack's state changed; when it did not (it was
    // so already, or a parent keeps it disabled), the rows are still set one by one.
    d_func()->enableParts(enabled);
}

void RowStackPrivate::setPartsEnabled(bool enabled)
{
    for (QWidget *child : q_ptr->findChildren<QWidget *>())
        child->setEnabled(enabled);
}

void RowStack::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::EnabledChange)
        d_func()->enabledChanged(*this);
}

QString RowStack::Name() const
{
    return objectName();
}

mvRow *RowStack::row(qint16 n) const
{
    Q_D(const RowStack);
    return d->inRange(n) ? d->rows.at(n) : nullptr;
}

qint16 RowStack::DBFType() const
{
    Q_D(const RowStack);
    if (d->dbfType == 0)
        d->dbfType = 1;
    return d->dbfType;
}

void RowStack::setDBFType(qint16 type)
{
    d_func()->dbfType = type;
}

QString RowStack::Filter() const
{
    return d_func()->filter;
}

void RowStack::setFilterText(const QString &filter)
{
    d_func()->filter = filter;
}

qint32 RowStack::BackColor() const
{
    return d_func()->backColor;
}

void RowStack::setBackColor(qint32 color)
{
    Q_D(RowStack);
    d->backColor = color;
    auto paint = [color](QWidget *w) {
        QPalette p = w->palette();
        p.setColor(QPalette::Window, fromOleColor(color));
        w->setPalette(p);
        w->setAutoFillBackground(true);
    };
    paint(this);
    for (mvRow *r : d->rows)
        paint(r);
}

qint32 RowStack::lAltGrayColor() const
{
    return d_func()->altGray;
}

void RowStack::setLAltGrayColor(qint32 altGray)
{
    Q_D(RowStack);
    d->altGray = altGray;
    d->forEachRow([altGray](mvRow *r, qint16) { r->setLAltGrayColor(altGray); });
}

qint16 RowStack::iHeight(qint16 n) const
{
    const mvRow *r = row(n);
    return r ? r->iHeight() : qint16(0);
}

void RowStack::setIHeight(qint16 n, qint16 twips)
{
    if (mvRow *r = d_func()->rowAt(n))
        r->setIHeight(twips);
}

QString RowStack::sFieldName(qint16 n) const
{
    mvRow *r = row(n);
    return r ? r->DataBinding()->sFieldName() : QString();
}

void RowStack::setSFieldName(qint16 n, const QString &name)
{
    mvRow *r = d_func()->rowAt(n);
    if (!r)
        return;
    r->DataBinding()->setSFieldName(name);
    d_func()->yieldOnce();
}

QString RowStack::sValue(qint16 n) const
{
    const mvRow *r = row(n);
    if (!r)
        throw std::out_of_range("row index outside 0..nUbound");
    return plx::trimSpaces(r->Value());
}

void RowStack::setSValue(qint16 n, const QVariant &value)
{
    if (mvRow *r = d_func()->rowAt(n))
        r->setValue(value.isNull() || !value.isValid() ? QString() : value.toString());
}

QVariant RowStack::Clear(qint16 n)
{
    if (mvRow *r = d_func()->rowAt(n))
        r->setValue(QString());
    return QVariant();
}

void RowStack::ClearAll()
{
    d_func()->forEachRow([this](mvRow *, qint16 i) { Clear(i); });
}

bool RowStack::Locked() const
{
    const mvRow *r0 = row(0);
    return r0 ? r0->Locked() : false;
}

void RowStack::setLocked(bool locked)
{
    d_func()->forEachRow([locked](mvRow *r, qint16) { r->setLocked(locked); });
}

} // namespace plx
