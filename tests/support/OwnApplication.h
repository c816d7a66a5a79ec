#pragma once

#include <QCoreApplication>

#include <memory>

namespace Qorvane {

/// An application that a test can end. Only for test programs with a `main` of their own, which makes none.
class OwnApplication
{
public:
    OwnApplication()
        : m_application(std::make_unique<QCoreApplication>(m_argumentCount, m_arguments))
    {
    }

    void end() { m_application.reset(); }

private:
    int m_argumentCount = 1;
    char m_name[1] = {};
    char *m_arguments[2] = {m_name, nullptr};
    std::unique_ptr<QCoreApplication> m_application;
};

} // namespace Qorvane
