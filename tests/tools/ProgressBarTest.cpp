#include "headless/ProgressBar.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <array>
#include <memory>

using namespace Qorvane;

namespace {

struct FileCloser
{
    void operator()(std::FILE *file) const { std::fclose(file); }
};

/// A stream whose content can be asked for.
class Stream
{
public:
    std::FILE *file() const { return m_file.get(); }

    QString text() const
    {
        std::array<char, 4096> buffer{};
        std::rewind(m_file.get());
        const size_t size = std::fread(buffer.data(), 1, buffer.size(), m_file.get());
        return QString::fromUtf8(buffer.data(), qsizetype(size));
    }

private:
    std::unique_ptr<std::FILE, FileCloser> m_file{std::tmpfile()};
};

} // namespace

TEST(ProgressBarTest, FillsInProportion)
{
    EXPECT_EQ(ProgressBar::text(0, QStringLiteral("a")),
              u'[' + QString(40, u'-') + QStringLiteral("]   0 %  a"));
    EXPECT_EQ(ProgressBar::text(0.25, QStringLiteral("a")),
              u'[' + QString(10, u'#') + QString(30, u'-') + QStringLiteral("]  25 %  a"));
    EXPECT_EQ(ProgressBar::text(1, QStringLiteral("a")),
              u'[' + QString(40, u'#') + QStringLiteral("] 100 %  a"));
}

TEST(ProgressBarTest, KeepsHundredPercentForTheEnd)
{
    EXPECT_TRUE(ProgressBar::text(0.9999, QString()).contains(QStringLiteral(" 99 %")));
}

TEST(ProgressBarTest, TakesFractionsOutOfRangeAsTheNearerEnd)
{
    EXPECT_EQ(ProgressBar::text(-3, QString()), ProgressBar::text(0, QString()));
    EXPECT_EQ(ProgressBar::text(7, QString()), ProgressBar::text(1, QString()));
    EXPECT_EQ(ProgressBar::text(0.0 / 0.0, QString()), ProgressBar::text(0, QString()));
}

TEST(ProgressBarTest, WritesALineForEachTenthWhereThereIsNoTerminal)
{
    const Stream stream;
    ProgressBar bar(stream.file(), false);
    for (int done = 0; done <= 100; ++done)
        bar.show(done / 100.0, QStringLiteral("vectors"));
    bar.finish();
    EXPECT_EQ(stream.text().count(u'\n'), 11);
    EXPECT_FALSE(stream.text().contains(u'\r'));
}

TEST(ProgressBarTest, WritesALineWhenTheActivityChanges)
{
    const Stream stream;
    ProgressBar bar(stream.file(), false);
    bar.show(0.5, QStringLiteral("thumbnails"));
    bar.show(0.5, QStringLiteral("vectors"));
    EXPECT_EQ(stream.text().count(u'\n'), 2);
}

TEST(ProgressBarTest, RedrawsOneLineOnATerminalAndCoversALongerOne)
{
    const Stream stream;
    ProgressBar bar(stream.file(), true);
    bar.show(0.5, QStringLiteral("reading folders"));
    bar.show(0.5, QStringLiteral("done"));
    bar.finish();
    const QStringList drawn = stream.text().split(u'\r');
    ASSERT_EQ(drawn.size(), 3);
    EXPECT_EQ(drawn.at(2).size(), drawn.at(1).size() + 1) << "padded, and the end of the line";
    EXPECT_EQ(stream.text().count(u'\n'), 1);
}

TEST(ProgressBarTest, WritesNothingTwice)
{
    const Stream stream;
    ProgressBar bar(stream.file(), true);
    bar.show(0.5, QStringLiteral("vectors"));
    const QString once = stream.text();
    bar.show(0.5, QStringLiteral("vectors"));
    EXPECT_EQ(stream.text(), once);
}
