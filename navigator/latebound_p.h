// navigator/latebound_p.h: a host's own control, driven by operation name.
//
// The navigator drives its field controls through plx::BoundControl. The library's own
// controls implement it; any other QObject takes part through this adapter, which finds
// the operations (UpdateDBF, bEdit, EditUpdate, CancelEdit, Save, Locked, Enabled, Name)
// in the object's meta-object, as invokable methods or as properties of those names. The
// methods are looked up once, when the control is registered, so a call costs one
// QMetaMethod::invoke.
//
// An operation the object does not offer is skipped, as a failing member of a loop over
// the field controls is: bEdit then accepts, Save says nothing, Locked reads false. The
// first skip of each operation is told to `noteSkipped` (the navigator writes it to the
// activity log), so a host's developer learns of a misspelt name without a flood of lines.
#pragma once

#include "services/widgets/boundcontrol.h"

#include <QMetaMethod>
#include <QPointer>
#include <QSet>
#include <QString>

#include <functional>

namespace plx {

class LateBoundControl final : public BoundControl
{
public:
    using Note = std::function<void(const QString &line)>;

    LateBoundControl(QObject *control, Note noteSkipped);

    void UpdateDBF() override;
    bool bEdit(bool bSilent, QVariant &vReturn) override;
    void EditUpdate() override;
    void CancelEdit() override;
    QString Save() override;
    bool Locked() const override;
    void setLocked(bool locked) override;
    bool Enabled() const override;
    void setEnabled(bool enabled) override;
    // The control's Name property or method; its objectName when it has neither.
    QString Name() const override;
    // A host's control binds itself: the navigator's record source is not handed over.
    std::shared_ptr<RecordSource> RecordSet() const override { return nullptr; }
    void setRecordSet(std::shared_ptr<RecordSource> source) override { (void)source; }

private:
    QMetaMethod method(const char *signature) const;
    // Calls a method without arguments and returns its result (invalid for void).
    QVariant callForResult(const QMetaMethod &m) const;
    void callVoid(const char *name) const;
    // A property of that name, else the method of that name without arguments.
    std::optional<QVariant> read(const char *name) const;
    // A writable property of that name, else the method set<Name>(bool).
    bool writeFlag(const char *name, bool value);
    void skipped(const char *operation) const;

    QPointer<QObject> m_control;
    Note m_note;
    QMetaMethod m_bEditWithText;
    QMetaMethod m_bEdit;
    mutable QSet<QByteArray> m_told;
};

} // namespace plx
