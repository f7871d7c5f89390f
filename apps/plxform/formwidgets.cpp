// apps/plxform/formwidgets.cpp
#include "apps/plxform/formwidgets.h"

#include "fields/mvchecks.h"
#include "fields/mvchkwithtxt.h"
#include "fields/mvname.h"
#include "fields/mvvitext.h"
#include "navigator/mvplxrecs.h"
#include "services/texthelpers.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QScrollArea>
#include <QVBoxLayout>

namespace plx::form {

bool hasField(const QList<FieldInfo> &fields, const QString &name)
{
    for (const FieldInfo &f : fields)
        if (f.name.compare(name.trimmed(), Qt::CaseInsensitive) == 0)
            return true;
    return false;
}

mvName *makeTextRows(const QList<RowDescription> &shownRows, const QList<FieldInfo> &fields)
{
    auto *rows = new mvName;
    rows->setObjectName(QStringLiteral("mvNameFields"));
    rows->setDescWidthAll(1500);
    // Row by row: a row added to the stack goes below the row above at its height then, so
    // a memo's row is made tall before the next row is added.
    for (qsizetype i = 0; i < shownRows.size(); ++i) {
        const RowDescription &r = shownRows[i];
        const qint16 n = qint16(i);
        if (n > 0)
            rows->setNUbound(n);
        rows->setDescWidth(n, r.labelWidth > 0 ? r.labelWidth : 1500);
        rows->setSCaption(n, r.caption);
        rows->setSFieldName(n, r.field);
        rows->setSFormat(n, r.format);
        rows->setSMode(n, r.mode);
        if (r.maxLength > 0)
            rows->setMaxLength(n, r.maxLength);
        if (isMemo(fields, r.field)) {
            rows->setIHeight(n, kMemoRowHeight);
            rows->setToolTip(
                n,
                QCoreApplication::translate("plx::form::HostForm",
                                            "Shift+F2 opens the text in the text editor"));
        }
    }
    rows->setNUbound(rows->nUbound()); // the stack's height takes the last row's
    return rows;
}

mvChecks *makeCheckBoxes(const QList<CheckDescription> &shownChecks)
{
    auto *checks = new mvChecks;
    checks->setObjectName(QStringLiteral("mvChecksFlags"));
    checks->setNUbound(qint16(qMax<qsizetype>(0, shownChecks.size() - 1)));
    for (qsizetype i = 0; i < shownChecks.size(); ++i) {
        checks->setSCaption(qint16(i), shownChecks[i].caption);
        checks->setSFieldName(qint16(i), shownChecks[i].field);
    }
    checks->setVisible(!shownChecks.isEmpty());
    return checks;
}

mvChkWithTxt *makePair(const PairDescription &p, qsizetype number, const QList<FieldInfo> &fields)
{
    auto *pair = new mvChkWithTxt;
    pair->setObjectName(QStringLiteral("mvChkWithTxt%1").arg(number));
    pair->setSCaptionChk(p.caption);
    pair->setSFieldNameChk(p.field);
    QList<QPair<QString, QString>> details;
    for (const auto &detail : p.details)
        if (hasField(fields, detail.second))
            details << detail;
    pair->setNUbound(qint16(qMax<qsizetype>(0, details.size() - 1)));
    for (qsizetype i = 0; i < details.size(); ++i) {
        pair->setSCaptionTxt(qint16(i), details[i].first);
        pair->setSFieldNameTxt(qint16(i), details[i].second);
    }
    pair->setLocked(true);
    return pair;
}

QList<mvVIText *> makeValueRows(const QList<ValueRowDescription> &shown)
{
    QList<mvVIText *> stacks;
    for (const ValueRowDescription &v : shown) {
        auto *stack = new mvVIText;
        stack->setObjectName(QStringLiteral("mvVIText%1").arg(stacks.size() + 1));
        stack->setDescWidthAll(1500);
        stack->setSCaption(0, v.caption);
        stack->setSFieldName(0, v.field);
        stack->setSVINIFile(v.listFile);
        stack->setSVINISec(v.listSection);
        stack->setSVINIVar(v.listKey);
        stack->setToolTip(0,
                          QCoreApplication::translate(
                              "plx::form::HostForm",
                              "Double-click to pick values from the list (while editing)"));
        stack->setLocked(true);
        stacks << stack;
    }
    return stacks;
}

QWidget *formLayout(mvPLXRecs *nav, mvName *rows, const QList<mvVIText *> &valueRows,
                    mvChecks *checks, const QList<mvChkWithTxt *> &pairs)
{
    auto *central = new QWidget;
    auto *layout = new QVBoxLayout(central);
    layout->setContentsMargins(8, 8, 8, 4);
    layout->addWidget(nav);
    auto *scroll = new QScrollArea;
    scroll->setObjectName(QStringLiteral("scrFields"));
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    auto *stacks = new QWidget;
    auto *side = new QHBoxLayout(stacks);
    side->setContentsMargins(0, 6, 0, 0);
    // The value-item rows follow the text rows at the stack's own row spacing.
    auto *texts = new QVBoxLayout;
    texts->setSpacing(0);
    texts->addWidget(rows);
    for (mvVIText *valueRow : valueRows)
        texts->addWidget(valueRow);
    texts->addStretch(1);
    side->addLayout(texts, 3);
    auto *flags = new QVBoxLayout;
    flags->addWidget(checks);
    for (mvChkWithTxt *pair : pairs)
        flags->addWidget(pair);
    flags->addStretch(1);
    // Without check boxes the text rows take the whole width (long text fields need it).
    const bool anyFlags = !checks->isHidden() || !pairs.isEmpty();
    side->addLayout(flags, anyFlags ? 2 : 0);
    scroll->setWidget(stacks);
    layout->addWidget(scroll, 1);
    return central;
}

bool isMemo(const QList<FieldInfo> &fields, const QString &name)
{
    for (const FieldInfo &f : fields)
        if (f.type == FieldType::Memo && f.name.compare(name, Qt::CaseInsensitive) == 0)
            return true;
    return false;
}

void requireValues(mvName &rows, const QStringList &required)
{
    for (qint16 n = 0; n <= rows.nUbound(); ++n)
        for (const QString &field : required)
            if (rows.sFieldName(n).compare(field.trimmed(), Qt::CaseInsensitive) == 0)
                rows.setRule(n, [](const QString &text) {
                    return getLenTrim(text) < 1 ? QStringLiteral("is required") : QString();
                });
}

} // namespace plx::form
