// fields/rowstack.cpp
#include "fields/rowstack.h"

#include "mervane/twips.h"

#include "services/texthelpers.h"

#include <QEvent>
#include <QFileInfo>

#include <exception>
#include <stdexcept>

namespace {

// The right margin every row keeps to the control's edge: 60 twips.
constexpr int RightMarginTwips = 60;

QColor fromOleColor(qint32 ole)
{
    return QColor(ole & 0xFF, (ole >> 8) & 0xFF, (ole >> 16) & 0xFF);
}

// The part of a path behind its last separator; hosts write "\", the platform may use "/".
QString fileNameOf(const QString &path)
{
    const qsizetype cut =
        std::max(path.lastIndexOf(QLatin1Char('\\')), path.lastIndexOf(QLatin1Char('/')));
    return cut < 0 ? path : path.mid(cut + 1);
}

} // namespace

RowStack::RowStack(QWidget *parent) : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

RowStack::~RowStack() = default;

template<typename Fn> void RowStack::forEachRow(Fn fn) const
{
    for (qsizetype i = 0; i < m_rows.size(); ++i) {
        try {
            fn(m_rows.at(i), qint16(i));
        } catch (const std::exception &) {
            // One row's failure is its own; the others still get their turn.
        } catch (...) {
        }
    }
}

void RowStack::setServices(plx::Services *services)
{
    m_services = services;
    for (mvRow *r : m_rows)
        r->setServices(services);
}

void RowStack::yieldOnce()
{
    plx::uiPumpOf(m_services).processEvents();
}

void RowStack::addRow()
{
    const qint16 index = qint16(m_rows.size());
    mvRow *r = createRow(index);
    r->setServices(m_services);
    const int width = plx::pixelsToTwipsX(this, this->width()) - RightMarginTwips;
    if (index == 0) {
        r->setTwipsGeometry(0, 0, width);
    } else {
        const mvRow *above = m_rows.at(index - 1);
        r->setTwipsGeometry(above->leftTwips(), above->topTwips() + above->iHeight() + m_vspacing,
                            width - above->leftTwips());
    }
    r->setText(QString());
    m_rows << r;
    r->show();
    if (index > 0)
        QWidget::setTabOrder(m_rows.at(index - 1), r);
    const qint16 rowIndex = index;
    connect(r, &mvRow::DblClick, this, [this, rowIndex] { rowDoubleClicked(rowIndex); });
    rowAdded(r, index);
}

void RowStack::initRows()
{
    addRow();
    fitHeight();
}

void RowStack::setNUbound(qint16 n)
{
    if (n < 0)
        n = 0;
    if (m_rows.isEmpty())
        addRow();
    while (m_rows.size() - 1 < n)
        addRow();
    while (m_rows.size() - 1 > n) {
        mvRow *last = m_rows.takeLast();
        last->hide();
        delete last;
    }
    fitHeight();
    yieldOnce();
}

void RowStack::fitHeight()
{
    const mvRow *last = m_rows.last();
    const int twips = last->topTwips() + last->iHeight() + m_vspacing;
    m_fittedHeight = plx::twipsToPixelsY(this, twips);
    // In a layout the stack keeps the height of its rows and takes the width it is given.
    updateGeometry();
    resize(width(), m_fittedHeight);
}

QSize RowStack::sizeHint() const
{
    return QSize(qMax(width(), 360), m_fittedHeight);
}

QSize RowStack::minimumSizeHint() const
{
    return QSize(240, m_fittedHeight);
}

void RowStack::layoutWidths()
{
    const int inner = plx::pixelsToTwipsX(this, contentsRect().width());
    for (mvRow *r : m_rows)
        r->setTwipsGeometry(r->leftTwips(), r->topTwips(),
                            inner - r->leftTwips() - RightMarginTwips);
}

void RowStack::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    layoutWidths();
}

void RowStack::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
}

qint16 RowStack::DBFType() const
{
    if (m_dbfType == 0)
        m_dbfType = 1;
    return m_dbfType;
}

void RowStack::fileNotFound(const QString &path) const
{
    (void)plx::prompterOf(m_services)
        .msgBox(QStringLiteral("Database file not found:\r\n") + path, plx::MsgStyle::Critical,
                QStringLiteral("File Not Found"));
}

void RowStack::setSDBFPathFileName(const QString &path)
{
    if (!QFileInfo::exists(path) || QFileInfo(path).isDir()) {
        fileNotFound(path);
        return;
    }
    const QString fileName = fileNameOf(path);
    const qint16 type = DBFType();
    const QString filter = plx::getLenTrim(m_filter) >= 1 ? m_filter : QString();
    forEachRow([&](mvRow *r, qint16 i) {
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
            b->setRecordSet(m_rows.at(0)->DataBinding()->RecordSet());
    });
}

QString RowStack::sDBFPathFileName() const
{
    mvRow *r0 = m_rows.value(0);
    return r0 && r0->hasDataBinding() ? r0->DataBinding()->DBFPathFileName() : QString();
}

void RowStack::setBackColor(qint32 color)
{
    m_backColor = color;
    auto paint = [color](QWidget *w) {
        QPalette p = w->palette();
        p.setColor(QPalette::Window, fromOleColor(color));
        w->setPalette(p);
        w->setAutoFillBackground(true);
    };
    paint(this);
    for (mvRow *r : m_rows)
        paint(r);
}

void RowStack::setLAltGrayColor(qint32 altGray)
{
    m_altGray = altGray;
    forEachRow([altGray](mvRow *r, qint16) { r->setLAltGrayColor(altGray); });
}

qint16 RowStack::iHeight(qint16 n) const
{
    return inRange(n) ? m_rows.at(n)->iHeight() : qint16(0);
}

void RowStack::setIHeight(qint16 n, qint16 twips)
{
    if (inRange(n))
        m_rows.at(n)->setIHeight(twips);
}

QString RowStack::sFieldName(qint16 n) const
{
    return inRange(n) ? m_rows.at(n)->DataBinding()->sFieldName() : QString();
}

void RowStack::setSFieldName(qint16 n, const QString &name)
{
    if (!inRange(n))
        return;
    m_rows.at(n)->DataBinding()->setSFieldName(name);
    yieldOnce();
}

QString RowStack::sValue(qint16 n) const
{
    if (!inRange(n))
        throw std::out_of_range("row index outside 0..nUbound");
    return plx::trimSpaces(m_rows.at(n)->Value());
}

void RowStack::setSValue(qint16 n, const QVariant &value)
{
    if (!inRange(n))
        return;
    m_rows.at(n)->setValue(value.isNull() || !value.isValid() ? QString() : value.toString());
}

QVariant RowStack::Clear(qint16 n)
{
    if (inRange(n))
        m_rows.at(n)->setValue(QString());
    return QVariant();
}

void RowStack::ClearAll()
{
    forEachRow([this](mvRow *, qint16 i) { Clear(i); });
}

void RowStack::Edit()
{
    forEachRow([](mvRow *r, qint16) { r->Edit(); });
}

void RowStack::UpdateDBF()
{
    forEachRow([](mvRow *r, qint16) { (void)r->UpdateDBF(); });
}

bool RowStack::bEdit(bool bSilent, QString *vReturn)
{
    bool result = true;
    QString collected;
    forEachRow([&](mvRow *r, qint16) {
        QString reason;
        if (!r->bValidate(bSilent, &reason)) {
            collected = plx::modAddALine(collected, r->sCaption() + QLatin1Char(' ') + reason,
                                         QStringLiteral("\r\n"), false);
            result = false;
        }
    });
    if (vReturn)
        *vReturn = collected;
    return result;
}

void RowStack::EditUpdate()
{
    forEachRow([](mvRow *r, qint16) { r->EditUpdate(); });
}

void RowStack::CancelEdit()
{
    forEachRow([](mvRow *r, qint16) { r->CancelEdit(); });
}

QString RowStack::SaveDBF()
{
    // Rows tell the user themselves what they could not save; the stack reports nothing.
    forEachRow([](mvRow *r, qint16) { (void)r->Save(); });
    return QString();
}

QString RowStack::Save()
{
    const QString result = SaveDBF();
    return plx::getLenTrim(result) >= 1 ? result : QString();
}

bool RowStack::Locked() const
{
    return m_rows.value(0) ? m_rows.at(0)->Locked() : false;
}

void RowStack::setLocked(bool locked)
{
    forEachRow([locked](mvRow *r, qint16) { r->setLocked(locked); });
}

void RowStack::setEnabled(bool enabled)
{
    for (QWidget *child : findChildren<QWidget *>())
        child->setEnabled(enabled);
    QWidget::setEnabled(enabled);
}

std::shared_ptr<plx::RecordSource> RowStack::RecordSet() const
{
    mvRow *r0 = m_rows.value(0);
    return r0 && r0->hasDataBinding() ? r0->DataBinding()->RecordSet() : nullptr;
}

void RowStack::setRecordSet(std::shared_ptr<plx::RecordSource> source)
{
    forEachRow([&source](mvRow *r, qint16) { r->DataBinding()->setRecordSet(source); });
}

void RowStack::disconnectRows()
{
    forEachRow([](mvRow *r, qint16) {
        if (r->hasDataBinding()) {
            r->DataBinding()->Disconnect();
            r->releaseDataBinding();
        }
    });
}
