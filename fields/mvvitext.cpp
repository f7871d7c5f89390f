// fields/mvvitext.cpp: the value-item stack opens the value-list editor on a row.
#include "fields/mvvitext.h"
#include "fields/textstack_p.h"

#include "dialogs/frmvivalues.h"

#include "services/recordsource/recordsource.h"

#include <limits>
#include <stdexcept>

namespace plx {

namespace {

const QString kBoxTitle = QStringLiteral("mvVIText");

} // namespace

class mvVITextPrivate : public TextStackPrivate
{
    Q_DECLARE_PUBLIC(mvVIText)

public:
    // A double click on a row is SelectVI, which raises DblClick itself.
    void rowDoubleClicked(qint16 index) override { q_func()->SelectVI(index); }

    // The defined size of row n's bound field; no limit for a field without one. Throws
    // when the row has no record source or the source lacks the field.
    int definedSize(qint16 n) const;
    // Fills `editor` for row n, step by step, naming each step in `step` first.
    void prepare(plx::frmVIValues &editor, qint16 n, QString &step) const;

    QString listFile;
    QString listSection;
    QString listKey;
};

int mvVITextPrivate::definedSize(qint16 n) const
{
    mvText *r = textRow(n);
    const std::shared_ptr<plx::RecordSource> source = r ? r->DataBinding()->RecordSet() : nullptr;
    if (!source)
        throw std::runtime_error("the row has no record source");
    const int index = source->fieldIndex(r->DataBinding()->sFieldName());
    if (index < 0)
        throw std::runtime_error("the record source lacks the row's field");
    const int size = source->fieldInfos().at(index).size;
    return size > 0 ? size : std::numeric_limits<int>::max();
}

void mvVITextPrivate::prepare(plx::frmVIValues &editor, qint16 n, QString &step) const
{
    Q_Q(const mvVIText);
    step = QStringLiteral("With fVI");
    editor.setServices(services);
    step = QStringLiteral("sVINIFile");
    editor.setSVINIFile(listFile);
    step = QStringLiteral("sVINISec");
    editor.setSVINISec(listSection);
    step = QStringLiteral("sVINIVar");
    editor.setSVINIVar(listKey);
    step = QStringLiteral("Caption");
    const mvText *r = textRow(n);
    if (!r)
        throw std::out_of_range("row index outside 0..nUbound");
    editor.setWindowTitle(QStringLiteral("Value Item List: ") + r->sCaption());
    step = QStringLiteral("set sValue");
    editor.setSValue(q->sValue(n));
    step = QStringLiteral("set MaxLen");
    editor.setMaxLen(definedSize(n));
    step = QStringLiteral("set InitForm");
    editor.InitForm();
}

mvVIText::mvVIText(QWidget *parent) : TextStack(std::make_unique<mvVITextPrivate>(), parent) { }

mvVIText::~mvVIText() = default;

QString mvVIText::sVINIFile() const
{
    return d_func()->listFile;
}

void mvVIText::setSVINIFile(const QString &file)
{
    d_func()->listFile = file;
}

QString mvVIText::sVINISec() const
{
    return d_func()->listSection;
}

void mvVIText::setSVINISec(const QString &section)
{
    d_func()->listSection = section;
}

QString mvVIText::sVINIVar() const
{
    return d_func()->listKey;
}

void mvVIText::setSVINIVar(const QString &key)
{
    d_func()->listKey = key;
}

void mvVIText::SelectVI(qint16 Index)
{
    Q_D(mvVIText);
    QString step = QStringLiteral("RaiseEvent");
    try {
        Q_EMIT DblClick(Index);
        step = QStringLiteral("Enabled and Not Locked?");
        if (!Enabled() || Locked())
            return;
        step = QStringLiteral("Set fVI");
        plx::frmVIValues editor(window());
        d->prepare(editor, Index, step);
        editor.exec();
        if (!editor.bCancel())
            setSValue(Index, editor.sValue());
    } catch (...) {
        (void)plx::prompterOf(d->services)
            .msgBox(QStringLiteral("mvVIText Error ") + step, plx::MsgStyle::Critical, kBoxTitle);
    }
}

QString mvVIText::sValue(qint16 n) const
{
    Q_D(const mvVIText);
    if (!d->inRange(n)) {
        (void)plx::prompterOf(d->services)
            .msgBox(QStringLiteral("mvVIText.sValue array error: ") + QString::number(n)
                        + QStringLiteral("\r\n") + QString::number(nUbound()),
                    plx::MsgStyle::Critical, kBoxTitle);
        return QString();
    }
    return TextStack::sValue(n);
}

} // namespace plx
