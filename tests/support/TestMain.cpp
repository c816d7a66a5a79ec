#include "platform/Localization.h"
#include "support/OrderlyEnd.h"
#include "support/TestHome.h"

#include <QGuiApplication>

#include <gtest/gtest.h>

#include <cstdio>

// Every test program starts here but for the few that make and end applications themselves.
int main(int argc, char **argv)
{
    const Qorvane::TestHome home;
    if (!home.isValid()) {
        std::fputs("no temporary folder for the tests\n", stderr);
        return 1;
    }
    // A test that is run in a language reads that one's texts; in the others a text's key stands for it.
    const QByteArray language = qgetenv("QORVANE_TEST_LANGUAGE");
    if (!language.isEmpty())
        qputenv("LC_ALL", language + ".UTF-8");
    testing::InitGoogleTest(&argc, argv);
    const QGuiApplication application(argc, argv);
    if (!language.isEmpty())
        Qorvane::Localization::install();
    const int result = RUN_ALL_TESTS();
    // What a test left running must not meet the end of the process half-way.
    Qorvane::finishAllWork();
    return result;
}
