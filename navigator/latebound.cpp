// navigator/latebound.cpp: a host's own control, driven by operation name.
#include "navigator/latebound_p.h"

#include <QMetaObject>
#include <QVariant>

#include <utility>

namespace plx {

LateBoundControl::LateBoundControl(QObject *control, Note noteSkipped)
    : m_control(control), m_note(std::move(noteSkipped))
{
    m_bEditWithText = method("bEdit(bool,QVariant&)");
    m_bEdit = method("bEdit(bool)");
}

QMetaMethod LateBoundControl::method(const char *signature) const
{
    if (!m_control)
        return {};
    const QMetaObject *meta = m_control->metaObject();
    const int index = meta->indexOfMethod(QMetaObject::normalizedSignature(signature).constData());
    return index < 0 ? QMetaMethod() : meta->method(index);
}

QVariant LateBoundControl::callForResult(const QMetaMethod &m) const
{
    const QMetaType type = m.returnMetaType();
    if (!type.isValid() || type.id() == QMetaType::Void) {
        m.invoke(m_control.data(), Qt::DirectConnection);
        return {};
    }
    QVariant result(type);
    m.invoke(m_control.data(), Qt::DirectConnection,
             QGenericReturnArgument(type.name(), result.data()));
    return result;
}

void LateBoundControl::callVoid(const char *name) const
{
    const QMetaMethod m = method((QByteArray(name) + "()").constData());
    if (!m.isValid()) {
        skipped(name);
        return;
    }
    m.invoke(m_control.data(), Qt::DirectConnection);
}

std::optional<QVariant> LateBoundControl::read(const char *name) const
{
    if (!m_control)
        return std::nullopt;
    const QMetaObject *meta = m_control->metaObject();
    const int property = meta->indexOfProperty(name);
    if (property >= 0 && meta->property(property).isReadable())
        return meta->property(property).read(m_control.data());
    const QMetaMethod m = method((QByteArray(name) + "()").constData());
    if (m.isValid() && m.returnMetaType().id() != QMetaType::Void)
        return callForResult(m);
    return std::nullopt;
}

bool LateBoundControl::writeFlag(const char *name, bool value)
{
    if (!m_control)
        return false;
    const QMetaObject *meta = m_control->metaObject();
    const int property = meta->indexOfProperty(name);
    if (property >= 0 && meta->property(property).isWritable())
        return meta->property(property).write(m_control.data(), value);
    const QMetaMethod setter = method((QByteArray("set") + name + "(bool)").constData());
    return setter.isValid()
        && setter.invoke(m_control.data(), Qt::DirectConnection, Q_ARG(bool, value));
}

void LateBoundControl::skipped(const char *operation) const
{
    if (!m_control || m_told.contains(operation))
        return;
    m_told.insert(operation);
    if (m_note)
        m_note(Name() + QStringLiteral(" has no ") + QString::fromLatin1(operation)
               + QStringLiteral("; skipped"));
}

void LateBoundControl::UpdateDBF()
{
    callVoid("UpdateDBF");
}

bool LateBoundControl::bEdit(bool bSilent, QVariant &vReturn)
{
    const QMetaMethod &m = m_bEditWithText.isValid() ? m_bEditWithText : m_bEdit;
    if (!m_control || !m.isValid()) {
        skipped("bEdit");
        return true;
    }
    const QMetaType type = m.returnMetaType();
    QVariant answer(type);
    const QGenericReturnArgument result(type.name(), answer.data());
    if (m.parameterCount() == 2)
        m.invoke(m_control.data(), Qt::DirectConnection, result, Q_ARG(bool, bSilent),
                 QGenericArgument("QVariant&", &vReturn));
    else
        m.invoke(m_control.data(), Qt::DirectConnection, result, Q_ARG(bool, bSilent));
    // A bEdit without an answer refuses nothing.
    return !answer.isValid() || answer.toBool();
}

void LateBoundControl::EditUpdate()
{
    callVoid("EditUpdate");
}

void LateBoundControl::CancelEdit()
{
    callVoid("CancelEdit");
}

QString LateBoundControl::Save()
{
    const std::optional<QVariant> said = read("Save");
    if (said)
        return said->toString();
    callVoid("Save"); // a Save with nothing to say, or none at all
    return {};
}

bool LateBoundControl::Locked() const
{
    const std::optional<QVariant> locked = read("Locked");
    if (!locked)
        skipped("Locked");
    return locked && locked->toBool();
}

void LateBoundControl::setLocked(bool locked)
{
    if (!writeFlag("Locked", locked))
        skipped("Locked");
}

bool LateBoundControl::Enabled() const
{
    // A widget that has no Enabled of its own still has QWidget's.
    std::optional<QVariant> enabled = read("Enabled");
    if (!enabled)
        enabled = read("enabled");
    if (!enabled)
        skipped("Enabled");
    return enabled && enabled->toBool();
}

void LateBoundControl::setEnabled(bool enabled)
{
    if (!writeFlag("Enabled", enabled))
        skipped("Enabled");
}

QString LateBoundControl::Name() const
{
    if (!m_control)
        return {};
    const std::optional<QVariant> name = read("Name");
    return name ? name->toString() : m_control->objectName();
}

} // namespace plx
