// testing/eventrecorder.cpp
#include "testing/eventrecorder.h"

#include "navigator/mvplxrecs.h"

namespace plx::test {

QString SeenEvent::text() const
{
    return name + QLatin1Char('(') + argument + QStringLiteral(") [") + eventInfo
        + QStringLiteral("] ") + (initiator ? QStringLiteral("initiator") : QStringLiteral("-"));
}

EventRecorder::EventRecorder(mvPLXRecs *nav) : m_nav(nav)
{
    auto one = [this](const char *name) {
        return
            [this, name](const QString &argument) { record(QString::fromLatin1(name), argument); };
    };
    QObject::connect(nav, &mvPLXRecs::IDChange, one("IDChange"));
    QObject::connect(nav, &mvPLXRecs::RecEditStart, one("RecEditStart"));
    QObject::connect(nav, &mvPLXRecs::RecEditEnd, one("RecEditEnd"));
    QObject::connect(nav, &mvPLXRecs::RecNew,
                     [this] { record(QStringLiteral("RecNew"), QString()); });
    QObject::connect(nav, &mvPLXRecs::RecAdded, one("RecAdded"));
    QObject::connect(nav, &mvPLXRecs::RecCopy, one("RecCopy"));
    QObject::connect(nav, &mvPLXRecs::RecCopied, one("RecCopied"));
    QObject::connect(nav, &mvPLXRecs::RecDelete, one("RecDelete"));
    QObject::connect(nav, &mvPLXRecs::RecSave, one("RecSave"));
    QObject::connect(nav, &mvPLXRecs::RecCancel, one("RecCancel"));
    QObject::connect(nav, &mvPLXRecs::SortChange, one("SortChange"));
    QObject::connect(nav, &mvPLXRecs::FilterChange, one("FilterChange"));
    QObject::connect(nav, &mvPLXRecs::FilterEdit,
                     [this] { record(QStringLiteral("FilterEdit"), QString()); });
}

void EventRecorder::record(const QString &name, const QString &argument)
{
    m_events.append({ name, argument, m_nav->sEventInfo(), m_nav->bInitiator() });
}

QStringList EventRecorder::texts() const
{
    QStringList out;
    for (const SeenEvent &e : m_events)
        out << e.text();
    return out;
}

QStringList EventRecorder::names() const
{
    QStringList out;
    for (const SeenEvent &e : m_events)
        out << e.name;
    return out;
}

} // namespace plx::test
