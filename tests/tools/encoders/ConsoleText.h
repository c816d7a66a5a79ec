#pragma once

#include "encoders/Console.h"

#include <cstdio>
#include <memory>

namespace Qorvane::Encoders {

/// A console that tests can read back.
class ConsoleText
{
public:
    explicit ConsoleText(bool isTerminal = false)
        : m_console(m_results.get(), m_messages.get(), isTerminal)
    {
    }

    Console &console() { return m_console; }
    QString results() const { return textOf(m_results.get()); }
    QString messages() const { return textOf(m_messages.get()); }

private:
    struct Closer
    {
        void operator()(std::FILE *file) const { std::fclose(file); }
    };
    using File = std::unique_ptr<std::FILE, Closer>;

    static QString textOf(std::FILE *file)
    {
        QByteArray bytes;
        std::fflush(file);
        std::rewind(file);
        for (int byte = std::fgetc(file); byte != EOF; byte = std::fgetc(file))
            bytes.append(char(byte));
        return QString::fromUtf8(bytes);
    }

    File m_results{std::tmpfile()};
    File m_messages{std::tmpfile()};
    Console m_console;
};

} // namespace Qorvane::Encoders
