#include "headless/Printing.h"

#include <cstdio>

namespace Qorvane {

void print(const QString &text)
{
    std::fputs(qUtf8Printable(text), stdout);
    std::fflush(stdout);
}

void printError(const QString &text)
{
    std::fprintf(stderr, "qorvane-headless: %s\n", qUtf8Printable(text));
}

void printNotice(const QString &text)
{
    // Nothing is wrong, but the same line tells who speaks.
    printError(text);
}

} // namespace Qorvane
