#pragma once

#include <QObject>

namespace Qorvane {

/// The system's wish that the process end: SIGTERM, as at the end of a session, SIGINT, as from a terminal,
/// and SIGHUP, when that terminal goes. Only the first of each is told; a second one ends the process on the
/// spot, in case it no longer listens. One for the process. GUI thread.
class TerminationSignals : public QObject
{
    Q_OBJECT

public:
    explicit TerminationSignals(QObject *parent = nullptr);

Q_SIGNALS:
    void received();
};

} // namespace Qorvane
