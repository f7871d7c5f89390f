// testing/eventrecorder.h: the navigator's events as a host sees them.
//
// Every signal of an mvPLXRecs is recorded in the order it fires, together with the
// navigator's sEventInfo and bInitiator read while the signal is being raised: the two
// change from one event to the next, so reading them after the action is over would show
// only the last event's.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace plx {
class mvPLXRecs;
}

namespace plx::test {

// One event: its signal's name, its argument ("" for RecNew and FilterEdit), and the
// navigator's state while it was raised.
struct SeenEvent
{
    QString name;
    QString argument;
    QString eventInfo;
    bool initiator = false;
    // "IDChange(PLE0000001) [Next] initiator"; "-" in place of "initiator" when not set.
    QString text() const;
};

class EventRecorder
{
public:
    // Connects to every signal of `nav`, which must outlive the recorder's use.
    explicit EventRecorder(mvPLXRecs *nav);
    // The events so far as SeenEvent::text(), in order.
    QStringList texts() const;
    // Only the signal names, for tests about order alone.
    QStringList names() const;
    const QList<SeenEvent> &events() const { return m_events; }
    void clear() { m_events.clear(); }

private:
    void record(const QString &name, const QString &argument);

    mvPLXRecs *m_nav;
    QList<SeenEvent> m_events;
};

} // namespace plx::test
