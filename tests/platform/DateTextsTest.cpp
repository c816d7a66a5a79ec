#include "platform/DateTexts.h"

#include <QTimeZone>

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

class DateTextsTest : public testing::Test
{
protected:
    DateTextsTest() { qputenv("TZ", "UTC"); }
    ~DateTextsTest() override
    {
        qunsetenv("TZ");
        qunsetenv("LC_TIME");
        qputenv("LC_ALL", "C.UTF-8");
    }

    // Older and newer locale data differ in the blank before PM only.
    static QString plainBlanks(QString text) { return text.replace(QChar(0x202F), u' '); }

    const QDateTime m_date{QDate(2024, 5, 1), QTime(15, 4, 5), QTimeZone::utc()};
};

TEST_F(DateTextsTest, isTheMediumStyleOfTheLocale)
{
    EXPECT_EQ(plainBlanks(DateTexts::mediumDateAndTime(m_date, QStringLiteral("en_US"))),
              QStringLiteral("May 1, 2024, 3:04:05 PM"));
    EXPECT_EQ(DateTexts::mediumDateAndTime(m_date, QStringLiteral("zh_CN")),
              QStringLiteral("2024年5月1日 15:04:05"));
    EXPECT_EQ(DateTexts::mediumDateAndTime(m_date, QStringLiteral("de_DE")),
              QStringLiteral("01.05.2024, 15:04:05"));
}

TEST_F(DateTextsTest, followsTheUsersLocaleForDates)
{
    EXPECT_EQ(plainBlanks(DateTexts::mediumDateAndTime(m_date)), QStringLiteral("May 1, 2024, 3:04:05 PM"));
    qunsetenv("LC_ALL");
    qputenv("LC_TIME", "zh_CN.UTF-8");
    EXPECT_EQ(DateTexts::mediumDateAndTime(m_date), QStringLiteral("2024年5月1日 15:04:05"));
}

TEST_F(DateTextsTest, isTheTimeOfDayInTheSystemsZone)
{
    qputenv("TZ", "Asia/Shanghai");
    EXPECT_EQ(DateTexts::mediumDateAndTime(m_date, QStringLiteral("zh_CN")),
              QStringLiteral("2024年5月1日 23:04:05"));
}

TEST_F(DateTextsTest, datesBeforeTheEpochHaveATextToo)
{
    const QDateTime date(QDate(1899, 12, 31), QTime(0, 0), QTimeZone::utc());
    EXPECT_EQ(DateTexts::mediumDateAndTime(date, QStringLiteral("zh_CN")),
              QStringLiteral("1899年12月31日 00:00:00"));
}

TEST_F(DateTextsTest, anInvalidDateHasNone)
{
    EXPECT_TRUE(DateTexts::mediumDateAndTime(QDateTime()).isEmpty());
}

} // namespace
