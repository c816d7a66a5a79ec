#pragma once

#include <QFile>
#include <QStringList>

#include <unistd.h>

namespace Qorvane {

/// Lets go of the administrator's rights while it lives, so that permissions mean something where the tests
/// run as root; changes nothing for an ordinary user. `paths` are given to that user.
class AsOrdinaryUser
{
public:
    explicit AsOrdinaryUser(const QStringList &paths)
        : m_isAdministrator(::geteuid() == 0)
    {
        if (!m_isAdministrator)
            return;
        for (const QString &path : paths)
            m_isChanged = ::chown(QFile::encodeName(path).constData(), nobody, nobody) == 0 && m_isChanged;
        // The real id too, since access() asks about that one; the saved id is the way back.
        m_isChanged = ::setresuid(nobody, nobody, 0) == 0 && m_isChanged;
    }
    ~AsOrdinaryUser()
    {
        if (m_isAdministrator && ::setresuid(0, 0, 0) != 0)
            qFatal("the tests lost their user");
    }
    AsOrdinaryUser(const AsOrdinaryUser &) = delete;
    AsOrdinaryUser &operator=(const AsOrdinaryUser &) = delete;

    bool worked() const { return m_isChanged; }

private:
    static constexpr uid_t nobody = 65534;
    bool m_isAdministrator;
    bool m_isChanged = true;
};

} // namespace Qorvane
